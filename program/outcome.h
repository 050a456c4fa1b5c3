// How an operation ended, and at which command. Nothing that can fail returns less, and the compiler complains about
// an outcome that nobody looks at.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <utility>

namespace hr::program
{

enum class End {
    Done,
    NoAnswer,       // the request went out, its answer did not come in time
    NotSent,        // the request could not be sent: the slot stayed occupied, or who passes it on said so
    Damaged,        // an answer came, but its checksum is wrong: what it brought is doubtful
    Refused,        // the device answered with another code than the one for "done"
    Differs,        // a page was programmed, and the chip says that it does not hold what it should
    NotOpened,      // the port or its interface could not be opened
    SecondHandheld, // answers came that only a second handheld can have given: none is believed any more
    PortLost,       // the port is closed or was lost
    ProgramEnds,    // everything ends at once
};

class [[nodiscard]] Outcome
{
public:
    Outcome() = default; // done
    explicit Outcome(End how, QString at = {}) : end(how), command(std::move(at)) { }

    [[nodiscard]] bool ok() const { return end == End::Done; }
    [[nodiscard]] End how() const { return end; }

    /// The command at which it ended ("write_to_spibuf"); empty for a success.
    [[nodiscard]] const QString &at() const { return command; }

    /// True when nothing more could be exchanged: the port is gone, a second handheld answers, or the program ends.
    [[nodiscard]] bool brokenOff() const
    {
        return end == End::PortLost || end == End::SecondHandheld || end == End::ProgramEnds;
    }

    /// True when the device stayed silent or could not be reached in time; the next command may work again.
    [[nodiscard]] bool timedOut() const { return end == End::NoAnswer || end == End::NotSent || end == End::Refused; }

    /// For those who go on after a failure: the first one counts, a broken-off step counts more than a time-out.
    void keep(const Outcome &next);

private:
    End end = End::Done;
    QString command;
};

/// A value with the outcome of the operation that brought it. After a failure the value is what was there before or
/// was received until then; `outcome` says whether it may be believed.
template <typename T> struct [[nodiscard]] Result {
    T value{};
    Outcome outcome;
    [[nodiscard]] bool ok() const { return outcome.ok(); }
};

} // namespace hr::program
