#include "ui/widgets/roomy_scroll_area.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>

namespace hr::ui
{

RoomyScrollArea::RoomyScrollArea(QWidget *contents, QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(contents);
    contents->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget * /*before*/, QWidget *now) {
        if (now != nullptr && widget()->isAncestorOf(now))
            ensureWidgetVisible(now);
    });
}

QSize RoomyScrollArea::sizeHint() const
{
    return widget()->sizeHint();
}

void RoomyScrollArea::keepWidth()
{
    keepsWidth = true;
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->installEventFilter(this);
    fitWidth();
}

void RoomyScrollArea::fitWidth()
{
    const int bar = verticalScrollBar()->isHidden() ? 0 : verticalScrollBar()->sizeHint().width();
    setMinimumWidth(widget()->minimumSizeHint().width() + bar);
}

/// The contents grow when a font does; the bar comes and goes.
bool RoomyScrollArea::eventFilter(QObject *watched, QEvent *event)
{
    const bool changes =
        event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show || event->type() == QEvent::Hide;
    const bool handled = QScrollArea::eventFilter(watched, event);
    if (keepsWidth && changes)
        fitWidth();
    return handled;
}

} // namespace hr::ui
