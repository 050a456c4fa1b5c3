#include "link/link_driver.h"

#include "link/message_layer.h"
#include "link/open_link.h"
#include "platform/world.h"

namespace
{
constexpr int MainTimerMs = 50; // sends one message, dispatches one message
constexpr int Timer1Ms = 100;   // looks for received bytes
} // namespace

LinkDriver::LinkDriver()
    : mainTimer(TheEvents().every(MainTimerMs,
        [] {
            // In this order: a message that is laid in answer to a dispatched one leaves at the next tick.
            SendTask();
            DispatchTask();
        }))
    , timer1(TheEvents().every(Timer1Ms, ReceiveBytes))
{
    Comm().onReceive = ReceiveBytes;
    Comm().onHangUp = HandlePortLoss;
}

LinkDriver::~LinkDriver()
{
    TheEvents().stop(mainTimer);
    TheEvents().stop(timer1);
    Comm().onReceive = nullptr;
    Comm().onHangUp = nullptr;
}
