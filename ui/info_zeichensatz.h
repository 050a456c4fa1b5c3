// Tells the user which characters the handheld can show.
#pragma once

#include "ui/widgets/leavable_window.h"

namespace hr::ui
{

class InfoZeichensatz : public LeavableWindow
{
    Q_OBJECT

public:
    InfoZeichensatz();
};

} // namespace hr::ui
