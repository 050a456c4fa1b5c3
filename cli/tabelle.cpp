#include "cli/careful.h"
#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "jobs/report.h"
#include "roster/table_csv.h"

namespace hr::cli
{

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

/// The table as the handheld has it; nothing (after a message) when that is not sure.
std::optional<RecordValue> ReadTable(RecordKind kind, Exit &exit)
{
    const Report report = RunJob({.steps = {{StepKind::Read, {kind, 0}, {}, {}}},
        .progress = [](const Step &running) { return ProgressText(running.id); },
        .patience = Patience::Agreed,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true});
    exit = ExitOf(report);
    if (exit == Exit::Done)
        return report.entries.front().value;
    Tell(QStringLiteral("Die Tabelle wurde nicht sicher gelesen; die Datei wird nicht geschrieben."));
    return {};
}

Exit ReadInto(const Call &call, RecordKind kind, const QString &fileName)
{
    if (!ReadsOnly(call) || !WritesKind(call, fileName, QStringLiteral("csv")))
        return Exit::Usage;
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
    CarefulJob job = JobOf(call);
    job.about = *file;
    job.steps = {{StepKind::Merge, {kind, 0}, {}, [changes](const RecordValue &present) {
                      RecordValue table = present;
                      changes.apply(table);
                      return table;
                  }}};
    job.lead = RowOf(kind).plural + QStringLiteral(":\r");
    return RunCarefully(call, job);
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
        QStringLiteral("eine Tabelle in eine CSV-Datei oder aus ihr in den Handregler"),
        CarefulOptions(Keeps::Nothing) << AsKindOption(QStringLiteral("csv")), Run,
        QStringLiteral("Beim Schreiben ändert sich nur, was die Datei nennt; vorher wird gefragt. Spalten:\n"
                       "  fahrstrassen  Fahrstraße;Rückmelder;Auslösung (frei oder besetzt)\n"
                       "  zuordnung     Magnetartikel;Symbol\n"
                       "  magliste      Platz;Adresse;Bezeichnung;Symbol")};
}

} // namespace hr::cli
