// Finding the handheld, its version and kind, and sending it back to normal operation.
#pragma once

#include "program/outcome.h"

#include <QString>

namespace hr::handheld
{

/// What a handheld says about itself; all empty when it did not identify itself.
struct HandheldInfo {
    QString version; // for example "1.2"
    QString date;    // day.month.year without padding, for example "14.3.8"
    QString type;    // five characters, for example "51201"
    QString kind;    // "Funk-HR", "Digital-Set" or empty
};

/// Sends the normal-mode message, which calls the handheld into service and sends it back to normal operation.
/// noWait: done as soon as it is laid. Otherwise done when the handheld acknowledged within 2 s. Shows no box.
Outcome SetNormalMode(bool noWait);

/// Asks the handheld to identify itself; the kind is not set. No answer within 2 s shows the box "Timeout" /
/// "read_spibuf". The answer's 20 bytes:
///   0 version major, 1 version minor, 2-4 day, month, year, 5-9 type number (ASCII, or digit values below 10)
Result<HandheldInfo> ReadHandheldInfo();

/// A text of the handheld's display text table: 32 bytes, byte 0 = length (below 22), then the characters in the
/// handheld's codes. Empty when there is no text or the handheld does not answer ("Timeout" box).
QString ReadHandheldText(int block, int number);

/// Calls the handheld over the open port, sets HandreglerGefunden when it acknowledges, and reads what it is. The
/// outcome is that of the call; a failure is told: "Handregler antwortet nicht!".
Result<HandheldInfo> FindHandheld();

/// Sends a found handheld back to normal operation, also one whose search was broken off after the call had gone out;
/// exactly once, even when the program is already ending. Done also when there is none to be sent back.
Outcome SendHandheldBack();

/// The same without waiting for its acknowledge: pauses for the last traffic instead. HandreglerGefunden stays true
/// when the message could not leave, so that the end of the program sends it.
Outcome SendHandheldBackNoWait();

void ResetDiscovery();

} // namespace hr::handheld
