// From the text in the port field to a device of this machine.
#pragma once

#include "platform/rooms.h"

#include <QString>

namespace hr::platform
{

/// True when the text (blanks around it and case ignored) names the built-in simulated handheld, "Demo".
bool IsDemoPort(const QString &portText);

/// The device that a port text means; blanks around it are ignored. A number n is the serial port COMn on
/// Windows and /dev/ttyS(n-1) on Linux; any other text is a device name or path ("ttyUSB0", "/dev/pts/5").
/// An empty text, the number 0 and numbers above 9999 give an empty name, which no device has.
QString PortDevice(const QString &portText);

} // namespace hr::platform
