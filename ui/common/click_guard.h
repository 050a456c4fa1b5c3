// What a window that closes on a click leaves to the one below it: nothing. The second half of a double-click would
// otherwise press whatever lies there.
#pragma once

#include "platform/rooms.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QWidget>

namespace hr::ui
{

class ClickGuard : public QObject
{
    Q_OBJECT

public:
    /// Watches all windows of the application as long as it lives.
    explicit ClickGuard(QObject *parent);

    /// Swallows a click at about the place of the one that closed a window, within the double-click time.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] bool follows(QPoint place) const;
    bool mouse(QWidget *target, QEvent *event);

    QPointer<QWidget> clickedWindow; // got the last click
    QPoint clickedPlace;             // on the screen
    double clickedAt = 0;            // NowSeconds()
    bool closed = false;             // that window is gone since
    bool swallowing = false;         // until the button is released
};

} // namespace hr::ui
