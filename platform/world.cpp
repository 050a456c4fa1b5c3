#include "platform/world.h"

namespace hr::platform
{

namespace
{
World installed;
}

void InstallWorld(const World &world)
{
    installed = world;
}

Events &TheEvents()
{
    Q_ASSERT(installed.events != nullptr);
    return *installed.events;
}

SerialPort &Comm()
{
    Q_ASSERT(installed.comm != nullptr);
    return *installed.comm;
}

} // namespace hr::platform
