// What has been done last, for the main window's status line: the commands tell it, whatever window they belong to.
#pragma once

#include "platform/rooms.h"

#include <QStringList>

#include <functional>

namespace hr::ui
{

/// Tells what a command has done, in the user's words: "Lok 103 geschrieben".
void NoteDeed(const QString &what);

/// A box that was shown: kept with its time, the last few, for a problem report.
void NoteReport(const QString &title, const QString &text);
[[nodiscard]] QStringList RecentReports();

/// Who shows it.
void OnDeed(std::function<void(const QString &)> show);

} // namespace hr::ui
