// A window that Escape and its close box leave, in one and the same way.
#pragma once

#include <QWidget>

class LeavableWindow : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Shows the window and brings it forward.
    void present();

protected:
    /// What leaving means; hides the window unless a window has to do more.
    virtual void leave();

    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
