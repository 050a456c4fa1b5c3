// Files that hold locos (roster/loco_files.h), as arguments of a command: what is wrong with them is told.
#pragma once

#include "cli/call.h"
#include "roster/loco_files.h"

namespace hr::cli
{

/// The locos of a file by its ending, or nothing after a message that names what is wrong and where.
std::optional<std::vector<ListedLoco>> ReadLocoFile(const QString &fileName);

/// True for the endings that hold locos (after a message otherwise).
bool IsLocoFileName(const QString &fileName);

/// Writes locos by the file's ending; false after a message.
[[nodiscard]] bool WriteLocoFile(const QString &fileName, const std::vector<RosterLoco> &locos);

} // namespace hr::cli
