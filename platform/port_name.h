// From the text in the port field to a device of this machine.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <optional>

namespace hr::platform
{

/// True when the text (blanks around it and case ignored) names the built-in simulated handheld, "Demo".
bool IsDemoPort(const QString &portText);

/// A port of another computer.
struct NetworkPort {
    bool plainBytes = false; // a serial line that is passed on as it is; otherwise LocoNet over TCP
    QString host;            // name or address, without brackets; may be empty where the text is wrong
    int port = 0;            // 1..65535; 0 where the text is wrong
};

constexpr int StandardNetworkPort = 1234;

/// What "HOST:PORT", "[IPv6]:PORT", "HOST:" (the standard port) and "raw:HOST:PORT" mean. Nothing for texts without a colon
/// and for what can be a device: paths, "COM3:".
std::optional<NetworkPort> NetworkPortOf(const QString &portText);

/// The device that a port text means; blanks around it are ignored. A number n is the serial port COMn on
/// Windows and /dev/ttyS(n-1) on Linux; any other text is a device name or path ("ttyUSB0", "/dev/pts/5").
/// An empty text, the number 0 and numbers above 9999 give an empty name, which no device has.
QString PortDevice(const QString &portText);

/// The same with its folder, as it is told to the user: "/dev/ttyUSB0" for "ttyUSB0" on Linux, "COM3" on Windows; a port
/// of the network as it was typed.
QString PortPath(const QString &portText);

} // namespace hr::platform
