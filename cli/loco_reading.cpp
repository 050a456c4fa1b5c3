#include "cli/loco_reading.h"

#include "cli/output.h"
#include "jobs/report.h"
#include "platform/text.h"

namespace hr::cli
{

Plan ReadingPlan(const std::vector<int> &numbers, StepKind kind)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) { return ProgressText(step.id); },
        .patience = Patience::Agreed,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    for (const int n : numbers)
        plan.steps.push_back({kind, {RecordKind::Loco, n}, {}, {}});
    return plan;
}

std::vector<RosterLoco> LocosOf(const Report &report, bool emptyToo)
{
    std::vector<RosterLoco> locos;
    for (const JobEntry &entry : report.entries) {
        if (entry.state == RecordState::Done && entry.value)
            locos.push_back({entry.step.id.number, std::get<LocoRecord>(*entry.value)});
        else if (entry.state == RecordState::Empty && emptyToo)
            locos.push_back({entry.step.id.number, {.name = EmptyName()}});
    }
    return locos;
}

void TellDoubts(const Report &report)
{
    if (ReaderGone())
        return;
    if (report.end != JobEnd::Complete)
        Tell(EndText(report.end, QStringLiteral("Angehalten.")));
    std::vector<RecordId> doubtful;
    std::vector<RecordId> unread;
    for (const JobEntry &entry : report.entries) {
        if (entry.state == RecordState::Untouched || entry.outcome.brokenOff())
            unread.push_back(entry.step.id);
        else if (entry.state == RecordState::Doubtful)
            doubtful.push_back(entry.step.id);
    }
    if (!doubtful.empty())
        Tell(QStringLiteral("Unsicher gelesen und deshalb nicht ausgegeben:\n") + ScreenLines(RecordsText(doubtful)));
    if (!unread.empty())
        Tell(QStringLiteral("Nicht gelesen:\n") + ScreenLines(RecordsText(unread)));
}

} // namespace hr::cli
