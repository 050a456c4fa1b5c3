#include "program/branding.h"

namespace hr::program
{

const Branding &TheBranding()
{
    static const Branding branding{
        .code = QStringLiteral("AL"),
        .windowTitle = QStringLiteral("Arvelo T O O L"),
        .lokDataMenuCaption = QStringLiteral("Lokdaten aus TN7 holen"),
        .productLabel = QStringLiteral("Arvelo"),
        .directInterfaceCaption = QStringLiteral("TN7 oder Orvanto 2 oder Interface 48210"),
        .warningLine = QStringLiteral("Immer nur einen Arvelo Handregler mit LocoNet verbinden,"),
        .toolTitle = QStringLiteral("Arvelo TOOL"),
        .fktSymTitle = QStringLiteral("Arvelo II TOOL"),
        .progInfoTitle = QStringLiteral("Arvelo T O O L"),
        .progInfoLine = QStringLiteral("                   Arvelo T O O L     "),
        .saveDialogTitle = QStringLiteral("Arvelo Daten speichern"),
        .showDialogTitle = QStringLiteral("Arvelo Daten (Lokdaten) anzeigen"),
        .importTitle = QStringLiteral("Lokdaten aus der TN7"),
        .downloadText = QStringLiteral("TN7: Download Modus"),
        .noStationText = QStringLiteral("Keine TN7 vorhanden!"),
    };
    return branding;
}

} // namespace hr::program
