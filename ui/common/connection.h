// The connection as the windows see it: the port with its selection window, the handheld search with its title.
#pragma once

#include "program/outcome.h"

namespace hr::ui
{

/// Toggles the link. Open port: closes it. Otherwise opens it; a failure shows its box and then the selection window,
/// until an attempt succeeds. ProgramEnds when the user gives up there.
Outcome OpenPort();

/// Shows the selection window and waits for it. False when the program is to end.
[[nodiscard]] bool AskForSelection();

/// Opens the port when it is closed. False when it stays closed: "ComPort konnte nicht geöffnet werden!" has been
/// shown then, except when no interface kind has been chosen yet or the program ends.
[[nodiscard]] bool PortReady();

/// The handheld search: opens the port when it is closed, calls the handheld, reads version and kind, shows them
/// in the main window's title and sets HandreglerGefunden. Failures are reported by boxes: "ComPort konnte nicht
/// geöffnet werden!", "Handregler antwortet nicht!"; the title then says "unbekannt".
void ConnectHandheld();

/// The connection guard of every handheld command: searches when no handheld has been found yet. False when there is
/// still none.
[[nodiscard]] bool HandheldConnected();

/// From now on the title names a handheld only while it is in service: a lost port, new settings and the way back to normal
/// operation take it away.
void FollowService();

} // namespace hr::ui
