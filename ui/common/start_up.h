// The start-up sequence: settings, main window, warning, search for the handheld.
#pragma once

#include "platform/rooms.h"

namespace hr::ui
{

/// Runs from the first line of the program to the found handheld or the end of the program. Scans the symbol folders,
/// shows the main window, the warning "Achtung!", "Suche Handregler!" in the progress window, and the selection window
/// until a handheld answers or the user cancels, which ends the program.
void Main();

} // namespace hr::ui
