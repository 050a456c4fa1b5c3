// The one place where the core finds its outer world. main() (or a test) installs it before anything else runs.
#pragma once

#include "platform/events.h"
#include "platform/serial_port.h"

namespace hr::platform
{

struct World {
    Events *events = nullptr;
    SerialPort *comm = nullptr;
};

/// Installs the outer world; the objects stay owned by the caller and must outlive all use.
void InstallWorld(const World &world);

/// The installed parts; asking for one that was not installed is a programming error (assertion).
Events &TheEvents();
SerialPort &Comm();

} // namespace hr::platform
