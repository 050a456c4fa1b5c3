// Keeps the link going: sends laid messages, takes what the port receives, hands messages on, in the cadence of the
// connection (link/cadence.h).
//
// Ticks: one message sent and one dispatched every 50 ms; waiting bytes are looked for every 100 ms, besides the port's
// own receive event. Events: everything at once; a slow timer only looks after echoes that do not come.
// While nothing is under way no timer runs: a message that is laid or comes in starts them, and they stop after one idle
// second.
#pragma once

#include "platform/events.h"

#include <optional>

namespace hr::link
{

class LinkDriver
{
public:
    /// Takes over the receive and hang-up events of the installed port. The port and the events must outlive it.
    LinkDriver();
    ~LinkDriver();
    LinkDriver(const LinkDriver &) = delete;
    LinkDriver &operator=(const LinkDriver &) = delete;

private:
    void work();
    void handleAll();
    void runTimers(int intervalMs);
    void stopTimers();
    void stopWhenIdle();

    std::optional<Events::TimerId> mainTimer;
    std::optional<Events::TimerId> timer1;
    int mainIntervalMs = 0;
    double lastWork = 0; // NowSeconds() when something was under way
    bool handling = false;
};

} // namespace hr::link
