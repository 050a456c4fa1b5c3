// The small window "Fortschritt:" with one line of text that names the running operation. For long jobs a bar and the
// remaining time stand below it, with a button that stops it, and the title shows the percentage.
#pragma once

#include "platform/rooms.h"

#include <QWidget>

#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace hr::ui
{

class ProgressWindow : public QWidget
{
    Q_OBJECT

public:
    ProgressWindow();

    /// Shows the window with a text, or changes the text of the visible one. Only a window that may be closed has a
    /// close box; that is settled when it appears.
    void showText(const QString &text, bool closable);

    /// How far a long job has come (0 <= done <= all) and how many seconds are left (negative: not known). The window
    /// takes the focus the first time, so that Escape reaches it.
    void showAmount(int done, int all, double secondsLeft);

    /// A word besides the text, for a short time; an empty one takes it away.
    void showHint(const QString &hint);

    /// Called when the user wants to close the window, which stays. The handler may not wait.
    std::function<void()> onClose;

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QLabel *ausgabeLbl;
    QProgressBar *bar;
    QLabel *restzeitLbl;
    QLabel *hinweisLbl;
    QPushButton *stopBut; // of a long job that can be stopped
};

} // namespace hr::ui
