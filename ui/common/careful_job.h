// A window as the face of a careful job (jobs/careful_job.h): boxes over the window, and the connection guard.
#pragma once

#include "jobs/careful_job.h"
#include "ui/common/command.h"

namespace hr::ui
{

/// Carries the job out and shows what became of it. The command has passed the guard. Whatever goes wrong has been told.
CarefulEnd RunFromWindow(const Command &command, const CarefulJob &job);

/// Offers to make good what earlier jobs have left half programmed in the handheld in service. False when a page waits
/// still; that has been told.
[[nodiscard]] bool WaitingPagesMended(const Command &command);

} // namespace hr::ui
