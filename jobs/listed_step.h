// A loco of a list (roster/loco_files.h) as the step that writes it.
#pragma once

#include "jobs/plan.h"
#include "roster/loco_csv.h"

namespace hr::jobs
{

/// A record that the handheld has keeps what the list does not say, also the bytes that nobody interprets. An empty one
/// is filled when the list gives a name.
Step ListedStep(const ListedLoco &loco);

} // namespace hr::jobs
