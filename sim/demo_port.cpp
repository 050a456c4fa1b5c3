#include "sim/demo_port.h"

#include "sim/demo_content.h"

#include <utility>

namespace hr::sim
{
namespace
{

const QLatin1String DirectSpeed("115200,");

}

DemoPort::DemoPort(Events &clock, QString imageFile) : SimPort(clock), image(std::move(imageFile))
{
    layout().bus.keepLog = false;
    layout().station.settings.present = true;
    layout().station.locos = DemoStationLocos();
}

void DemoPort::prepareOpen(const QString &settings)
{
    if (!filled) {
        filled = true;
        FillDemoContent(layout().handheld.flash);
        layout().handheld.flash.keepIn(image);
    }
    const bool direct = settings.startsWith(DirectSpeed);
    const InterfaceKind wanted = direct ? InterfaceKind::Direct : InterfaceKind::TextPrompt;
    if (layout().adapter.kind() != wanted)
        layout().adapter.setKind(wanted);
}

} // namespace hr::sim
