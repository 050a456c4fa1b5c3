#include "cli/careful.h"
#include "cli/output.h"
#include "cli/results.h"
#include "jobs/take_back.h"

namespace
{

Exit Run(const Call &call)
{
    const auto offer = OfferTakeBack();
    if (!offer)
        return Exit::Usage;
    CarefulJob job = JobOf(call);
    job.steps = offer->steps;
    job.undoes = offer->fileName;
    job.lead = offer->lead;
    job.question = QStringLiteral("Soll die Änderung zurückgenommen werden?");
    return RunCarefully(call, job, {QStringLiteral("Zurückgenommen:"), QStringLiteral("geschrieben")},
        [&](const CarefulReport &report) { TakeBackEnded(*offer, report); });
}

} // namespace

Command TakeBackCommand()
{
    return {QStringLiteral("zuruecknehmen"), {},
        QStringLiteral("nimmt die letzte Änderung zurück: schreibt, was vorher da stand (fragt vorher)"),
        CarefulOptions(Keeps::Nothing), Run,
        QStringLiteral(
            "Was jemand seither anders geändert hat, bleibt, wie es ist, und wird genannt; --alles-schreiben "
            "schreibt auch dort zurück.")};
}
