// Opens the three table windows from the main window's menu. Each is made at its first opening and hidden, not
// destroyed, by its buttons, so that it shows its grid as it was.
#pragma once

#include "platform/rooms.h"

#include <QStringList>

namespace hr::ui
{

void OpenRouteEditor();
void OpenAssignmentEditor();
void OpenAccessoryListEditor();

/// The captions of the windows whose tables hold changes that are not written.
QStringList UnwrittenTables();

/// Destroys the windows. To be called while the application lives.
void ResetEditors();

} // namespace hr::ui
