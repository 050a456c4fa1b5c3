// Clock, timers and the one event pump.
//
// Nothing else in the program reads a clock, starts a timer or pumps events. In tests a virtual clock stands
// behind this interface, so that an 80-minute job runs in seconds.
#pragma once

#include "platform/rooms.h"

#include <QDateTime>

#include <functional>

namespace hr::platform
{

class Events
{
public:
    using Action = std::function<void()>;
    using TimerId = int;

    virtual ~Events() = default;

    /// Microseconds since some fixed moment; never goes back, knows no midnight. Every limit is measured with it.
    [[nodiscard]] virtual qint64 monotonicUs() const = 0;

    /// Date and time by the local clock, for names of files.
    [[nodiscard]] virtual QDateTime now() const = 0;
    [[nodiscard]] QDate today() const { return now().date(); }

    /// Calls the action every intervalMs milliseconds until stop(). An action that still runs is not entered
    /// again by its own timer.
    virtual TimerId every(int intervalMs, Action action) = 0;
    virtual void stop(TimerId timer) = 0;

    /// Calls the action once, delayUs microseconds from now (the real clock rounds up to whole milliseconds).
    virtual void after(qint64 delayUs, Action action) = 0;

    /// Calls the action once from the event loop, as soon as possible, in the order of posting. A posted action
    /// may itself wait; the others go on meanwhile.
    virtual void post(Action action) = 0;

    /// Handles what is pending; when nothing is, sleeps until something is and handles that.
    virtual void pump() = 0;
};

} // namespace hr::platform
