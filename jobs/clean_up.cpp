#include "jobs/clean_up.h"

#include "handheld/flash_map.h"
#include "program/run_control.h"

namespace
{
constexpr int FirstResetSymbol = 164;
constexpr double SettleSeconds = 0.5;
} // namespace

Report ClearAllLocoRecords()
{
    Plan plan{{}, [](const Step &step) { return QStringLiteral("Lösche Lok ") + QString::number(step.id.number); },
        Patience::Job, true, false};
    for (int n = FirstLoco; n <= LastLoco; ++n)
        plan.steps.push_back({StepKind::Delete, {KindLoco, n}, {}, {}});
    return RunJob(plan);
}

Report ResetFktSymbols()
{
    Plan plan{{}, [](const Step &step) { return QStringLiteral("Fktsym. ") + QString::number(step.id.number); },
        Patience::Job, true, false};
    for (int n = FirstResetSymbol; n < PairCount; ++n) {
        for (const int half : {HalfOn, HalfOff})
            plan.steps.push_back(
                {StepKind::Write, {KindFktSymbolOn + half, n}, EmptyPicture(SymbolKind::Function), {}});
    }
    Report report = RunJob(plan);
    WaitSeconds(SettleSeconds);
    return report;
}
