#include "cli/careful.h"
#include "cli/results.h"
#include "handheld/backup/number_list.h"
#include "handheld/flash_map.h"
#include "jobs/report.h"
#include "program/ask.h"

namespace hr::cli
{

namespace
{

Exit Run(const Call &call)
{
    const auto numbers = ListArgument(call.arguments.value(0), FirstLoco, LastLoco);
    if (!numbers)
        return Exit::Usage;
    const QString list = ShortList(*numbers, QString());
    const BoxText question{
        QStringLiteral("Sollen diese Lokdatensätze im Handregler gelöscht werden: %1?").arg(list), {}, BoxIcon::None};
    if (!call.has(QStringLiteral("probe")) && !TheAsk().askYesNo(question, false))
        return Exit::Stopped;
    CarefulJob job = JobOf(call);
    job.asks = false; // it was asked
    for (const int number : *numbers)
        job.steps.push_back({StepKind::Delete, {RecordKind::Loco, number}, {}, {}});
    return RunCarefully(call, job, {QStringLiteral("Gelöscht:"), QStringLiteral("geloescht")});
}

} // namespace

Command DeleteCommand()
{
    return {QStringLiteral("loeschen"), {QStringLiteral("LISTE")},
        QStringLiteral("löscht Lokdatensätze im Handregler (fragt vorher)"), CarefulOptions(Keeps::Nothing), Run,
        QStringLiteral("LISTE: Nummern und Bereiche von 1 bis 9999, zum Beispiel 1-5,8.")};
}

} // namespace hr::cli
