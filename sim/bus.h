// The LocoNet line: one message after another, 600 microseconds a byte, heard by all devices and by the interface.
//
// The bus has no timer of its own. Its owner (sim/layout.h) asks nextDueUs() and calls advance() with that time.
#pragma once

#include "sim/loconet.h"

#include <functional>
#include <optional>

namespace hr::sim
{

inline constexpr qint64 BusByteUs = 600;

enum class Sender { Pc, Device, Foreign };

/// One message on the line. Byte i has been transmitted at startUs + (i + 1) * BusByteUs.
struct BusMessage {
    Bytes bytes;
    Sender sender = Sender::Foreign;
    qint64 startUs = 0;
    [[nodiscard]] qint64 endUs() const { return startUs + static_cast<qint64>(bytes.size()) * BusByteUs; }
};

/// What a device says, delayUs after the end of the message that it answers.
struct BusAnswer {
    Bytes bytes;
    qint64 delayUs = 0;
};

/// A handheld or command station on the line.
class BusDevice
{
public:
    virtual ~BusDevice() = default;

    /// Gets every complete message on the line, also with a wrong checksum; the time is the end of the message.
    virtual std::vector<BusAnswer> receive(const Bytes &message, qint64 timeUs) = 0;

    /// An answer that has not begun when its device loses its power never comes.
    [[nodiscard]] virtual bool hasPower() const { return true; }
};

class Bus
{
public:
    /// The device stays owned by the caller and outlives the bus.
    void attach(BusDevice &device) { devices.push_back(&device); }

    /// Puts a message (or any bytes) on the line as soon as it is free, not before earliestUs.
    void transmit(Bytes bytes, Sender sender, qint64 earliestUs);

    [[nodiscard]] qint64 nextDueUs() const;

    /// Handles what is due at this time, which must not go back.
    void advance(qint64 nowUs);

    /// Called when the first byte of a message goes out.
    std::function<void(const BusMessage &)> onStart;
    /// Called at the end of a message, before the devices get it.
    std::function<void(const BusMessage &)> onEnd;

    /// Every message that was on the line, in order, unless keepLog is false.
    std::vector<BusMessage> log;
    bool keepLog = true;

private:
    struct Waiting {
        Bytes bytes;
        Sender sender;
        qint64 earliestUs;
        const BusDevice *from = nullptr; // of an answer
    };

    void put(Waiting message);
    void start();
    void finish();

    std::vector<BusDevice *> devices;
    std::vector<Waiting> queue; // by earliestUs, equal ones in the order of transmit()
    std::optional<BusMessage> current;
    qint64 freeFromUs = 0;
};

} // namespace hr::sim
