// The handheld's settings page and the one option the tool changes there, the automatic switch-off time.
//
// Settings: 128 bytes at 0x3F0000; offset 5 = switch-off time (0 = never). All other bytes are carried over.
#pragma once

#include "handheld/transfer.h"

constexpr int SettingsSize = 128;
using SettingsBlock = std::array<quint8, SettingsSize>;

/// Reads the 128 bytes. Goes on after a time-out; the value then holds what the image held.
Result<SettingsBlock> ReadSettingsBlock(SpiImage &image);

Outcome WriteSettingsBlock(SpiImage &image, const SettingsBlock &settings, Patience patience);

/// Sets the switch-off time to zero; the steps go on after a time-out. The caller has asked the user.
Outcome ClearSwitchOffTime(SpiImage &image);
