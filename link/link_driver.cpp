#include "link/link_driver.h"

#include "link/cadence.h"
#include "link/message_layer.h"
#include "link/open_link.h"
#include "platform/world.h"
#include "program/run_control.h"

namespace hr::link
{

namespace
{
constexpr int MainTimerMs = 50; // sends one message, dispatches one message
constexpr int Timer1Ms = 100;   // looks for received bytes
constexpr int SlowTimerMs = 250;
constexpr double IdleSeconds = 1;
} // namespace

LinkDriver::LinkDriver()
{
    Comm().onReceive = [] { TheMessages().ReceiveBytes(); };
    Comm().onHangUp = HandlePortLoss;
    Comm().onRefused = [](const QString &reason) { TheMessages().refuse(reason); };
    TheMessages().onWork([this] { work(); });
}

LinkDriver::~LinkDriver()
{
    stopTimers();
    TheMessages().onWork(nullptr);
    Comm().onReceive = nullptr;
    Comm().onHangUp = nullptr;
    Comm().onRefused = nullptr;
}

void LinkDriver::work()
{
    lastWork = NowSeconds();
    if (CurrentCadence() == Cadence::Ticks) {
        runTimers(MainTimerMs);
        return;
    }
    runTimers(SlowTimerMs);
    handleAll();
}

/// Whole bursts in their order. Handling a message may lay another one, which comes back here.
void LinkDriver::handleAll()
{
    if (handling)
        return;
    handling = true;
    while (TheMessages().hasReceived())
        TheMessages().DispatchTask();
    if (TheMessages().hasToSend())
        TheMessages().SendTask();
    handling = false;
}

void LinkDriver::runTimers(int intervalMs)
{
    if (mainTimer && mainIntervalMs == intervalMs)
        return;
    stopTimers();
    mainIntervalMs = intervalMs;
    mainTimer = TheEvents().every(intervalMs, [this] {
        // In this order: a message that is laid in answer to a dispatched one leaves at the next tick.
        TheMessages().SendTask();
        TheMessages().DispatchTask();
        stopWhenIdle();
    });
    timer1 = TheEvents().every(qMax(intervalMs, Timer1Ms), [] { TheMessages().ReceiveBytes(); });
}

void LinkDriver::stopTimers()
{
    for (auto *timer : {&mainTimer, &timer1}) {
        if (*timer)
            TheEvents().stop(**timer);
        timer->reset();
    }
}

void LinkDriver::stopWhenIdle()
{
    if (TheMessages().busy())
        lastWork = NowSeconds();
    if (SecondsSince(lastWork) > IdleSeconds)
        stopTimers();
}

} // namespace hr::link
