#include "jobs/send.h"

#include "jobs/report.h"
#include "program/ask.h"

#include <algorithm>

namespace
{

QString Title()
{
    return QStringLiteral("Lokdaten senden");
}

Plan LookPlan(const std::vector<DownloadedLoco> &locos)
{
    Plan plan{{}, [](const Step &step) { return QStringLiteral("Prüfe Lok ") + QString::number(step.id.number); },
        Patience::Job, true, false};
    for (const DownloadedLoco &loco : locos)
        plan.steps.push_back({StepKind::IsUsed, {KindLoco, loco.address}, {}, {}});
    return plan;
}

Step SendStep(const DownloadedLoco &loco, bool taken)
{
    const LocoRecord record = RecordOfLoco(loco);
    if (!taken)
        return {StepKind::Write, {KindLoco, loco.address}, record, {}};
    return {StepKind::Merge, {KindLoco, loco.address}, {}, [record](const RecordValue &present) {
                LocoRecord merged = record;
                merged.symbols = std::get<LocoRecord>(present).symbols;
                return merged;
            }};
}

Plan SendPlan(const std::vector<DownloadedLoco> &locos, const Report &looked)
{
    Plan plan{{}, [](const Step &step) { return QStringLiteral("Sende Lok ") + QString::number(step.id.number); },
        Patience::Job, true, true};
    for (size_t i = 0; i < locos.size(); ++i)
        plan.steps.push_back(SendStep(locos.at(i), looked.entries.at(i).state == RecordState::Done));
    return plan;
}

bool MayOverwrite(const std::vector<DownloadedLoco> &locos, const Report &looked)
{
    const size_t taken = IdsOf(looked, RecordState::Done).size();
    if (taken == 0)
        return true;
    const QString text = QStringLiteral("Von %1 sind %2 im Handregler schon gespeichert und werden überschrieben\r"
                                        "(ihre Funktionssymbole bleiben). Sollen die Loks gesendet werden?")
                             .arg(LocoCount(locos.size()))
                             .arg(taken);
    return TheAsk().askYesNo({text, Title(), BoxIcon::Information}, false);
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

bool SendLocos(const std::vector<DownloadedLoco> &locos)
{
    const Report looked = RunJob(LookPlan(locos));
    TheAsk().hideProgress();
    if (looked.end != JobEnd::Complete || !MayOverwrite(locos, looked))
        return false;
    const Report sent = RunJob(SendPlan(locos, looked));
    TheAsk().hideProgress();
    ReportSent(sent);
    return true;
}
