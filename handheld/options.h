// The handheld's settings page and the one option the tool changes there, the automatic switch-off time.
//
// Settings: 128 bytes at 0x3F0000; offset 5 = switch-off time (0 = never). All other bytes are carried over.
#pragma once

#include "handheld/page_sequence.h"

namespace hr::handheld
{

constexpr int SettingsSize = 128;
using SettingsBlock = std::array<quint8, SettingsSize>;

/// Reads the 128 bytes. Goes on after a time-out; the value then holds what the image held.
Result<SettingsBlock> ReadSettingsBlock(SpiImage &image);

PageResult WriteSettingsBlock(SpiImage &image, const SettingsBlock &settings, const Patience &patience);

/// Sets the switch-off time to zero; the steps go on after a time-out. The caller has asked the user. When the page was not
/// read for sure, the rest of it would be overwritten with what the image held: then it is written only when `mayWrite`
/// says so.
Outcome ClearSwitchOffTime(SpiImage &image, const std::function<bool()> &mayWrite);

} // namespace hr::handheld
