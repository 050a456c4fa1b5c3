#include "jobs/spread.h"

#include "handheld/backup/number_list.h"
#include "jobs/report.h"

#include <set>

namespace hr::jobs
{

namespace
{

QString Title()
{
    return QStringLiteral("Funktionen übertragen");
}

Step SpreadStep(const LocoRecord &from, int address)
{
    return {StepKind::Merge, {RecordKind::Loco, address}, {}, [from](const RecordValue &present) {
                LocoRecord merged = std::get<LocoRecord>(present);
                merged.symbols = from.symbols;
                merged.modes = from.modes;
                merged.multiUni = from.multiUni;
                return merged;
            }};
}

Plan SpreadPlan(const LocoRecord &from, const std::set<int> &addresses)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString {
            return QStringLiteral("Funktionen: Lok ") + QString::number(step.id.number);
        },
        .patience = Patience::Job,
        .endsAtFailure = true,
        .ownerTellsPortLoss = true};
    for (const int address : addresses)
        plan.steps.push_back(SpreadStep(from, address));
    return plan;
}

void ReportSpread(const Report &report)
{
    const auto group = [&report](const char *heading, RecordState state) {
        const std::vector<RecordId> ids = IdsOf(report, state);
        return ids.empty() ? QString()
                           : QString::fromUtf8(heading) + u'\r' + RecordsText(ids) + QStringLiteral("\r\r");
    };
    const QString text = group("Funktionen geschrieben:", RecordState::Done)
        + group("Leer, nicht geändert:", RecordState::Empty) + group("Unsicher:", RecordState::Doubtful)
        + group("Nicht geschrieben:", RecordState::Untouched);
    if (EndedEarly(report.end))
        ShowEndBox(
            report.end, EndText(report.end, QStringLiteral("Angehalten.")) + QStringLiteral("\r\r") + text.trimmed());
    else if (report.end == JobEnd::Complete)
        ShowDoneBox(text.trimmed(), Title());
}

} // namespace

void SpreadFunctions(
    const LocoRecord &from, const QString &list, const std::function<bool(const BoxText &question)> &confirm)
{
    std::set<int> addresses;
    NumberList numbers(list);
    for (int n = numbers.next(); n >= 0; n = numbers.next())
        addresses.insert(n);
    const QString question = QStringLiteral("Die Funktionen dieser Lok werden auf %1 übertragen;\r"
                                            "deren Name und Loksymbol bleiben. Soll geschrieben werden?")
                                 .arg(LocoCount(addresses.size()));
    if (confirm({question, Title(), BoxIcon::Information}))
        ReportSpread(RunJob(SpreadPlan(from, addresses)));
}

} // namespace hr::jobs
