#include "ui/widgets/leavable_window.h"

#include <QCloseEvent>
#include <QKeyEvent>

void LeavableWindow::present()
{
    show();
    raise();
    activateWindow();
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
    if (event->key() == Qt::Key_Escape)
        leave();
    else
        QWidget::keyPressEvent(event);
}
