// What the core asks of the windows: boxes, the input box, file dialogs, the progress window and a few windows
// and captions that the start-up sequence and the handheld search change.
//
// Questions wait for the user while events go on (timers, receive event). When the program is being closed each
// of them ends at once with its "nothing chosen" answer.
#pragma once

#include <QString>

enum class BoxIcon { None, Information, Critical };

/// Texts are plain text; a CR (or LF) in them is a line break on the screen.
struct BoxText {
    QString text;
    QString title;
    BoxIcon icon = BoxIcon::None;
};

class Frontend
{
public:
    virtual ~Frontend() = default;

    /// Shows a box with OK and waits until it is answered.
    virtual void showBox(const BoxText &box) = 0;

    /// Shows a box with OK and returns at once. For reports that arise inside a timer or a port event, where
    /// nothing may wait.
    virtual void postBox(const BoxText &box) = 0;

    /// Shows a Yes/No box and waits. False for No, Escape and the end of the program. defaultYes says which
    /// button Enter presses.
    virtual bool askYesNo(const BoxText &box, bool defaultYes) = 0;

    /// Asks for one line of text and waits. Empty text when cancelled.
    virtual QString askText(const QString &prompt, const QString &title) = 0;

    /// File dialogs; the filter is a wildcard such as "*.bmp". Empty text when cancelled.
    virtual QString openFileName(const QString &title, const QString &filter) = 0;
    virtual QString saveFileName(const QString &title, const QString &filter) = 0;

    /// The progress window with its one line of text.
    virtual void showProgress(const QString &text) = 0;
    virtual void setProgressText(const QString &text) = 0;
    virtual void hideProgress() = 0;

    /// The selection window for port and interface, opened for someone who waits on SelectionAnswer.
    virtual void showSelectionWindow() = 0;
    virtual void hideSelectionWindow() = 0;

    virtual void showMainWindow() = 0;
    virtual void raiseMainWindow() = 0;
    virtual void setMainWindowEnabled(bool enabled) = 0;
    virtual void setMainWindowTitle(const QString &title) = 0;

    /// Shows or hides the menu item of the command-station download (offered with interface kind 3 only).
    virtual void setLokDataMenuVisible(bool visible) = 0;

    /// Brings the window forward that the running command waits for.
    virtual void raiseWaitingWindow() = 0;
};
