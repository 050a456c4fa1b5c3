// Port number and interface kind, and the file that remembers them, konf\ComPort.inf.
//
// The file holds two records, each ended by CR LF: the port (a text in double quotes, a number bare) and the
// interface kind (a bare number 1, 2 or 3). Empty values are empty fields. Example: "ttyUSB0" CR LF 3 CR LF
#pragma once

#include "platform/rooms.h"

#include <QByteArray>
#include <QString>

namespace hr::program
{

/// The port as read from the file or typed in the selection window.
struct PortValue {
    QString text;          // as typed, blanks included; empty = none
    bool isNumber = false; // read from the file without quotes, and written back without
};

constexpr int InterfaceNone = 0;     // empty: nothing chosen yet
constexpr int InterfaceOrvanto1 = 1; // text set-up at 2400 baud, then LocoNet at 19200 baud
constexpr int Interface48230 = 2;    // the choice is only recorded, the port is never opened
constexpr int InterfaceDirect = 3;   // LocoNet at 115200 baud

struct LinkSettings {
    PortValue port;
    int interfaceType = InterfaceNone; // InterfaceNone or 1..3
};

/// What the bytes of such a file say. Missing and damaged fields are empty.
LinkSettings ParseSettings(const QByteArray &content);

/// Reads konf\ComPort.inf, without a message when it is missing. Settings that could not be written hold for the run:
/// they are returned then.
LinkSettings ReadSettings();

/// Writes konf\ComPort.inf. When the folder cannot be written, a "Fehler!" box says so once in a run; the
/// settings then hold for this run only.
void WriteSettings(const LinkSettings &settings);

void ResetSettings();

} // namespace hr::program
