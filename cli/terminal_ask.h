// The terminal as the face of the core: boxes become lines, questions are asked where somebody can answer.
#pragma once

#include "program/ask.h"

namespace hr::platform
{
class Console;
}

namespace hr::cli
{

class TerminalAsk : public Ask
{
public:
    struct Manner {
        bool yes = false;   // every question is answered with Ja, but not the same one twice running
        bool quiet = false; // no progress and no messages that are only for information
    };

    /// The console stays owned by the caller and outlives this object.
    TerminalAsk(Console &console, Manner manner);

    void showBox(const BoxText &box) override;
    void postBox(const BoxText &box) override;

    /// On a terminal "[j/N]" is asked; without one the answer is Nein, and the user is told of --ja.
    [[nodiscard]] bool askYesNo(const BoxText &box, bool defaultYes) override;

    /// Nothing here asks for a text: always empty.
    [[nodiscard]] QString askText(const QString &prompt, const QString &title, const QString &proposal) override;

    /// The progress is one line that is written over, on a terminal only.
    void showProgress(const QString &text) override;
    void showAmount(const Amount &amount) override;
    void hideProgress() override;

private:
    void writeProgress();

    Console &console;
    const Manner manner;
    QString text;
    QString amountText;
    bool visible = false;
    QString lastYes; // the question that --ja has answered last
};

} // namespace hr::cli
