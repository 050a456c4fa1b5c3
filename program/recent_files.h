// The backup files that were opened or saved last, kept between runs in konf\Einstellungen.ini (group "Dateien").
#pragma once

#include "platform/rooms.h"

#include <QStringList>

namespace hr::program
{

constexpr qsizetype MostRecentFiles = 8;

/// Full names, the last one first. Some may be gone meanwhile.
[[nodiscard]] QStringList RecentFiles();

/// Puts a file in front. Where the settings cannot be written nothing is told: it is a comfort only.
void NoteRecentFile(const QString &fileName);

/// Takes a file out of the list.
void ForgetRecentFile(const QString &fileName);

} // namespace hr::program
