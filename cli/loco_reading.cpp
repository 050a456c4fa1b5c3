#include "cli/loco_reading.h"

#include "cli/output.h"
#include "jobs/report.h"
#include "platform/text.h"

Plan ReadingPlan(const std::vector<int> &numbers, StepKind kind)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) { return ProgressText(step.id); },
        .patience = Patience::Agreed,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    for (const int n : numbers)
        plan.steps.push_back({kind, {KindLoco, n}, {}, {}});
    return plan;
}

std::vector<RosterLoco> LocosOf(const Report &report, bool emptyToo)
{
    std::vector<RosterLoco> locos;
    for (const JobEntry &entry : report.entries) {
        const bool read = entry.state == RecordState::Done || entry.state == RecordState::Doubtful;
        if (read && entry.value && !entry.outcome.brokenOff())
            locos.push_back({entry.step.id.number, std::get<LocoRecord>(*entry.value)});
        else if (entry.state == RecordState::Empty && emptyToo)
            locos.push_back({entry.step.id.number, {.name = EmptyName()}});
    }
    return locos;
}

void TellDoubts(const Report &report)
{
    if (report.end != JobEnd::Complete)
        Tell(EndText(report.end, QStringLiteral("Abgebrochen.")));
    const auto doubtful = IdsOf(report, RecordState::Doubtful);
    if (!doubtful.empty())
        Tell(QStringLiteral("Unsicher gelesen:\n") + ScreenLines(RecordsText(doubtful)));
    const auto untouched = IdsOf(report, RecordState::Untouched);
    if (!untouched.empty())
        Tell(QStringLiteral("Nicht gelesen:\n") + ScreenLines(RecordsText(untouched)));
}
