#include "cli/results.h"
#include "cli/service.h"
#include "jobs/restore.h"

namespace
{

Exit Run(const Call &call)
{
    const auto offer = OfferRestore(call.arguments.value(0));
    if (!offer)
        return Exit::Usage;
    if (!TheAsk().askYesNo(offer->question, false))
        return Exit::Stopped;
    const Service service(call);
    if (!service.ready())
        return service.failure();
    return PrintReport(call, RunJob(RestorePlan(offer->records)), QStringLiteral("In den Handregler geschrieben:"),
        QStringLiteral("geschrieben"));
}

} // namespace

Command RestoreCommand()
{
    return {QStringLiteral("zurueck"), {QStringLiteral("DATEI.dds")},
        QStringLiteral("schreibt eine Datensicherung in den Handregler zurück (fragt vorher)"), {}, Run,
        QStringLiteral(
            "Die Datei wird zuerst ganz geprüft. Was der Handregler unter diesen Nummern hat, wird überschrieben.")};
}
