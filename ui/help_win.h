// The help window: the lines of konf\hilfe.txt as a list.
#pragma once

#include <QWidget>

class QListWidget;

class HelpWin : public QWidget
{
    Q_OBJECT

public:
    HelpWin();

    /// Reads the help file and shows the window. A missing file is reported by a "Fehler!" box; the list stays
    /// empty then.
    void load();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QListWidget *helpTxt;
};
