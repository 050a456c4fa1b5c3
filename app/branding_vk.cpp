#include "program/branding.h"

namespace hr::program
{

const Branding &TheBranding()
{
    static const Branding branding{
        .code = QStringLiteral("VK"),
        .windowTitle = QStringLiteral("V E S K A II T O O L"),
        .lokDataMenuCaption = QStringLiteral("Lokdaten aus OV2 holen"),
        .productLabel = QStringLiteral("VESKA"),
        .directInterfaceCaption = QStringLiteral("Orvanto Basic oder Orvanto 2 oder Interface 48210"),
        .warningLine = QStringLiteral("Immer nur einen VESKAII Handregler mit LocoNet verbinden,"),
        .toolTitle = QStringLiteral("VESKA II TOOL"),
        .fktSymTitle = QStringLiteral("VESKA II TOOL"),
        .progInfoTitle = QStringLiteral("VESKA II TOOL"),
        .progInfoLine = QStringLiteral("                   V E S K A  II  T O O L     "),
        .saveDialogTitle = QStringLiteral("Veska Daten speichern"),
        .showDialogTitle = QStringLiteral("Veska Daten (Lokdaten) anzeigen"),
        .importTitle = QStringLiteral("Lokdaten aus der Orvanto II"),
        .downloadText = QStringLiteral("OV2: Download Modus"),
        .noStationText = QStringLiteral("Keine OV2 vorhanden!"),
    };
    return branding;
}

} // namespace hr::program
