// Reading loco records for the commands that print them.
#pragma once

#include "cli/call.h"
#include "jobs/runner.h"
#include "roster/loco_csv.h"

namespace hr::cli
{

/// The steps that read these records; `kind` is Read or Search.
Plan ReadingPlan(const std::vector<int> &numbers, StepKind kind);

/// The records that were read without a doubt, with empty ones only when they are wanted. What is printed is taken for
/// true by whoever reads it, so doubtful ones are only told.
std::vector<RosterLoco> LocosOf(const Report &report, bool emptyToo);

/// Tells which records are doubtful or were not read, and why the reading ended early.
void TellDoubts(const Report &report);

} // namespace hr::cli
