// The three backup commands of the menu "Datei".
#pragma once

#include "platform/rooms.h"

namespace hr::ui
{

/// "Daten eines Handreglers sichern": file dialog, selection window, connection guard, backup; after a search the
/// window of the addresses found. The same backup that was broken off before is offered to be continued.
void SaveHandheldData();

/// "Datensicherung (Lokdatensätze) anzeigen": file dialog and viewer; nobody waits for the viewer.
void ShowBackupFile();

/// "Datensicherung zurückschreiben": file dialog, connection guard, restore.
void RestoreHandheldData();

/// Destroys the windows. To be called while the application lives.
void ResetBackupWindows();

} // namespace hr::ui
