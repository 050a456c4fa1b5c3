#include "cli/careful.h"
#include "cli/output.h"
#include "cli/results.h"
#include "jobs/report.h"
#include "jobs/take_back.h"

namespace hr::cli
{

namespace
{

const auto ListOption = QStringLiteral("liste");

Exit PrintList(const Call &call)
{
    QJsonArray array;
    for (const UndoListEntry &entry : UndoList()) {
        array += QJsonObject{{QStringLiteral("nummer"), entry.number}, {QStringLiteral("zeit"), entry.time},
            {QStringLiteral("auftrag"), entry.command}, {QStringLiteral("handregler"), entry.handheld},
            {QStringLiteral("datensaetze"), RecordsJson(entry.changed)},
            {QStringLiteral("beschaedigt"), entry.damaged}};
        if (call.options.json)
            continue;
        const QString number = entry.number > 0 ? QString::number(entry.number) : QStringLiteral("-");
        PrintLine(number.rightJustified(6) + QStringLiteral("  ") + entry.time + QStringLiteral("  ") + entry.command
            + QStringLiteral(": ") + ContentText(entry.changed)
            + (entry.damaged ? QStringLiteral(" (beschädigt)") : QString()));
    }
    if (call.options.json)
        PrintJson(QJsonDocument(array));
    else if (array.isEmpty())
        Tell(QStringLiteral("Es gibt nichts zurückzunehmen."));
    return Exit::Done;
}

/// The number of the argument, or the newest one; nothing after a message.
std::optional<int> NumberOf(const Call &call)
{
    if (call.arguments.isEmpty())
        return NewestChange;
    bool isNumber = false;
    const int number = call.arguments.constFirst().toInt(&isNumber);
    if (isNumber && number > 0)
        return number;
    UsageFault(QStringLiteral("\"%1\" ist keine Nummer aus --liste.").arg(call.arguments.constFirst()));
    return {};
}

Exit Run(const Call &call)
{
    if (call.has(ListOption))
        return PrintList(call);
    const auto number = NumberOf(call);
    if (!number)
        return Exit::Usage;
    const auto offer = OfferTakeBack({}, *number);
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
    return {QStringLiteral("zuruecknehmen"), {QStringLiteral("[NUMMER]")},
        QStringLiteral("nimmt die letzte Änderung zurück: schreibt, was vorher da stand (fragt vorher)"),
        CarefulOptions(Keeps::Nothing) << QCommandLineOption(ListOption,
            QStringLiteral("zeigt nur, was zurückgenommen werden kann: wann, wodurch, welche Datensätze")),
        Run,
        QStringLiteral(
            "Was jemand seither anders geändert hat, bleibt, wie es ist, und wird genannt; --alles-schreiben "
            "schreibt auch dort zurück.")};
}

} // namespace hr::cli
