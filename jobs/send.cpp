#include "jobs/send.h"

#include "jobs/report.h"

namespace hr::jobs
{

namespace
{

QString Title()
{
    return QStringLiteral("Lokdaten senden");
}

Plan LookPlan(const std::vector<DownloadedLoco> &locos)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString {
            return QStringLiteral("Prüfe Lok ") + QString::number(step.id.number);
        },
        .patience = Patience::Job,
        .endsAtFailure = true,
        .ownerTellsPortLoss = true};
    for (const DownloadedLoco &loco : locos)
        plan.steps.push_back({StepKind::IsUsed, {RecordKind::Loco, loco.address}, {}, {}});
    return plan;
}

Step SendStep(const DownloadedLoco &loco, bool taken)
{
    const LocoRecord record = RecordOfLoco(loco);
    if (!taken)
        return {StepKind::Write, {RecordKind::Loco, loco.address}, record, {}};
    return {StepKind::Merge, {RecordKind::Loco, loco.address}, {}, [record](const RecordValue &present) {
                LocoRecord merged = record;
                merged.symbols = std::get<LocoRecord>(present).symbols;
                return merged;
            }};
}

Plan SendPlan(const std::vector<DownloadedLoco> &locos, const Report &looked)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString {
            return QStringLiteral("Sende Lok ") + QString::number(step.id.number);
        },
        .patience = Patience::Job,
        .endsAtFailure = true,
        .ownerTellsPortLoss = true};
    for (size_t i = 0; i < locos.size(); ++i)
        plan.steps.push_back(SendStep(locos.at(i), looked.entries.at(i).state == RecordState::Done));
    return plan;
}

BoxText Question(size_t locos, size_t taken)
{
    return {QStringLiteral("Von %1 sind %2 im Handregler schon gespeichert und werden überschrieben\r"
                           "(ihre Funktionssymbole bleiben). Sollen die Loks gesendet werden?")
                .arg(LocoCount(locos))
                .arg(taken),
        Title(), BoxIcon::Information};
}

void ReportSent(const Report &report)
{
    const size_t all = report.entries.size();
    const size_t written = IdsOf(report, RecordState::Done).size();
    QString text = QStringLiteral("%1 in den Handregler geschrieben.").arg(LocoCount(written));
    if (report.end == JobEnd::PortLost)
        text = EndText(report.end, {}) + u'\r' + text;
    if (written < all) {
        text += QStringLiteral("\rNicht oder nicht sicher geschrieben ab Adresse %1: %2.")
                    .arg(report.entries.at(written).step.id.number)
                    .arg(LocoCount(all - written));
    }
    TheAsk().showBox({text, Title(), written < all ? BoxIcon::Critical : BoxIcon::Information});
}

} // namespace

void SendLocos(const std::vector<DownloadedLoco> &locos, const std::function<bool(const BoxText &question)> &confirm)
{
    const Report looked = RunJob(LookPlan(locos));
    if (EndedEarly(looked.end)) {
        ShowEndBox(looked.end,
            EndText(looked.end, QStringLiteral("Angehalten.")) + u'\r'
                + QStringLiteral("Es wurde keine Lok gesendet."));
        return;
    }
    const size_t taken = IdsOf(looked, RecordState::Done).size();
    if (looked.end != JobEnd::Complete || (taken > 0 && !confirm(Question(locos.size(), taken))))
        return;
    ReportSent(RunJob(SendPlan(locos, looked)));
}

} // namespace hr::jobs
