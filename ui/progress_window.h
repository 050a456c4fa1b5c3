// The small window "Fortschritt:" with one line of text that names the running operation.
#pragma once

#include <QWidget>

class QLabel;

class ProgressWindow : public QWidget
{
    Q_OBJECT

public:
    ProgressWindow();

    void showText(const QString &text);
    void setText(const QString &text);

protected:
    /// Never closes by the user: during a job over many records it asks whether to stop after the current record.
    void closeEvent(QCloseEvent *event) override;

private:
    QLabel *ausgabeLbl;
    bool asking = false;
};
