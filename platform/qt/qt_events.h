// The real clock, timers and the one event pump, on Qt's event loop.
#pragma once

#include "platform/events.h"

#include <QObject>

#include <map>
#include <memory>

class QTimer;

namespace hr::platform
{

class QtEvents : public Events
{
public:
    QtEvents();
    ~QtEvents() override;
    QtEvents(const QtEvents &) = delete;
    QtEvents &operator=(const QtEvents &) = delete;

    [[nodiscard]] qint64 monotonicUs() const override;
    [[nodiscard]] QDateTime now() const override;
    TimerId every(int intervalMs, Action action) override;
    void stop(TimerId timer) override;
    void after(qint64 delayUs, Action action) override;
    void post(Action action) override;
    void pump() override;

    /// Runs the event loop until quit() and returns the program's exit code. quit() takes effect when the waits
    /// that are nested inside event handlers have ended.
    static int run();
    static void quit();

private:
    QObject context; // receiver of posted actions: they are dropped with it
    std::map<TimerId, std::unique_ptr<QTimer>> timers;
    TimerId lastTimer = 0;
};

} // namespace hr::platform
