// The simulated model railway as one piece: bus, handheld, interface and faults, driven by the clock of Events.
#pragma once

#include "platform/events.h"
#include "sim/handheld.h"
#include "sim/interface_model.h"
#include "sim/station.h"

#include <memory>
#include <set>

namespace hr::sim
{

class Layout
{
public:
    FaultBox faults;
    Bus bus;
    Handheld handheld{faults};
    Station station; // absent unless its settings say otherwise
    InterfaceModel adapter{bus, faults};

    /// The clock outlives the layout.
    explicit Layout(Events &clock);
    Layout(const Layout &) = delete;
    Layout &operator=(const Layout &) = delete;

    /// Connects a second handheld, which hears and answers all that the first one does; it has no faults of its own.
    Handheld &plugSecond();
    void unplugSecond();

    /// The PC writes bytes into the cable.
    void fromPc(const Bytes &bytes);
    void setBreak(bool on);
    [[nodiscard]] bool cts() const { return adapter.cts(events.monotonicUs()); }
    void discardFromPc() { adapter.discardFromPc(events.monotonicUs()); }

    /// Foreign traffic: bytes on the bus, delayUs from now. No checksum is added.
    void inject(const Bytes &bytes, qint64 delayUs = 0);
    /// Bytes to the PC that were never on the bus.
    void injectToPc(const Bytes &bytes, qint64 delayUs = 0);
    /// CTS goes off for this time.
    void holdCts(qint64 durationUs) { adapter.holdCts(events.monotonicUs() + durationUs); }

    /// Called from the event loop with the bytes that have arrived at the PC.
    std::function<void(const Bytes &)> onBytes;

private:
    [[nodiscard]] qint64 nextDueUs() const;
    void run();
    void advance(qint64 nowUs);
    void arm();

    Events &events;
    FaultBox noFaults;
    std::unique_ptr<Handheld> second;
    std::set<qint64> armed; // due times with a call outstanding; one, unless something earlier came up
    std::shared_ptr<int> alive = std::make_shared<int>(0); // outstanding calls find out that the layout is gone
};

} // namespace hr::sim
