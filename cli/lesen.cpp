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

void PrintLoco(const RosterLoco &loco)
{
    PrintLine(QStringLiteral("Lok %1: %2").arg(loco.address).arg(ShownName(loco.record)));
    if (IsEmptyName(loco.record.name))
        return;
    const QString multiUni = loco.record.multiUni == 1 ? QStringLiteral("ja") : QStringLiteral("nein");
    PrintLine(
        QStringLiteral("  Symbol %1, ein Symbol für alle Funktionen: %2").arg(loco.record.locoSymbol).arg(multiUni));
    for (size_t f = 0; f < FunctionCount; ++f) {
        const QString manner = loco.record.modes.at(f) == 1 ? QStringLiteral("Taster") : QStringLiteral("Schalter");
        const QString symbol =
            f == 0 ? QString() : QStringLiteral(", Symbol %1").arg(loco.record.symbols.at(f)); // f0 has none
        PrintLine(QStringLiteral("  f%1: %2%3").arg(f).arg(manner, symbol));
    }
}

Exit Run(const Call &call)
{
    const auto numbers = ListArgument(call.arguments.value(0), FirstLoco, LastLoco);
    if (!numbers)
        return Exit::Usage;
    const Service service(call);
    if (!service.ready())
        return service.failure();
    const Report report = RunJob(ReadingPlan(*numbers, StepKind::Read));
    const std::vector<RosterLoco> locos = LocosOf(report, true);
    if (call.options.json)
        PrintJson(QJsonDocument(JsonOf(locos)));
    for (const RosterLoco &loco : call.options.json ? std::vector<RosterLoco>() : locos)
        PrintLoco(loco);
    TellDoubts(report);
    return ExitOf(report);
}

} // namespace

Command ReadCommand()
{
    return {QStringLiteral("lesen"), {QStringLiteral("LISTE")},
        QStringLiteral("liest Lokdatensätze vollständig, auch leere"), {}, Run,
        QStringLiteral("LISTE: Nummern und Bereiche von 1 bis 9999, zum Beispiel 1-5,8.")};
}

} // namespace hr::cli
