#include "ui/common/click_guard.h"

#include "program/run_control.h"

#include <QApplication>
#include <QMouseEvent>

#include <utility>

namespace hr::ui
{

namespace
{
constexpr int SamePlace = 10; // logical pixels that a hand moves in a double-click
constexpr double MsPerSecond = 1000;
} // namespace

ClickGuard::ClickGuard(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool ClickGuard::follows(QPoint place) const
{
    return closed && NowSeconds() - clickedAt <= QApplication::doubleClickInterval() / MsPerSecond
        && (place - clickedPlace).manhattanLength() <= SamePlace;
}

bool ClickGuard::mouse(QWidget *target, QEvent *event)
{
    const QPoint place = static_cast<QMouseEvent *>(event)->globalPosition().toPoint();
    if (event->type() == QEvent::MouseButtonRelease && std::exchange(swallowing, false))
        return true;
    if (event->type() != QEvent::MouseButtonRelease && (swallowing || follows(place))) {
        swallowing = true;
        return true;
    }
    clickedWindow = target->window();
    clickedPlace = place;
    clickedAt = NowSeconds();
    closed = false;
    return false;
}

bool ClickGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (!watched->isWidgetType())
        return false;
    auto *widget = static_cast<QWidget *>(watched);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
        return mouse(widget, event);
    case QEvent::Hide:
        closed = closed || (widget->isWindow() && widget == clickedWindow);
        return false;
    default:
        return false;
    }
}

} // namespace hr::ui
