// The window that shows the loco addresses which the search of a backup found.
#pragma once

#include <vector>

/// Shows the addresses, ten on a line, with a button that copies them. Nobody waits for the window.
void ShowFoundAddresses(const std::vector<int> &addresses);

/// Destroys the window. To be called while the application lives.
void ResetFoundAddresses();
