#include "jobs/runner.h"

#include "handheld/known_locos.h"
#include "link/cadence.h"
#include "link/open_link.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <algorithm>
#include <deque>

namespace
{

void ShowGroup(int group)
{
    TheAsk().showProgress(QStringLiteral("Lese Zuordnungsdaten ") + QString::number(group));
}

RecordState StateOfRead(const RecordValue &value, const Outcome &outcome, const SpiImage &image)
{
    const auto *loco = std::get_if<LocoRecord>(&value);
    if (loco == nullptr || !IsEmptyName(loco->name))
        return outcome.ok() ? RecordState::Done : RecordState::Doubtful;
    // Also a name that begins with a character no handheld writes: such a record must not be left out silently.
    const bool reallyEmpty = outcome.ok() && image.at(ReadPosition) == EmptyByte;
    return reallyEmpty ? RecordState::Empty : RecordState::Doubtful;
}

void Read(SpiImage &image, JobEntry &entry, const Patience &patience)
{
    Result<RecordValue> read = ReadRecord(image, entry.step.id, ShowGroup, patience);
    entry.state = StateOfRead(read.value, read.outcome, image);
    entry.outcome = read.outcome;
    entry.value = std::move(read.value);
    if (entry.step.id.kind == RecordKind::Loco && entry.outcome.ok() && entry.state != RecordState::Empty) {
        entry.bytes.emplace();
        std::copy_n(image.begin() + ReadPosition, LocoRecordSize, entry.bytes->begin());
    }
}

void Note(JobEntry &entry, const PageResult &written)
{
    entry.outcome = written.outcome;
    entry.state = StateOf(written.page);
}

/// Bytes that the value does not give are sent as the image holds them.
void WriteInto(SpiImage &image, JobEntry &entry, const RecordValue &value, const Patience &patience)
{
    Note(entry, WriteRecord(image, entry.step.id, value, patience));
}

void Write(SpiImage &image, JobEntry &entry, const RecordValue &value, const Patience &patience)
{
    image.fill(EmptyByte); // bytes that nobody lays would otherwise be those of the record before
    WriteInto(image, entry, value, patience);
}

/// Only locos are merged. What cannot be read or understood is not changed; an empty record has nothing to merge with
/// and is left alone or filled. Bytes of the record that this program does not know stay as they are.
void Merge(SpiImage &image, JobEntry &entry, const Patience &patience)
{
    Read(image, entry, patience);
    if (entry.outcome.timedOut() && patience.sequences > 1)
        Read(image, entry, patience); // as a job tries a page once more
    if (entry.state == RecordState::Doubtful && !entry.outcome.ok())
        entry.state = RecordState::Untouched; // nothing is written
    if (entry.state == RecordState::Empty && entry.step.fillsEmpty)
        return Write(image, entry, entry.step.value, patience);
    if (entry.state != RecordState::Done)
        return;
    MoveToWritePosition(image, LocoRecordSize - 1);
    WriteInto(image, entry, entry.step.merge(*entry.value), patience);
}

void AskUse(JobEntry &entry, const Patience &patience)
{
    const Result<bool> used = LocoIsUsed(entry.step.id.number, patience);
    entry.outcome = used.outcome;
    if (!used.ok())
        entry.state = RecordState::Doubtful;
    else
        entry.state = used.value ? RecordState::Done : RecordState::Empty;
}

/// What is known of three neighbours that were asked together.
struct KnownUse {
    int first = 0;
    NeighbourUse used{};

