#include "link/link_state.h"

#include <utility>

namespace hr::link
{

PortValue PortNumber;
int InterfaceType = InterfaceNone;
bool HandreglerGefunden = false;
bool LinkLost = false;

namespace
{
std::function<void()> serviceEnds;
}

void EndService()
{
    const bool was = std::exchange(HandreglerGefunden, false);
    if (was && serviceEnds)
        serviceEnds();
}

void OnServiceEnds(std::function<void()> handler)
{
    serviceEnds = std::move(handler);
}

void UseSettings(const LinkSettings &settings)
{
    PortNumber = settings.port;
    InterfaceType = settings.interfaceType;
}

LinkSettings SettingsInUse()
{
    return {PortNumber, InterfaceType};
}

} // namespace hr::link
