#include "link/link_state.h"

PortValue PortNumber;
int InterfaceType = InterfaceNone;
bool HandreglerGefunden = false;
bool LinkLost = false;

void UseSettings(const LinkSettings &settings)
{
    PortNumber = settings.port;
    InterfaceType = settings.interfaceType;
}

LinkSettings SettingsInUse()
{
    return {PortNumber, InterfaceType};
}
