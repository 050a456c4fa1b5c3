#include "cli/loco_reading.h"
#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "handheld/flash_map.h"
#include "roster/loco_json.h"

namespace hr::cli
{

namespace
{

const auto CsvOption = QStringLiteral("csv");

QString TableLine(const RosterLoco &loco)
{
    QStringList functions;
    for (size_t f = 1; f < FunctionCount; ++f) {
        if (loco.record.symbols.at(f) != 0)
            functions += u'f' + QString::number(f);
    }
    return QString::number(loco.address).rightJustified(7) + QStringLiteral("  ")
        + ShownName(loco.record).leftJustified(NameLength) + QStringLiteral("  ")
        + QString::number(loco.record.locoSymbol).rightJustified(6) + QStringLiteral("  ") + functions.join(u' ');
}

/// Each line as soon as its record is read.
Watcher PrinterFor(const Call &call)
{
    Watcher watcher;
    const bool csv = call.has(CsvOption);
    if (call.options.json)
        return watcher;
    PrintLine(csv ? CsvHeading() : QStringLiteral("Adresse  Name                   Symbol  Funktionen mit Symbol"));
    watcher.finished = [csv](const JobEntry &entry) {
        if (entry.state != RecordState::Done || !entry.value)
            return;
        const RosterLoco loco{entry.step.id.number, std::get<LocoRecord>(*entry.value)};
        if (!IsEmptyName(loco.record.name))
            PrintLine(csv ? CsvLine(loco) : TableLine(loco));
    };
    return watcher;
}

Exit Run(const Call &call)
{
    const auto numbers = ListArgument(call.arguments.value(0, QStringLiteral("alle")), FirstLoco, LastLoco);
    if (!numbers)
        return Exit::Usage;
    const Service service(call);
    if (!service.ready())
        return service.failure();
    const Report report = RunJob(ReadingPlan(*numbers, StepKind::Search), PrinterFor(call));
    if (call.options.json)
        PrintJson(QJsonDocument(JsonOf(LocosOf(report, false))));
    TellDoubts(report);
    return ExitOf(report);
}

} // namespace

Command ListCommand()
{
    return {QStringLiteral("loks"), {QStringLiteral("[LISTE]")},
        QStringLiteral("die belegten Lokdatensätze von 1 bis 9999 oder der Liste, als Tabelle"),
        {QCommandLineOption(CsvOption, QStringLiteral("als CSV statt als Tabelle"))}, Run,
        QStringLiteral("Ohne LISTE werden alle 9999 Adressen durchsucht: etwa 10 Minuten, mit --schnell 2 bis 5.")};
}

} // namespace hr::cli
