// The help window: the lines of konf\hilfe.txt as a list.
#pragma once

#include "ui/widgets/leavable_window.h"

class QListWidget;

class HelpWin : public LeavableWindow
{
    Q_OBJECT

public:
    HelpWin();

    /// Reads the help file and shows the window. A missing file is reported by a "Fehler!" box; the list stays
    /// empty then.
    void load();

private:
    QListWidget *helpTxt;
};
