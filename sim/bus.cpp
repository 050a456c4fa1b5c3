#include "sim/bus.h"

#include <algorithm>
#include <utility>

namespace hr::sim
{

void Bus::transmit(Bytes bytes, Sender sender, qint64 earliestUs)
{
    if (!bytes.empty())
        put({std::move(bytes), sender, earliestUs});
}

void Bus::put(Waiting message)
{
    const auto place = std::ranges::upper_bound(queue, message.earliestUs, {}, &Waiting::earliestUs);
    queue.insert(place, std::move(message));
}

qint64 Bus::nextDueUs() const
{
    if (current)
        return current->endUs();
    return queue.empty() ? Never : std::max(freeFromUs, queue.front().earliestUs);
}

void Bus::advance(qint64 nowUs)
{
    while (nextDueUs() <= nowUs) {
        if (current)
            finish();
        else
            start();
    }
}

void Bus::start()
{
    const qint64 startUs = nextDueUs();
    Waiting next = std::move(queue.front());
    queue.erase(queue.begin());
    if (next.from != nullptr && !next.from->hasPower())
        return;
    current = BusMessage{std::move(next.bytes), next.sender, startUs};
    if (onStart)
        onStart(*current);
}

void Bus::finish()
{
    const BusMessage message = std::move(*current);
    current.reset();
    freeFromUs = message.endUs();
    if (keepLog)
        log.push_back(message);
    if (onEnd)
        onEnd(message);
    for (BusDevice *device : devices) {
        for (BusAnswer &answer : device->receive(message.bytes, freeFromUs))
            put({std::move(answer.bytes), Sender::Device, freeFromUs + answer.delayUs, device});
    }
}

} // namespace hr::sim
