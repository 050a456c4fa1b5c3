// Shows a text in the progress window while it lives.
#pragma once

#include "program/ask.h"

namespace hr::ui
{

class Progress
{
public:
    explicit Progress(const QString &text) { TheAsk().showProgress(text); }
    ~Progress() { TheAsk().hideProgress(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
};

/// Pause after most operations, so that their progress text can be read.
constexpr double StandardDelaySeconds = 0.5;

/// Pause after a pick and around the filling of tables.
constexpr double ShortPauseSeconds = 0.1;

} // namespace hr::ui
