// Carries out a plan, one record after the other, and tells what became of each.
#pragma once

#include "jobs/plan.h"

#include <optional>

namespace hr::jobs
{

/// How a job over many records ended.
enum class JobEnd { Complete, Stopped, PortLost, NoAnswer, ProgramEnds, NothingDone };

enum class RecordState {
    Done,      // read or written, and the handheld said so
    Empty,     // read: holds nothing
    Unchanged, // not written, because it holds already what it should
    Differs,   // written and verified: the handheld does not hold what it should
    Doubtful,  // the handheld did not answer, or what it said can't be right
    Untouched, // its turn never came, or the page it lies in was not programmed
};

struct JobEntry {
    Step step;
    RecordState state = RecordState::Untouched;
    Outcome outcome;
    std::optional<RecordValue> value; // what was read
    std::optional<LocoBytes> bytes;   // of a loco record that is not empty: all of them
};

struct Report {
    JobEnd end = JobEnd::Complete;
    std::vector<JobEntry> entries; // one for each step of the plan, in its order
};

/// Sees the job from outside. Every part may be empty.
struct Watcher {
    std::function<void(const Step &, size_t index, size_t count)> begins;
    std::function<void(const JobEntry &)> finished; // as soon as it is sure, half a second later: for a journal
    std::function<bool()> mayGoOn;                  // asked before each step; false stops the job
};

/// Runs the steps with their progress, which is gone at the end. Between two of them events run, and the user may stop
/// through the progress window (StoppableJob).
/// Time-outs are told by their "Timeout" boxes. A job that writes and gets no answer any more ends (NoAnswer): its
/// records would cost a box and two seconds each. A record that could not be written before its page was programmed is
/// untouched.
[[nodiscard]] Report RunJob(const Plan &plan, const Watcher &watcher = {});

// --- Parts that every runner of a job needs. ---

/// What became of a record whose page was written.
RecordState StateOf(PageState page);

/// Asked between two records: lets events run, and says whether the job goes on.
bool JobGoesOn();

/// Why a job did not come to its last record: stopped, port lost or program ends.
JobEnd WhyJobBrokeOff();

/// Shows how far a job has come, and the time that is left: each record weighs what it costs, an empty one less than a
/// table. A single record needs no bar.
class JobAmount
{
public:
    JobAmount(size_t allRecords, double costOfAll);
    void show() const;
    void add(size_t records, double recordsCost);

private:
    size_t done = 0;
    size_t all;
    double cost = 0;
    double wholeCost;
    double start;
};

/// Those of a state, in order.
std::vector<RecordId> IdsOf(const Report &report, RecordState state);

} // namespace hr::jobs
