// A window that Escape and its close box leave, in one and the same way, and in which Enter presses a default button.
#pragma once

#include "platform/rooms.h"

#include <QWidget>

class QPushButton;

namespace hr::ui
{

class LeavableWindow : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Shows the window and brings it forward. It has the size that the user gave it last, in this run or an earlier
    /// one, but is never larger than the screen.
    void present();

    /// The same; a window that was hidden appears beside a place of the screen (logical pixels; an empty one means
    /// nowhere in particular).
    void presentBeside(const QRect &place);

    /// Enter presses this button wherever nothing else takes it.
    void setDefaultButton(QPushButton *button);

protected:
    /// What leaving means; hides the window unless a window has to do more.
    virtual void leave();

    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QSize presentedSize; // when it appeared last; empty until then
    QPushButton *defaultButton = nullptr;
};

} // namespace hr::ui
