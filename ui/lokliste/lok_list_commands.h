// The Lokliste of the program: its window, and what the handheld is known to hold.
#pragma once

#include "platform/rooms.h"

#include <functional>

namespace hr::ui
{

/// "Lokliste…": the window with the list as it was left; the first time with the known locos of the handheld.
void OpenLokListe();

/// From now on the list hears what is read, written and deleted anywhere in the program, and `others` too.
void FollowKnownLocos(std::function<void(int address)> others);

/// True when the list has been edited and neither saved nor sent.
[[nodiscard]] bool LokListeUnsaved();

/// Destroys the window. To be called while the application lives.
void ResetLokListe();

} // namespace hr::ui
