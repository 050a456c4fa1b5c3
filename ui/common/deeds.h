// What has been done last, for the main window's status line: the commands tell it, whatever window they belong to.
#pragma once

#include <QString>

#include <functional>

/// Tells what a command has done, in the user's words: "Lok 103 geschrieben".
void NoteDeed(const QString &what);

/// Who shows it.
void OnDeed(std::function<void(const QString &)> show);
