// The terminal that a program without windows runs on.
#pragma once

#include "platform/rooms.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace hr::platform
{

/// Gives the standard streams that the caller has closed to nothing, so that no port or file that is opened later takes
/// their place and is written to as if it were the output. To be called first.
void OccupyClosedStreams();

/// What came from outside since the program began.
struct EndSignals {
    int interrupts = 0; // Ctrl-C
    bool end = false;   // terminate; the terminal or its window was closed, log-off, shutdown
};

/// From now on signals are counted and no longer end the program, however often they come.
void WatchEndSignals();
EndSignals SeenEndSignals();

/// The program is done. Where the system kills it after an end signal as soon as it was told of it, it waits for this.
void EndIsDone();

/// While it lives, umlauts come out well on the system's terminal window.
class Console
{
public:
    Console();
    virtual ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// True when the standard error output is a terminal: a line may be written over there.
    [[nodiscard]] virtual bool errorIsTerminal() const { return errorTerminal; }

    /// True when somebody sits there who sees a question and can answer it.
    [[nodiscard]] virtual bool canAsk() const { return inputTerminal && errorTerminal; }

    /// Calls once with the next line of the standard input, while events go on; an ended input gives nothing.
    using Line = std::optional<QString>;
    virtual void readLine(std::function<void(const Line &)> take);
    virtual void stopReading();

private:
    bool inputTerminal;
    bool errorTerminal;
    unsigned outputBefore; // character set that the window of the terminal had (Windows)
    class Reader;
    std::shared_ptr<Reader> reader;
};

} // namespace hr::platform
