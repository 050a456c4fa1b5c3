// A window that Escape and its close box leave, in one and the same way, and in which Enter presses a default button.
#pragma once

#include <QWidget>

class QPushButton;

class LeavableWindow : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Shows the window and brings it forward.
    void present();

    /// Enter presses this button wherever nothing else takes it.
    void setDefaultButton(QPushButton *button);

protected:
    /// What leaving means; hides the window unless a window has to do more.
    virtual void leave();

    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QPushButton *defaultButton = nullptr;
};
