#include "ui/widgets/leavable_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>

namespace
{
constexpr int FrameWidth = 20; // room for the window's frame and a task bar
constexpr int FrameHeight = 80;
} // namespace

void LeavableWindow::present()
{
    // Not larger than the screen, whatever its contents would like.
    const QSize room = screen()->availableSize() - QSize(FrameWidth, FrameHeight);
    if (!isVisible() && (width() > room.width() || height() > room.height()))
        resize(size().boundedTo(room));
    show();
    raise();
    activateWindow();
}

void LeavableWindow::setDefaultButton(QPushButton *button)
{
    defaultButton = button;
    button->setDefault(true); // its frame shows it
}

void LeavableWindow::leave()
{
    hide();
}

void LeavableWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // windows are hidden, not closed: they show the same content again
    leave();
}

void LeavableWindow::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        leave();
    else if (enter && defaultButton != nullptr)
        defaultButton->click();
    else
        QWidget::keyPressEvent(event);
}
