// The help window: the lines of konf\hilfe.txt as a list, with a search, copying and sizes of the letters.
#pragma once

#include "ui/widgets/leavable_window.h"

class QHBoxLayout;
class QLineEdit;
class QListWidget;

namespace hr::ui
{

class HelpWin : public LeavableWindow
{
    Q_OBJECT

public:
    HelpWin();

    /// Reads the help file and shows the window. A missing file is reported by a "Fehler!" box; the list stays
    /// empty then.
    void load();

Q_SIGNALS:
    /// The user wants the whole guide.
    void guideAsked();

protected:
    /// Ctrl+wheel changes the size of the letters.
    bool eventFilter(QObject *watched, QEvent *event) override;

    /// Enter in the search field searches on; elsewhere it presses OK.
    void keyPressEvent(QKeyEvent *event) override;

private:
    QHBoxLayout *buildBottomRow();
    void connectKeys();
    void findNext();
    void copyMarkedLines();
    void zoom(int steps);

    QListWidget *helpTxt;
    QLineEdit *searchField;
    int normalSize; // of the letters, in points
};

} // namespace hr::ui
