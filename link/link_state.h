// The state of the link as a whole: with which settings, and whether a handheld is in service.
#pragma once

#include "program/settings_file.h"

#include <functional>

namespace hr::link
{

// --- Settings of the link. Written by UseSettings() (start-up, selection window), read by the whole link. ---
extern PortValue PortNumber;
extern int InterfaceType; // InterfaceNone or 1..3

/// True once a handheld has acknowledged and the link is in service. Set by the handheld search, cleared when the
/// port is closed or lost and when the handheld is sent back. Every command that talks to the handheld tests it.
extern bool HandreglerGefunden;

/// True from the loss of an open port (pulled adapter) to the next opening. The user has been told once.
extern bool LinkLost;

/// The handheld is not in service any more: clears HandreglerGefunden, and tells the face where it was set.
void EndService();
void OnServiceEnds(std::function<void()> handler);

void UseSettings(const LinkSettings &settings);
LinkSettings SettingsInUse();

} // namespace hr::link
