// Begins every command of the user: one at a time, with what was shown at the click, behind the connection guard.
#pragma once

#include "program/ask.h"
#include "program/run_control.h"

#include <utility>

namespace hr::ui
{

/// Lives as long as the command. The guard and questions wait; what is typed meanwhile belongs to the next command, so
/// whatever a command writes is taken before it asks anything (see CommandOn).
class Command
{
public:
    Command() = default;
    /// Whatever it did to the connection is shown.
    ~Command();
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    /// False when another command runs (its window is brought forward) or the program ends: return at once then.
    [[nodiscard]] bool ok() const { return busy.ok(); }

    /// The connection guard; also false when the command may not run at all.
    [[nodiscard]] bool connected() const;

    /// The guard of a command that writes. A page that an earlier job has left half programmed is made good first, after a
    /// question; false when it is to stay as it is: writing there would destroy what can still be put back.
    [[nodiscard]] bool mayWrite() const;

    /// Asks a Yes/No question and looks at the guard again afterwards: the port may have gone while it was open.
    [[nodiscard]] bool confirmed(const BoxText &question, bool defaultYes) const;

    /// Asks before something is written that was not read completely (default No); looks at the guard again. `what`
    /// names it: "dieses Bild".
    [[nodiscard]] bool mayWriteDoubtful(const QString &what) const;

private:
    BusyScope busy;
};

/// A command that works on what was shown at the click.
template <typename Shown> class CommandOn : public Command
{
public:
    template <typename Take> explicit CommandOn(Take take) : shown(take()) { }
    const Shown shown;
};

template <typename Take> CommandOn(Take) -> CommandOn<decltype(std::declval<Take>()())>;

} // namespace hr::ui
