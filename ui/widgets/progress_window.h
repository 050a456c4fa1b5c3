// The small window "Fortschritt:" with one line of text that names the running operation.
#pragma once

#include <QWidget>

#include <functional>

class QLabel;

class ProgressWindow : public QWidget
{
    Q_OBJECT

public:
    ProgressWindow();

    /// Shows the window with a text, or changes the text of the visible one.
    void showText(const QString &text);

    /// Called when the user wants to close the window, which stays. The handler may not wait.
    std::function<void()> onClose;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QLabel *ausgabeLbl;
};
