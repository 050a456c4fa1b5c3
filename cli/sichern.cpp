#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "handheld/backup/number_list.h"
#include "jobs/backup.h"
#include "jobs/journal.h"
#include "jobs/report.h"
#include "platform/text.h"
#include "program/run_control.h"

#include <QDir>

namespace hr::cli
{

namespace
{

const auto AllOption = QStringLiteral("alles");
const auto SearchOption = QStringLiteral("loks-suchen");
const auto GoOnOption = QStringLiteral("fortsetzen");
const auto KeepOption = QStringLiteral("teil-behalten");

BackupSelection Everything()
{
    BackupSelection selection;
    for (const auto kind : {LokSymbolList, FktSymbolList, MagSymbolList})
        selection.numbered.at(kind) = {true, true, {}};
    selection.fsDaten = selection.magSymZuord = selection.magListe = selection.lokSuche = true;
    return selection;
}

/// The chosen numbers of a kind; a fault after a message.
bool TakeList(const Call &call, NumberedKind kind, BackupSelection &selection)
{
    const KindRow &row = RowOfChoice(kind);
    if (!call.has(row.option))
        return true;
    const auto numbers = ListArgument(call.value(row.option), row.lowest, row.highest);
    if (!numbers)
        return false;
    selection.numbered.at(kind) = {true, false, ShortList(*numbers, QString())};
    return true;
}

bool TakeSearch(const Call &call, BackupSelection &selection)
{
    if (!call.has(SearchOption))
        return true;
    const QString range = call.value(SearchOption);
    if (range.contains(u',')) {
        UsageFault(QStringLiteral("--loks-suchen %1: hier muss ein Bereich stehen, zum Beispiel 1-999.").arg(range));
        return false;
    }
    const auto numbers = ListArgument(range, FirstLoco, LastLoco);
    if (!numbers)
        return false;
    selection.lokSuche = true;
    selection.lokSucheStart = *std::min_element(numbers->begin(), numbers->end());
    selection.lokSucheStop = *std::max_element(numbers->begin(), numbers->end());
    return true;
}

std::optional<BackupSelection> SelectionOf(const Call &call)
{
    BackupSelection selection = call.has(AllOption) ? Everything() : BackupSelection();
    for (int kind = 0; kind < NumberedKindCount; ++kind) {
        if (!TakeList(call, static_cast<NumberedKind>(kind), selection))
            return {};
    }
    if (!TakeSearch(call, selection))
        return {};
    selection.fsDaten = selection.fsDaten || call.has(RowOf(RecordKind::RouteTable).option);
    selection.magSymZuord = selection.magSymZuord || call.has(RowOf(RecordKind::AssignmentTable).option);
    selection.magListe = selection.magListe || call.has(RowOf(RecordKind::PlaceTable).option);
    if (!NothingWanted(selection))
        return selection;
    UsageFault(QStringLiteral("Was gesichert werden soll, fehlt: zum Beispiel --alles oder --loks 1-5,8."));
    return {};
}

void PrintSaved(const Call &call, const BackupOutcome &outcome)
{
    const QString file = QDir::toNativeSeparators(outcome.fileName);
    if (call.options.json) {
        PrintJson(QJsonDocument(QJsonObject{{QStringLiteral("datei"), outcome.written ? file : QString()},
            {QStringLiteral("gesichert"), RecordsJson(outcome.written ? outcome.saved : std::vector<RecordId>())},
            {QStringLiteral("unsicher"), RecordsJson(outcome.doubtful)},
            {QStringLiteral("ungelesen"), RecordsJson(outcome.unread)}}));
    } else if (outcome.written) {
        PrintLine(QStringLiteral("Gesichert in %1:").arg(file));
        PrintLine(ScreenLines(RecordsText(outcome.saved)));
    }
}

/// Why a call ends before it begins: an earlier part that is to be gone on with, or that only a user may give up.
QString WhyNot(const Call &call, const QString &fileName, const JournalHead &head, bool canGoOn)
{
    JournalContent content;
    const Earlier found = EarlierPart(fileName, head, content);
    const QString fault = EarlierFault(found, fileName);
    if (call.has(GoOnOption) && fault.isEmpty() && !canGoOn)
        return QStringLiteral("Es gibt nichts fortzusetzen.");
    if (call.has(GoOnOption) || fault.isEmpty() || !call.options.yes)
        return call.has(GoOnOption) ? fault : QString();
    return fault + QStringLiteral(" Ob er verworfen werden soll, beantwortet --ja nicht.");
}

Exit Run(const Call &call)
{
    const auto selection = SelectionOf(call);
    if (!selection || !WritesKind(call, call.arguments.value(0), QStringLiteral("dds")))
        return Exit::Usage;
    const Service service(call);
    if (!service.ready())
        return service.failure();
    const QString fileName = call.arguments.value(0);
    const QString handheld = HandheldName(service.handheld());
    const JournalHead head = BackupHead(*selection, handheld);
    auto broken = FindBrokenOff(fileName, head);
    if (broken && broken->fileName != fileName)
        broken.reset(); // here the user has named the file
    if (const QString fault = WhyNot(call, fileName, head, broken.has_value()); !fault.isEmpty())
        return UsageFault(fault);
    const bool goOn = broken && (call.has(GoOnOption) || AgreesToGoOn(call, broken->question));
    const BackupOutcome outcome = Backup(fileName, *selection, BackupMemory{handheld, goOn});
    if (outcome.kept > 0 && call.has(KeepOption)) {
        if (const QString part = KeepPart(fileName); !part.isEmpty())
            Tell(QStringLiteral("Was gelesen wurde, steht in %1.").arg(QDir::toNativeSeparators(part)));
    }
    const bool sound = outcome.doubtful.empty() && outcome.unread.empty();
    if (BoxesAreSilent() && !outcome.written)
        Tell(QStringLiteral("Die Datensicherung wurde angehalten; es wurde keine Datei geschrieben."));
    else if (outcome.end != JobEnd::Complete || !sound)
        ReportBackup(outcome);
    PrintSaved(call, outcome);
    return ExitOf(outcome.end, sound);
}

} // namespace

Command BackupCommand()
{
    const auto list = QStringLiteral("LISTE");
    return {QStringLiteral("sichern"), {QStringLiteral("DATEI.dds")},
        QStringLiteral("sichert Daten des Handreglers in eine Datei"),
        {{AllOption, QStringLiteral("alles, was der Handregler hat; Loks werden auf 1-9999 gesucht")},
            {RowOf(RecordKind::Loco).option, QStringLiteral("diese Loks (oder alle)"), list},
            {SearchOption, QStringLiteral("die belegten Loks zwischen zwei Adressen"), QStringLiteral("A-B")},
            {RowOf(RecordKind::LocoSymbol).option, QStringLiteral("diese Loksymbole (oder alle)"), list},
            {RowOf(RecordKind::FunctionOn).option, QStringLiteral("diese Funktionssymbole (oder alle)"), list},
            {RowOf(RecordKind::AccessoryGreen).option, QStringLiteral("diese Magnetartikelsymbole (oder alle)"),
                list},
            {RowOf(RecordKind::RouteTable).option, QStringLiteral("die Fahrstraßen")},
            {RowOf(RecordKind::AssignmentTable).option, QStringLiteral("die Symbolzuordnung der Magnetartikel")},
            {RowOf(RecordKind::PlaceTable).option, QStringLiteral("die Magnetartikelliste")},
            {GoOnOption, QStringLiteral("setzt eine abgebrochene Sicherung fort")},
            {KeepOption, QStringLiteral("behält auch von einer abgebrochenen, was schon gelesen ist")},
            AsKindOption(QStringLiteral("dds"))},
        Run,
        QStringLiteral(
            "LISTE: Nummern und Bereiche, zum Beispiel 1-5,8. Eine vorhandene Datei wird ersetzt; nur wenn die neue\n"
            "zweifelhaft oder unvollständig ist, wird vorher gefragt.")};
}

} // namespace hr::cli
