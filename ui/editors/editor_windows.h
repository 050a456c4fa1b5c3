// Opens the three table windows from the main window's menu. Each is made at its first opening and hidden, not
// destroyed, by its buttons, so that it shows its grid as it was.
#pragma once

void OpenRouteEditor();
void OpenAssignmentEditor();
void OpenAccessoryListEditor();

/// Destroys the windows. To be called while the application lives.
void ResetEditors();
