// The line at the bottom of the main window: how the handheld is reached and whether it is there, what was done last and
// when, and how far a running job has come.
#pragma once

#include "platform/rooms.h"

#include <QStatusBar>

class QLabel;
class QProgressBar;

namespace hr::ui
{

class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget *parent);

    /// Port, interface and state as they are now.
    void showConnection();

    /// What was done, with the time of day.
    void showDeed(const QString &what);

    /// A job over many records: so many of all (0 <= done <= all).
    void showAmount(int done, int all);
    void hideAmount();

private:
    QLabel *connectionLbl;
    QLabel *deedLbl;
    QProgressBar *bar;
};

} // namespace hr::ui
