// Tells the user which characters the handheld can show.
#pragma once

#include "ui/widgets/leavable_window.h"

class InfoZeichensatz : public LeavableWindow
{
    Q_OBJECT

public:
    InfoZeichensatz();
};
