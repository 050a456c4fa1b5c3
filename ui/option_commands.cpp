#include "ui/option_commands.h"

#include "handheld/discovery.h"
#include "handheld/options.h"
#include "jobs/clean_up.h"
#include "jobs/problem_report.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "program/branding.h"
#include "program/preferences.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "shown/record.h"
#include "ui/common/command.h"
#include "ui/common/deeds.h"
#include "ui/common/desktop.h"
#include "ui/common/progress.h"

#include <QCoreApplication>
#include <QDir>

namespace hr::ui
{

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
    const Command command;
    if (!command.ok() || !TheLink().HandreglerGefunden)
        return;
    if (SendHandheldBackNoWait().ok()) {
        NoteDeed(QStringLiteral("Handregler in den Bedienmodus zurückgeschickt"));
        return;
    }
    TheAsk().showBox({QStringLiteral("Der Handregler konnte nicht zurückgeschickt werden.\r"
                                     "Das wird beim Beenden des Programms noch einmal versucht."),
        QStringLiteral("Achtung!"), BoxIcon::Critical});
}

void AskAndClearAllLocoRecords()
{
    const Command command;
    if (!command.ok())
        return;
    const BoxText question{QStringLiteral("Sollen alle 9999 Lokdatensätze gelöscht werden?\r"
                                          "          (Löschdauer: ca. 80min)"),
        QStringLiteral("Lokdatensätze löschen"), BoxIcon::None};
    if (!command.confirmed(question, false) || !command.mayWrite())
        return;
    ReportCleanUp(ClearAllLocoRecords(), QStringLiteral("Lokdatensätze gelöscht"), question.title);
}

void AskAndClearSwitchOffTime()
{
    const Command command;
    if (!command.mayWrite())
        return;
    const BoxText question{QStringLiteral("Soll die Abschaltzeit auf Null gesetzt werden?\r"
                                          " (für die Version 1.0 des Handreglers)        "),
        TheBranding().toolTitle, BoxIcon::Information};
    if (!command.confirmed(question, true))
        return;
    const Progress progress(QStringLiteral("Abschaltzeit ändern"));
    const auto mayWrite = [&command] {
        return command.mayWriteDoubtful(QStringLiteral("die Seite mit den Einstellungen"));
    };
    const Outcome written = ClearSwitchOffTime(SpiBuf, mayWrite);
    if (written.ok())
        NoteDeed(QStringLiteral("Abschaltzeit auf Null gesetzt"));
    if (!written.brokenOff())
        WaitSeconds(StandardDelaySeconds);
}

void AskAndResetFktSymbols()
{
    const Command command;
    if (!command.mayWrite())
        return;
    const BoxText question{
        QStringLiteral("    Sollen die leeren Funktionssymbolnummern 164 - 255 zurückgesetzt werden? \r"
                       " (Damit bei einer Auswahl dieser Symbole keine Streifen mehr im Display entstehen.)\r"
                       "                   (nur für die Version 1.0 des Handreglers)        "),
        TheBranding().fktSymTitle, BoxIcon::Information};
    if (!command.confirmed(question, false)) // drawn ones are emptied too
        return;
    ReportCleanUp(ResetFktSymbols(), QStringLiteral("Bilder von Funktionssymbolen zurückgesetzt"), question.title);
}

void ShowProgramInfo()
{
    const Command command;
    if (!command.ok())
        return;
    const QString blankLine(BlankLineLength, u' ');
    const QString version = QStringLiteral("                         Version ")
        + QCoreApplication::applicationVersion() + QStringLiteral("        ");
    QStringList lines{PublisherLine(), blankLine, TheBranding().progInfoLine, version, blankLine};
    if (DataFolder() != ProgramFolder())
        lines << QStringLiteral("Ihre Daten liegen in ") + QDir::toNativeSeparators(DataFolder()) << blankLine;
    TheAsk().showBox({lines.join(u'\r'), TheBranding().progInfoTitle, BoxIcon::None});
}

void SaveProblemReport(const BusTrace &lastMessages)
{
    const Command command;
    if (!command.ok())
        return;
    const BoxText question{QStringLiteral("Dürfen Loknamen und übertragene Daten im Bericht stehen?\r"
                                          "Ohne sie werden auch Namen von Benutzern und Rechnern ersetzt."),
        QStringLiteral("Problembericht"), BoxIcon::None};
    const bool shown = TheAsk().askYesNo(question, false);
    if (BoxesAreSilent())
        return;
    QString fileName = TheDesktop().saveFileName(QStringLiteral("Problembericht speichern"), QStringLiteral("*.txt"),
        DatedName(QStringLiteral("Problembericht")));
    if (fileName.isEmpty())
        return;
    if (!fileName.endsWith(QStringLiteral(".txt"), Qt::CaseInsensitive))
        fileName += QStringLiteral(".txt");
    ProblemFacts facts;
    facts.program = TheBranding().toolTitle + u' ' + QCoreApplication::applicationVersion();
    facts.handheld = TitleWithHandheld();
    facts.settings = QString::fromUtf8(ReadWholeFile(PreferencesPath()).value_or(QByteArray()));
    facts.lastReports = RecentReports();
    facts.messages = &lastMessages;
    const QString text = ProblemReport(facts, shown ? Personal::Shown : Personal::Hidden);
    if (!ReplaceFile(fileName, text.toUtf8()))
        ReportFileUnwritable(fileName);
    else
        NoteDeed(QStringLiteral("Problembericht gespeichert"));
}

} // namespace hr::ui
