#include "jobs/clean_up.h"

#include "handheld/flash_map.h"
#include "jobs/report.h"
#include "program/run_control.h"

#include <numeric>

namespace hr::jobs
{

namespace
{
constexpr int FirstResetSymbol = 164;
constexpr double SettleSeconds = 0.5;
} // namespace

Report ClearAllLocoRecords()
{
    std::vector<int> all(LastLoco);
    std::iota(all.begin(), all.end(), FirstLoco);
    return DeleteLocoRecords(all);
}

Report DeleteLocoRecords(const std::vector<int> &numbers)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString {
            return QStringLiteral("Lösche Lok ") + QString::number(step.id.number);
        },
        .patience = Patience::Job,
        .endsAtFailure = true,
        .ownerTellsPortLoss = true};
    for (const int n : numbers)
        plan.steps.push_back({StepKind::Delete, {RecordKind::Loco, n}, {}, {}});
    return RunJob(plan);
}

Report ResetFktSymbols()
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString {
            return QStringLiteral("Fktsym. ") + QString::number(step.id.number);
        },
        .patience = Patience::Job,
        .endsAtFailure = true,
        .ownerTellsPortLoss = true};
    for (int n = FirstResetSymbol; n < PairCount; ++n) {
        for (const int half : {HalfOn, HalfOff})
            plan.steps.push_back({StepKind::Write, {RecordKindOf(SymbolKind::Function, half), n},
                EmptyPicture(SymbolKind::Function), {}});
    }
    Report report = RunJob(plan);
    if (report.end == JobEnd::Complete)
        WaitSeconds(SettleSeconds);
    return report;
}

void ReportCleanUp(const Report &report, const QString &what, const QString &title)
{
    const std::vector<RecordId> done = IdsOf(report, RecordState::Done);
    const QString text = QStringLiteral("%1 %2.").arg(done.size()).arg(what);
    if (report.end == JobEnd::Complete)
        ShowDoneBox(text, title);
    else if (EndedEarly(report.end))
        ShowEndBox(report.end, EndText(report.end, QStringLiteral("Angehalten.")) + u'\r' + text);
}

} // namespace hr::jobs
