#include "jobs/runner.h"

#include "handheld/known_locos.h"
#include "jobs/record_reader.h"
#include "link/cadence.h"
#include "link/open_link.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <algorithm>
#include <deque>

namespace hr::jobs
{

namespace
{

/// What a merge is made into, alone: the page is then loaded for it.
void ReadForMerge(SpiImage &image, JobEntry &entry, const Patience &patience)
{
    const Result<LocoRecord> read = ReadLoco(image, entry.step.id.number, patience);
    const bool empty = IsEmptyName(read.value.name);
    entry.outcome = read.outcome;
    entry.value = read.value;
    if (read.ok() && empty && image.at(ReadPosition) == EmptyByte)
        entry.state = RecordState::Empty;
    else
        entry.state = read.ok() && !empty ? RecordState::Done : RecordState::Doubtful;
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
    ReadForMerge(image, entry, patience);
    if (entry.outcome.timedOut() && patience.sequences > 1)
        ReadForMerge(image, entry, patience); // as a job tries a page once more
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

void CarryOut(SpiImage &image, JobEntry &entry, const Patience &patience)
{
    switch (entry.step.kind) {
    case StepKind::Read:
    case StepKind::Search:
        break; // by the record reader
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

/// In messages.
double CostOf(const Step &step, bool asksChip)
{
    if (OnlyReads(step))
        return CostOfReading(step, asksChip);
    const KindRow &row = RowOf(step.id.kind);
    return row.writeMessages + (step.kind == StepKind::Merge ? row.readMessages : 0);
}

double CostOf(const Plan &plan, bool asksChip)
{
    double cost = 0;
    for (const Step &step : plan.steps)
        cost += CostOf(step, asksChip);
    return cost;
}

bool EndsJob(const Plan &plan, const Step &step, const Outcome &outcome)
{
    if (outcome.ok())
        return false;
    return plan.endsAtFailure || (!OnlyReads(step) && !plan.patience.goesOn && outcome.timedOut());
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
            static_cast<void>(OnlyOneAnswers());
        return settle(0);
    }

    static constexpr double SureSeconds = 0.5;

private:
    struct Waiting {
        size_t index;
        double finished;
    };
    Report &report;
    const Watcher &watcher;
    std::deque<Waiting> waiting;
};

/// One job while it runs.
class RunningJob
{
public:
    RunningJob(const Plan &wholePlan, const Watcher &seen)
        : plan(wholePlan)
        , watcher(seen)
        , reader(wholePlan)
        , sure(report, seen)
        , amount(wholePlan.steps.size(), CostOf(wholePlan, reader.asksChip()))
    {
        report.entries.reserve(plan.steps.size());
        for (const Step &step : plan.steps)
            report.entries.push_back({step, RecordState::Untouched, {}, {}, {}});
    }

    Report run()
    {
        for (size_t index = 0; index < plan.steps.size() && goesOn(); ++index) {
            showStep(index);
            carryOut(index);
            prove(false);
        }
        prove(true);
        brokenOff = !sure.settleAll() || brokenOff;
        TheAsk().hideProgress(); // questions and reports stand alone
        if (brokenOff && report.end == JobEnd::Complete)
            report.end = WhyJobBrokeOff();
        return std::move(report);
    }

private:
    bool goesOn()
    {
        brokenOff = brokenOff || !JobGoesOn() || !sure.settle(SureEntries::SureSeconds)
            || (watcher.mayGoOn && !watcher.mayGoOn());
        return !brokenOff;
    }

    void showStep(size_t index)
    {
        const Step &step = plan.steps.at(index);
        TheAsk().showProgress(plan.progress(step));
        amount.show();
        amount.add(1, CostOf(step, reader.asksChip()));
        if (watcher.begins)
            watcher.begins(step, index, plan.steps.size());
    }

    void carryOut(size_t index)
    {
        JobEntry &entry = report.entries.at(index);
        if (entry.step.kind == StepKind::Read || entry.step.kind == StepKind::Search) {
            if (!reader.read(index, entry))
                return; // until it is proved
        } else {
            CarryOut(image, entry, plan.patience);
            reader.forget();
        }
        finish(index);
    }

    void finish(size_t index)
    {
        const JobEntry &entry = report.entries.at(index);
        sure.add(index);
        const bool ends = EndsJob(plan, entry.step, entry.outcome);
        if (ends && !entry.outcome.brokenOff() && !StoppableJob::stopRequested())
            report.end = JobEnd::NoAnswer;
        brokenOff = brokenOff || entry.outcome.brokenOff() || ends;
    }

    /// What the chip said counts when a sample proves it; else it is read. Nothing is believed of a job that broke off.
    void prove(bool atEnd)
    {
        if (atEnd && brokenOff) {
            for (const size_t index : reader.dropUnproved())
                report.entries.at(index).state = RecordState::Untouched;
            return;
        }
        const RecordReader::Checked checked = reader.check(atEnd);
        for (const size_t index : checked.proved)
            finish(index);
        for (const size_t index : checked.refuted) {
            JobEntry &entry = report.entries.at(index);
            entry.state = RecordState::Untouched;
            if (!goesOn())
                continue;
            reader.readAnyway(index, entry);
            finish(index);
        }
    }

    const Plan &plan;
    const Watcher &watcher;
    Report report;
    RecordReader reader;
    SureEntries sure;
    JobAmount amount;
    SpiImage image{};
    bool brokenOff = false;
};

} // namespace

Report RunJob(const Plan &plan, const Watcher &watcher)
{
    const StoppableJob stoppable;
    std::optional<TellsPortLoss> teller;
    if (plan.ownerTellsPortLoss)
        teller.emplace();
    return RunningJob(plan, watcher).run();
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

} // namespace hr::jobs
