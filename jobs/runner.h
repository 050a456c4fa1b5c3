// Carries out a plan, one record after the other, and tells what became of each.
#pragma once

#include "jobs/plan.h"

#include <optional>

/// How a job over many records ended.
enum class JobEnd { Complete, Stopped, PortLost, NoAnswer, ProgramEnds, NothingDone };

enum class RecordState {
    Done,      // read or written, and the handheld said so
    Empty,     // read: holds nothing
    Doubtful,  // the handheld did not answer, or what it said can't be right
    Untouched, // its turn never came, or the page it lies in was not programmed
};

struct JobEntry {
    Step step;
    RecordState state = RecordState::Untouched;
    Outcome outcome;
    std::optional<RecordValue> value; // what was read
};

struct Report {
    JobEnd end = JobEnd::Complete;
    std::vector<JobEntry> entries; // one for each step of the plan, in its order
};

/// Sees the job from outside. Every part may be empty.
struct Watcher {
    std::function<void(const Step &, size_t index, size_t count)> begins;
    std::function<void(const JobEntry &)> finished; // at once, so that a journal loses nothing
};

/// Runs the steps with their progress, which is gone at the end. Between two of them events run, and the user may stop
/// through the progress window (StoppableJob).
/// Time-outs are told by their "Timeout" boxes. A job that writes and gets no answer any more ends (NoAnswer): its
/// records would cost a box and two seconds each. A record that could not be written before its page was programmed is
/// untouched.
[[nodiscard]] Report RunJob(const Plan &plan, const Watcher &watcher = {});

/// Those of a state, in order.
std::vector<RecordId> IdsOf(const Report &report, RecordState state);
