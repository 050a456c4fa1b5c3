// Keeps the link going: sends laid messages, takes what the port receives, hands messages on.
//
// Cadence: one message sent and one dispatched every 50 ms, the pace every handheld knows; waiting bytes are looked for
// every 100 ms, besides the port's own receive event.
#pragma once

#include "platform/events.h"

class LinkDriver
{
public:
    /// Takes over the receive and hang-up events of the installed port and starts the timers. The port and the
    /// events must outlive it.
    LinkDriver();
    ~LinkDriver();
    LinkDriver(const LinkDriver &) = delete;
    LinkDriver &operator=(const LinkDriver &) = delete;

private:
    Events::TimerId mainTimer;
    Events::TimerId timer1;
};
