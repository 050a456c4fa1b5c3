// The handheld's settings page and the one option the tool changes there, the automatic switch-off time.
//
// Settings: 128 bytes at 0x3F0000; offset 5 = switch-off time (0 = never). All other bytes are carried over.
#pragma once

/// Reads the 128 bytes and lays them in write position, SpiBuf[4..131]. Goes on after a time-out; returns 1 then.
int ReadSettingsBlock();

/// Writes SpiBuf[4..131] back. Goes on after a time-out; returns 1 then.
int WriteSettingsBlock();

/// Sets the switch-off time to zero, with the progress text "Abschaltzeit ändern". The caller has asked the user.
void ClearSwitchOffTime();
