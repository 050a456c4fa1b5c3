// What has been done last, for the main window's status line: the commands tell it, whatever window they belong to.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <functional>

namespace hr::ui
{

/// Tells what a command has done, in the user's words: "Lok 103 geschrieben".
void NoteDeed(const QString &what);

/// Who shows it.
void OnDeed(std::function<void(const QString &)> show);

} // namespace hr::ui
