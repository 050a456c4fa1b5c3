// A window as the face of a careful job (jobs/careful_job.h): boxes over the window, and the connection guard.
#pragma once

#include "jobs/careful_job.h"
#include "ui/common/command.h"

namespace hr::ui
{

/// Carries the job out and shows what became of it. The command has passed the guard. Whatever goes wrong has been told.
CarefulEnd RunFromWindow(const Command &command, const CarefulJob &job);

} // namespace hr::ui
