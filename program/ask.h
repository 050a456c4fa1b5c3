// What the core asks of and tells its user, and what a window and a terminal can both do: boxes, questions, one line of
// text, progress.
//
// Questions wait for the user while events go on (timers, receive event). When the program is being ended each of them
// ends at once with its "nothing chosen" answer.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <cstddef>

namespace hr::program
{

enum class BoxIcon { None, Information, Critical };

/// Texts are plain text; a CR (or LF) in them is a line break on the screen.
struct BoxText {
    QString text;
    QString title;
    BoxIcon icon = BoxIcon::None;
    /// A script's "Ja to all" is no answer: which handheld or computer it is, only the user sees.
    bool needsUser = false;
};

struct Amount {
    size_t done = 0;
    size_t all = 1;
    double secondsLeft = -1; // at the speed so far; negative as long as it is not known
};

class Ask
{
public:
    virtual ~Ask() = default;

    /// Shows a box with OK and waits until it is answered.
    virtual void showBox(const BoxText &box) = 0;

    /// Shows a box with OK and returns at once. For reports that arise inside a timer or a port event, where
    /// nothing may wait.
    virtual void postBox(const BoxText &box) = 0;

    /// Shows a Yes/No box and waits. False for No, Escape and the end of the program. defaultYes says which
    /// button Enter presses.
    [[nodiscard]] virtual bool askYesNo(const BoxText &box, bool defaultYes) = 0;

    /// Asks for one line of text and waits; a window proposes one. Empty text when cancelled.
    [[nodiscard]] virtual QString askText(
        const QString &prompt, const QString &title, const QString &proposal = {}) = 0;

    /// One line of text that says what runs. The first call shows it, hideProgress() takes it away.
    virtual void showProgress(const QString &text) = 0;

    /// How far a job over many records has come; shown with the line of text until hideProgress().
    virtual void showAmount(const Amount &amount) = 0;
    virtual void hideProgress() = 0;
};

/// Installs the face of the program; it stays owned by the caller and must outlive all use.
void InstallAsk(Ask *ask);
Ask &TheAsk();

/// "Die Datei ... kann nicht geschrieben werden!" / "Fehler!". The name is shown as the system writes it.
void ReportFileUnwritable(const QString &fileName);

/// Tells the user that a file beside the program cannot be written: a "Fehler!" box, once in a run.
void ReportUnwritable(const QString &relative);
void ResetAsk();

} // namespace hr::program