    [[nodiscard]] bool holds(int number) const { return first != 0 && number >= first && number - first < Span; }
    [[nodiscard]] bool at(int number) const { return used.at(static_cast<size_t>(number - first)); }
    static constexpr int Span = static_cast<int>(Neighbours);
};

/// In the fast cadence neighbours are asked together. True when that said what the step wants to know.
bool KnownFromNeighbours(KnownUse &known, JobEntry &entry, bool neighbourFollows)
{
    if (CurrentCadence() == Cadence::Ticks || entry.step.id.kind != RecordKind::Loco)
        return false;
    const int number = entry.step.id.number;
    if (!known.holds(number)) {
        if (!neighbourFollows)
            return false;
        const auto asked = NeighboursUsed(number);
        known = {asked.ok() ? number : 0, asked.value};
    }
    if (!known.holds(number) || (known.at(number) && entry.step.kind == StepKind::Search))
        return false;
    entry.state = known.at(number) ? RecordState::Done : RecordState::Empty;
    return true;
}

void CarryOut(SpiImage &image, JobEntry &entry, const Patience &patience)
{
    switch (entry.step.kind) {
    case StepKind::Read:
    case StepKind::Search:
        return Read(image, entry, patience);
    case StepKind::IsUsed:
        return AskUse(entry, patience);
    case StepKind::Write:
        return Write(image, entry, entry.step.value, patience);
    case StepKind::Merge:
        return Merge(image, entry, patience);
    case StepKind::Delete:
        return Note(entry, DeleteLoco(image, entry.step.id.number, patience));
    }
    Q_UNREACHABLE();
}

/// What the job has found out about a loco.
void NoteLoco(const JobEntry &entry)
{
    const Step &step = entry.step;
    const bool sound = entry.state == RecordState::Done || entry.state == RecordState::Empty;
    if (step.id.kind != RecordKind::Loco || !sound)
        return;
    const bool done = entry.state == RecordState::Done;
    if (done && step.kind == StepKind::Write)
        NoteRecord(step.id.number, std::get<LocoRecord>(step.value));
    else if (done && entry.value)
        NoteRecord(step.id.number,
            std::get<LocoRecord>(step.kind == StepKind::Merge ? step.merge(*entry.value) : *entry.value));
    else
        NoteUse(step.id.number, done && step.kind != StepKind::Delete);
}

bool IsLook(const Step &step)
{
    return step.kind == StepKind::Search || step.kind == StepKind::IsUsed;
}

bool NeighbourFollows(const Plan &plan, size_t index)
{
    return index + 1 < plan.steps.size() && IsLook(plan.steps.at(index + 1))
        && plan.steps.at(index + 1).id.number == plan.steps.at(index).id.number + 1;
}

/// In messages; most records that are looked for are empty.
double CostOf(const Step &step)
{
    constexpr double emptyRecord = 2;
    const KindRow &row = RowOf(step.id.kind);
    if (IsLook(step))
        return emptyRecord;
    return (step.kind == StepKind::Read ? 0 : row.writeMessages)
        + (step.kind == StepKind::Read || step.kind == StepKind::Merge ? row.readMessages : 0);
}

double CostOf(const Plan &plan)
{
    double cost = 0;
    for (const Step &step : plan.steps)
        cost += CostOf(step);
    return cost;
}

bool EndsJob(const Plan &plan, const Step &step, const Outcome &outcome)
{
    if (outcome.ok())
        return false;
    const bool writes = step.kind != StepKind::Read && !IsLook(step);
    return plan.endsAtFailure || (writes && !plan.patience.goesOn && outcome.timedOut());
}

} // namespace

RecordState StateOf(PageState page)
{
    switch (page) {
    case PageState::Programmed:
        return RecordState::Done;
    case PageState::NotLoaded:
    case PageState::NotWritten:
    case PageState::BrokenOff:
        return RecordState::Untouched;
    case PageState::Differs:
        return RecordState::Differs;
    case PageState::Unanswered:
        break;
    }
    return RecordState::Doubtful;
}

JobEnd WhyJobBrokeOff()
{
    if (BoxesAreSilent())
        return JobEnd::ProgramEnds;
    if (TheMessages().secondHandheld())
        return JobEnd::NoAnswer;
    return Comm().isOpen() ? JobEnd::Stopped : JobEnd::PortLost;
}

bool JobGoesOn()
{
    LetEventsRun();
    return !StoppableJob::stopRequested() && Comm().isOpen() && !TheMessages().secondHandheld();
}

JobAmount::JobAmount(size_t allRecords, double costOfAll) : all(allRecords), wholeCost(costOfAll), start(NowSeconds())
{
}

void JobAmount::show() const
{
    const double left = cost > 0 ? SecondsSince(start) / cost * (wholeCost - cost) : -1;
    if (all > 1)
        TheAsk().showAmount({done, all, left});
}

