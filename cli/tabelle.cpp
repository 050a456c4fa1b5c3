#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "jobs/report.h"
#include "roster/table_csv.h"

namespace
{

std::optional<RecordKind> KindOfWord(const QString &word)
{
    for (const RecordKind kind : AllKinds) {
        if (IsTableKind(kind) && RowOf(kind).option == word)
            return kind;
    }
    UsageFault(QStringLiteral("\"%1\": hier muss fahrstrassen, zuordnung oder magliste stehen.").arg(word));
    return {};
}

Report RunOne(StepKind step, RecordKind kind, const RecordValue &value)
{
    return RunJob({.steps = {{step, {kind, 0}, value, {}}},
        .progress = [](const Step &running) { return ProgressText(running.id); },
        .patience = step == StepKind::Read ? Patience::Agreed : Patience::Job,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true});
}

/// The table as the handheld has it; nothing (after a message) when that is not sure.
std::optional<RecordValue> ReadTable(RecordKind kind, Exit &exit)
{
    const Report report = RunOne(StepKind::Read, kind, {});
    exit = ExitOf(report);
    if (exit == Exit::Done)
        return report.entries.front().value;
    Tell(QStringLiteral("Die Tabelle wurde nicht sicher gelesen; es wird nichts geschrieben."));
    return {};
}

Exit ReadInto(const Call &call, RecordKind kind, const QString &fileName)
{
    const Service service(call);
    if (!service.ready())
        return service.failure();
    Exit exit = Exit::Done;
    const auto table = ReadTable(kind, exit);
    if (!table)
        return exit;
    if (!WriteFileArgument(fileName, TableCsv(*table)))
        return Exit::Usage;
    if (call.options.json)
        PrintJson(QJsonDocument(QJsonObject{{QStringLiteral("datei"), fileName}}));
    else
        PrintLine(RowOf(kind).plural + QStringLiteral(" gelesen nach ") + fileName);
    return Exit::Done;
}

Exit WriteFrom(const Call &call, RecordKind kind, const QString &fileName)
{
    const auto file = ReadFileArgument(fileName);
    if (!file)
        return Exit::Usage;
    const TableChanges changes = ReadTableCsv(*file, kind);
    if (!changes.faults.empty())
        return FileFaults(fileName, FaultsText(changes.faults));
    const Service service(call);
    if (!service.ready())
        return service.failure();
    Exit exit = Exit::Done;
    auto table = ReadTable(kind, exit);
    if (!table)
        return exit;
    if (InterruptTaken()) { // while the table was read, which was finished
        Tell(QStringLiteral("Abgebrochen: Es wurde nichts geschrieben."));
        return Exit::Stopped;
    }
    changes.apply(*table);
    return PrintReport(call, RunOne(StepKind::Write, kind, *table), QStringLiteral("In den Handregler geschrieben:"),
        QStringLiteral("geschrieben"));
}

Exit Run(const Call &call)
{
    const QString verb = call.arguments.value(0);
    const auto kind = KindOfWord(call.arguments.value(1));
    if (!kind)
        return Exit::Usage;
    if (verb == u"lesen")
        return ReadInto(call, *kind, call.arguments.value(2));
    if (verb == u"schreiben")
        return WriteFrom(call, *kind, call.arguments.value(2));
    return UsageFault(QStringLiteral("\"%1\": hier muss lesen oder schreiben stehen.").arg(verb));
}

} // namespace

Command TableCommand()
{
    return {QStringLiteral("tabelle"),
        {QStringLiteral("lesen|schreiben"), QStringLiteral("fahrstrassen|zuordnung|magliste"),
            QStringLiteral("DATEI.csv")},
        QStringLiteral("eine Tabelle in eine CSV-Datei oder aus ihr in den Handregler"), {}, Run,
        QStringLiteral("Beim Schreiben ändert sich nur, was die Datei nennt. Spalten:\n"
                       "  fahrstrassen  Fahrstraße;Rückmelder;Auslösung (frei oder besetzt)\n"
                       "  zuordnung     Adresse;Symbol\n"
                       "  magliste      Platz;Adresse;Bezeichnung;Symbol")};
}
