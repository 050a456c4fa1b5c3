// The window that shows the loco addresses which the search of a backup found.
#pragma once

#include "platform/rooms.h"

#include <vector>

namespace hr::ui
{

/// Shows the addresses with their names where these are known. One button copies the addresses, ten on a line; another
/// one lays them as a list into the selection window, or, while that is closed, into the saved selection. Nobody waits
/// for the window.
void ShowFoundAddresses(const std::vector<int> &addresses);

/// Destroys the window. To be called while the application lives.
void ResetFoundAddresses();

} // namespace hr::ui
