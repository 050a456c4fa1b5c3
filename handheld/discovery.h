// Finding the handheld, its version and kind, and sending it back to normal operation.
#pragma once

#include <QString>

/// What the last successful search read; empty when the handheld did not identify itself.
extern QString HandheldVersion; // for example "1.2"
extern QString HandheldDate;    // day.month.year without padding, for example "14.3.8"
extern QString HandheldType;    // five characters, for example "51201"
extern QString HandheldKind;    // "Funk-HR", "Digital-Set" or empty

/// Sends the normal-mode message, which calls the handheld into service and sends it back to normal operation.
/// noWait: returns at once with status 0. Otherwise status 0 when the handheld acknowledged within 2 s, else 1.
/// Shows no box.
void SetNormalMode(bool noWait, int &status);

/// Pause after the handheld was sent back, for the last traffic.
constexpr double LastTrafficSeconds = 0.5;

/// Asks the handheld to identify itself. The texts stay empty when no answer came within 2 s, which the user
/// sees as the box "Timeout" / "read_spibuf". The answer lies in SpiBuf[0..19]:
///   0 version major, 1 version minor, 2-4 day, month, year, 5-9 type number (ASCII, or digit values below 10)
void ReadHandheldInfo(QString &version, QString &date, QString &type);

/// A text of the handheld's display text table: 32 bytes, byte 0 = length (below 22), then the characters in the
/// handheld's codes. Empty when there is no text or the handheld does not answer ("Timeout" box).
QString ReadHandheldText(int block, int number);

/// Opens the port when it is closed. False when it stays closed: "ComPort konnte nicht geöffnet werden!" has been
/// shown then, except when no interface kind has been chosen yet or the program ends.
bool PortReady();

/// The handheld search: opens the port when it is closed, calls the handheld, reads version and kind, shows them
/// in the main window's title and sets HandreglerGefunden. Failures are reported by boxes: "ComPort konnte nicht
/// geöffnet werden!", "Handregler antwortet nicht!".
void ConnectHandheld();

/// The connection guard of every handheld command: searches when no handheld has been found yet. SpiBuf is as
/// before afterwards, since a window may show what it holds. False when there is still no handheld.
bool HandheldConnected();

/// Sends a found handheld back to normal operation, at the end of the program.
void CloseHandheld();

void ResetDiscovery();