void JobAmount::add(size_t records, double recordsCost)
{
    done += records;
    cost += recordsCost;
}

namespace
{

/// Entries become known only when no second answer can follow theirs any more: a second handheld's answer to the record
/// before may have been taken for one of theirs.
class SureEntries
{
public:
    SureEntries(Report &whole, const Watcher &seen) : report(whole), watcher(seen) { }

    void add(size_t index) { waiting.push_back({index, NowSeconds()}); }

    /// Hands on what is old enough. False when two handhelds answer: what is not is doubtful then.
    bool settle(double seconds)
    {
        const bool sure = !TheMessages().secondHandheld();
        while (!waiting.empty() && (!sure || SecondsSince(waiting.front().finished) >= seconds)) {
            JobEntry &entry = report.entries.at(waiting.front().index);
            const bool before = TheMessages().secondHandheldSince() - waiting.front().finished >= SureSeconds;
            waiting.pop_front();
            if (!sure && !before && entry.state != RecordState::Untouched) {
                entry.state = RecordState::Doubtful;
                entry.outcome = Outcome(End::SecondHandheld);
            }
            NoteLoco(entry);
            if (watcher.finished)
                watcher.finished(entry);
        }
        return sure;
    }

    /// At the end of the job it is listened for the last ones.
    bool settleAll()
    {
        if (!waiting.empty() && !TransferBrokenOff())
            static_cast<void>(OnlyOneAnswers(ListenSeconds));
        return settle(0);
    }

    static constexpr double SureSeconds = 0.5;

private:
    static constexpr double ListenSeconds = 0.2;
    struct Waiting {
        size_t index;
        double finished;
    };
    Report &report;
    const Watcher &watcher;
    std::deque<Waiting> waiting;
};

/// What a job has to tell while it runs.
void ShowStep(const Plan &plan, const Watcher &watcher, size_t index, JobAmount &amount)
{
    const Step &step = plan.steps.at(index);
    TheAsk().showProgress(plan.progress(step));
    amount.show();
    amount.add(1, CostOf(step));
    if (watcher.begins)
        watcher.begins(step, index, plan.steps.size());
}

} // namespace

Report RunJob(const Plan &plan, const Watcher &watcher)
{
    const StoppableJob stoppable;
    std::optional<TellsPortLoss> teller;
    if (plan.ownerTellsPortLoss)
        teller.emplace();
    Report report;
    report.entries.reserve(plan.steps.size());
    SureEntries sure(report, watcher);
    SpiImage image{};
    KnownUse known;
    JobAmount amount(plan.steps.size(), CostOf(plan));
    bool brokenOff = false;
    for (const Step &step : plan.steps) {
        const size_t index = report.entries.size();
        JobEntry &entry = report.entries.emplace_back(JobEntry{step, RecordState::Untouched, {}, {}, {}});
        brokenOff = brokenOff || !JobGoesOn() || !sure.settle(SureEntries::SureSeconds)
            || (watcher.mayGoOn && !watcher.mayGoOn());
        if (brokenOff)
            continue; // untouched
        ShowStep(plan, watcher, index, amount);
        if (!IsLook(step) || !KnownFromNeighbours(known, entry, NeighbourFollows(plan, index)))
            CarryOut(image, entry, plan.patience);
        sure.add(index);
        brokenOff = entry.outcome.brokenOff() || EndsJob(plan, step, entry.outcome);
        if (brokenOff && !entry.outcome.brokenOff() && !StoppableJob::stopRequested())
            report.end = JobEnd::NoAnswer;
    }
    brokenOff = !sure.settleAll() || brokenOff;
    TheAsk().hideProgress(); // questions and reports stand alone
    if (brokenOff && report.end == JobEnd::Complete)
        report.end = WhyJobBrokeOff();
    return report;
}

std::vector<RecordId> IdsOf(const Report &report, RecordState state)
{
    std::vector<RecordId> ids;
    for (const JobEntry &entry : report.entries) {
        if (entry.state == state)
            ids.push_back(entry.step.id);
    }
    return ids;
}
