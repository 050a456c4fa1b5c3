#include "cli/careful.h"
#include "cli/results.h"
#include "jobs/restore.h"

namespace hr::cli
{

namespace
{

Exit Run(const Call &call)
{
    const auto file = ReadFileArgument(call.arguments.value(0));
    if (!file || !IsBackupArgument(call.arguments.value(0), *file))
        return Exit::Usage;
    const auto offer = OfferRestore(call.arguments.value(0));
    if (!offer)
        return Exit::Usage;
    CarefulJob job = JobOf(call);
    job.fileName = call.arguments.value(0);
    job.asks = false; // it was asked
    for (const DdsRecord &record : offer->records)
        job.about += record.bytes;
    job.steps = RestorePlan(offer->records).steps;
    if (!call.has(QStringLiteral("probe")) && !TheAsk().askYesNo(offer->question, false))
        return Exit::Stopped;
    return RunCarefully(call, job);
}

} // namespace

Command RestoreCommand()
{
    return {QStringLiteral("zurueck"), {QStringLiteral("DATEI.dds")},
        QStringLiteral("schreibt eine Datensicherung in den Handregler zurück (fragt vorher)"),
        CarefulOptions(Keeps::Journal), Run,
        QStringLiteral(
            "Die Datei wird zuerst ganz geprüft. Was der Handregler unter diesen Nummern hat, wird überschrieben.")};
}

} // namespace hr::cli
