#include "jobs/listed_step.h"

namespace hr::jobs
{

Step ListedStep(const ListedLoco &loco)
{
    Step step{StepKind::Merge, {RecordKind::Loco, loco.address}, Applied(loco, {}),
        [loco](const RecordValue &present) { return Applied(loco, std::get<LocoRecord>(present)); }};
    step.fillsEmpty = loco.name.has_value();
    return step;
}

} // namespace hr::jobs
