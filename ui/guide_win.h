// The user guide beside the program, opened at the chapter of the window in front by F1.
#pragma once

#include "ui/widgets/leavable_window.h"

class QHBoxLayout;
class QLineEdit;
class QTextBrowser;

namespace hr::ui
{

class GuideWin : public LeavableWindow
{
    Q_OBJECT

public:
    /// From now on F1 opens the guide in every window of the program.
    GuideWin();

    /// The chapter (its heading as the page's links name it) that tells of a control and its window; empty for the
    /// beginning of the guide.
    static QString chapterOf(const QWidget *control);

    /// Shows the guide at a chapter. A missing page is reported by a "Fehler!" box.
    void open(const QString &chapter);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

    /// Enter in the search field searches on; elsewhere it presses the default button.
    void keyPressEvent(QKeyEvent *event) override;

private:
    QHBoxLayout *buildBottomRow();
    void connectKeys();
    void findNext();
    void openInBrowser();
    void belongTo(QWidget *box);

    QTextBrowser *page;
    QLineEdit *searchField;
};

} // namespace hr::ui
