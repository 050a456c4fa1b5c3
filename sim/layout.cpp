#include "sim/layout.h"

#include <algorithm>

namespace hr::sim
{

Layout::Layout(Events &clock) : events(clock)
{
    bus.attach(handheld);
    bus.attach(station);
}

Handheld &Layout::plugSecond()
{
    if (!second) {
        second = std::make_unique<Handheld>(noFaults);
        bus.attach(*second);
    }
    second->settings.present = true;
    return *second;
}

void Layout::unplugSecond()
{
    if (second)
        second->settings.present = false;
}

void Layout::fromPc(const Bytes &bytes)
{
    adapter.fromPc(bytes, events.monotonicUs());
    arm();
}

void Layout::setBreak(bool on)
{
    adapter.setBreak(on, events.monotonicUs());
}

void Layout::inject(const Bytes &bytes, qint64 delayUs)
{
    bus.transmit(bytes, Sender::Foreign, events.monotonicUs() + delayUs);
    arm();
}

void Layout::injectToPc(const Bytes &bytes, qint64 delayUs)
{
    adapter.sendToPc(bytes, events.monotonicUs() + delayUs);
    arm();
}

qint64 Layout::nextDueUs() const
{
    return std::min({adapter.nextArrivalUs(), bus.nextDueUs(), adapter.nextForPcUs()});
}

// Bytes are handed over last: the receiver may write, close the port or even wait.
void Layout::run()
{
    const qint64 nowUs = events.monotonicUs();
    advance(nowUs);
    const Bytes bytes = adapter.takeForPc(nowUs);
    arm();
    if (!bytes.empty() && onBytes)
        onBytes(bytes);
}

// The clock may be late by milliseconds; cable and bus still act in the order of their times.
void Layout::advance(qint64 nowUs)
{
    for (;;) {
        const qint64 arrivalUs = adapter.nextArrivalUs();
        const qint64 busUs = bus.nextDueUs();
        if (std::min(arrivalUs, busUs) > nowUs)
            return;
        if (arrivalUs <= busUs)
            adapter.handleArrival();
        else
            bus.advance(busUs);
    }
}

void Layout::arm()
{
    const qint64 dueUs = nextDueUs();
    if (dueUs == Never || (!armed.empty() && *armed.begin() <= dueUs))
        return;
    armed.insert(dueUs);
    const qint64 delayUs = std::max<qint64>(0, dueUs - events.monotonicUs());
    events.after(delayUs, [this, dueUs, token = std::weak_ptr(alive)] {
        if (token.expired())
            return;
        armed.erase(dueUs);
        run();
    });
}

} // namespace hr::sim
