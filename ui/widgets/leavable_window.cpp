#include "ui/widgets/leavable_window.h"

#include "ui/widgets/window_place.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>

namespace hr::ui
{

void LeavableWindow::present()
{
    presentBeside(QRect());
}

void LeavableWindow::presentBeside(const QRect &place)
{
    if (!isVisible()) {
        if (presentedSize.isEmpty())
            RestoreSize(*this);
        const QScreen *on = place.isEmpty() ? screen() : ScreenOf(place);
        const QSize room = RoomForWindow(*on);
        if (width() > room.width() || height() > room.height())
            resize(size().boundedTo(room)); // whatever its contents would like
        if (!place.isEmpty())
            move(PositionBeside(size(), place, on->availableGeometry()));
        presentedSize = size();
    }
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

/// A size that the user did not choose is not kept: with another font or screen another one may fit.
void LeavableWindow::hideEvent(QHideEvent *event)
{
    if (size() != presentedSize)
        KeepSize(*this);
    QWidget::hideEvent(event);
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

} // namespace hr::ui
