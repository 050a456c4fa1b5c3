// The class that stands for the machine's serial ports: on Qt's serial port module, or on Windows' own calls where Qt
// was built without that module (see CMakeLists.txt).
#pragma once

#ifdef HR_WIN_SERIAL_PORT
#include "platform/qt/win_serial_port.h"
#else
#include "platform/qt/qt_serial_port.h"
#endif

namespace hr::platform
{

#ifdef HR_WIN_SERIAL_PORT
using MachinePort = WinSerialPort;
#else
using MachinePort = QtSerialPort;
#endif

} // namespace hr::platform
