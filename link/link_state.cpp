#include "link/link_state.h"

#include "platform/port_name.h"

#include <utility>

namespace hr::link
{

void LinkState::use(const LinkSettings &settings)
{
    PortNumber = settings.port;
    InterfaceType = NetworkPortOf(settings.port.text) ? InterfaceDirect : settings.interfaceType;
}

void LinkState::endService()
{
    const bool was = std::exchange(HandreglerGefunden, false);
    if (was && serviceEnds)
        serviceEnds();
}

LinkState &TheLink()
{
    static LinkState link;
    return link;
}

} // namespace hr::link
