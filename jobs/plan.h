// What a job over many records is going to do, step by step, before anything is done.
//
// Plans are made by pure functions (jobs/backup.h, restore.h, ...) and carried out by RunJob (jobs/runner.h).
#pragma once

#include "handheld/record_kinds.h"

#include <functional>
#include <optional>
#include <vector>

namespace hr::jobs
{

enum class StepKind {
    Read,   // the record's value
    Search, // the same for one of many loco records of which most hold nothing
    IsUsed, // whether a loco record holds a loco, with two messages
    Write,  // the step's value
    Merge,  // what stands there is read, changed by `merge` and written; an empty record is left alone
    Delete, // a loco record
};

struct Step {
    StepKind kind = StepKind::Read;
    RecordId id;
    RecordValue value;                                     // of a write
    std::function<RecordValue(const RecordValue &)> merge; // of a merge
    bool fillsEmpty = false;                               // a merge writes `value` into an empty record
    std::optional<LocoBytes> exact = {};                   // of a write that is to be the same to the byte
};

struct Plan {
    std::vector<Step> steps;
    std::function<QString(const Step &)> progress; // the line that is shown while a step runs
    Patience patience = Patience::Job;             // see handheld/chip_commands.h
    bool endsAtFailure = false;                    // also where the patience would go on
    bool ownerTellsPortLoss = false;               // the owner shows a report; the port itself is then silent
};

} // namespace hr::jobs
