#include "ui/option_commands.h"

#include "handheld/discovery.h"
#include "handheld/loco_record.h"
#include "handheld/options.h"
#include "handheld/symbol_storage.h"
#include "link/branding.h"
#include "link/message_layer.h"
#include "link/open_port.h"
#include "platform/run_control.h"
#include "symbols/editor/pixel_editor.h"
#include "symbols/symbol_geometry.h"
#include "ui/progress.h"
#include "ui/qt_frontend.h"

#include <QCoreApplication>

namespace
{

constexpr int BlankLineLength = 28;

/// The line that names the publisher in the information box.
QString PublisherLine()
{
    return QStringLiteral("              Konfigurationswerkzeug für Handregler              ");
}

} // namespace

void ReturnToOperatingMode()
{
    const BusyScope busy;
    if (!busy.ok() || !HandreglerGefunden)
        return;
    int status = 0;
    SetNormalMode(true, status);
    WaitSeconds(LastTrafficSeconds);
    if (WaitsMustEnd() && TxLen != -1 && !TxWaitEcho) {
        DropPendingMessage(); // the program ends before the message has left: its end sends it
        return;
    }
    HandreglerGefunden = false;
}

void AskAndClearAllLocoRecords()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const BoxText question{QStringLiteral("Sollen alle 9999 Lokdatensätze gelöscht werden?\r"
                                          "          (Löschdauer: ca. 80min)"),
        QStringLiteral("Lokdatensätze löschen"), BoxIcon::None};
    if (!TheFrontend().askYesNo(question, false) || !HandheldConnected())
        return;
    const Progress progress(QStringLiteral("Lösche Lok "));
    ClearAllLocoRecords();
}

void AskAndClearSwitchOffTime()
{
    const BusyScope busy;
    if (!busy.ok() || !HandheldConnected())
        return;
    const BoxText question{QStringLiteral("Soll die Abschaltzeit auf Null gesetzt werden?\r"
                                          " (für die Version 1.0 des Handreglers)        "),
        TheBranding().toolTitle, BoxIcon::Information};
    if (TheFrontend().askYesNo(question, true))
        ClearSwitchOffTime();
}

void AskAndResetFktSymbols()
{
    const BusyScope busy;
    if (!busy.ok() || !HandheldConnected())
        return;
    const BoxText question{
        QStringLiteral("    Sollen die leeren Funktionssymbolnummern 164 - 255 zurückgesetzt werden? \r"
                       " (Damit bei einer Auswahl dieser Symbole keine Streifen mehr im Display entstehen.)\r"
                       "                   (nur für die Version 1.0 des Handreglers)        "),
        TheBranding().fktSymTitle, BoxIcon::Information};
    if (!TheFrontend().askYesNo(question, true))
        return;
    const Progress progress(QStringLiteral("Fktsym. "));
    ResetFktSymbols();
}

void EditStartImage()
{
    const BusyScope busy;
    if (!busy.ok() || !HandheldConnected())
        return;
    {
        const Progress progress(QStringLiteral("Lese Startbild"));
        ReadStartImage();
        WaitSeconds(StandardDelaySeconds);
    }
    if (!Comm().isOpen() || WaitsMustEnd())
        return;
    SetStartImageGeometry();
    {
        const WaitingWindow waiting(PixelEditorWindow());
        EditPicture();
    }
    const BoxText question{QStringLiteral("Soll das Startbild in den Handregler geschrieben werden?"),
        QStringLiteral("Startbild ändern?"), BoxIcon::None};
    if (!TheFrontend().askYesNo(question, true) || !HandheldConnected())
        return;
    const Progress progress(QStringLiteral("Schreibe Startbild"));
    WriteStartImage();
    WaitSeconds(StandardDelaySeconds);
}

void ShowProgramInfo()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const QString blankLine(BlankLineLength, u' ');
    const QString version = QStringLiteral("                         Version ")
        + QCoreApplication::applicationVersion() + QStringLiteral("        ");
    const QStringList lines{PublisherLine(), blankLine, TheBranding().progInfoLine, version, blankLine};
    TheFrontend().showBox({lines.join(u'\r'), TheBranding().progInfoTitle, BoxIcon::None});
}
