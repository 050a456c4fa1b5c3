// The LocoNet interface between the PC's serial cable and the bus.
//
// Direct (kind 3):     115200,n,8,1 without handshake; passes messages both ways from the start.
// TextPrompt (kind 1): a break of 0.5 s or more brings it into command mode at 2400,n,8,2. Commands are texts ended by
//                      CR, each answered by a short text and the prompt "]" at the speed of the command:
//                      "xB19200" then 19200,n,8,2; "x&LN$55AA" then pass-through. CTS says when it takes bytes.
// With other line settings than it has itself, it hears nothing and the PC hears garbage. Behind a pseudo-terminal
// neither settings nor break are visible: then every speed is right and commands are taken at any time.
//
// Like the bus it has no timer of its own: the owner asks for the next due times.
#pragma once

#include "sim/bus.h"
#include "sim/faults.h"

#include <deque>

namespace hr::sim
{

enum class InterfaceKind { TextPrompt = 1, Direct = 3 };

class InterfaceModel
{
public:
    /// Both stay owned by the caller and outlive the interface. Takes over the bus's onStart.
    InterfaceModel(Bus &line, FaultBox &faultBox);

    /// Another interface is plugged in; it starts as after power-on.
    void setKind(InterfaceKind wanted);
    [[nodiscard]] InterfaceKind kind() const { return type; }
    [[nodiscard]] bool passesMessages() const { return mode == Mode::PassThrough; }

    // --- the PC's end of the cable ---

    /// The PC's line settings as "115200,n,8,1" and whether it uses RTS/CTS handshake.
    void setLine(const QString &settings, bool handshake);
    /// Settings and break are not visible (pseudo-terminal).
    void setLineUnknown();
    void setBreak(bool on, qint64 nowUs);
    [[nodiscard]] bool cts(qint64 nowUs) const { return nowUs >= ctsOffUntilUs; }
    /// CTS goes off until that time. The kind with the text prompt loses what the PC writes meanwhile; the direct
    /// one has room for it.
    void holdCts(qint64 untilUs) { ctsOffUntilUs = untilUs; }
    void fromPc(const Bytes &bytes, qint64 nowUs);
    /// Forgets what has not gone down the cable yet.
    void discardFromPc(qint64 nowUs);
    /// The bytes that have arrived at the PC by now.
    Bytes takeForPc(qint64 nowUs);
    [[nodiscard]] qint64 nextForPcUs() const { return toPc.empty() ? Never : toPc.front().dueUs; }
    /// Forgets what is on its way to the PC.
    void discardForPc() { toPc.clear(); }
    /// Noise on the cable: bytes to the PC that were never on the bus.
    void sendToPc(const Bytes &bytes, qint64 fromUs);

    // --- the interface at work ---

    [[nodiscard]] qint64 nextArrivalUs() const { return arriving.empty() ? Never : arriving.front().dueUs; }
    /// Handles the next byte that arrives from the PC.
    void handleArrival();

    /// The interface is pulled off by a fault. Bytes still on their way are gone when it is called.
    std::function<void()> onHangUp;

private:
    enum class Mode { Idle, Command, PassThrough };
    struct TimedByte {
        quint8 byte;
        qint64 dueUs;
    };

    [[nodiscard]] QString ownSettings() const;
    [[nodiscard]] bool lineFits() const;
    [[nodiscard]] qint64 byteUs() const;
    void enterCommandMode();
    void takeText(quint8 byte, qint64 timeUs);
    void runCommand(qint64 timeUs);
    void takeMessageByte(quint8 byte, qint64 timeUs);
    void pcMessage(const Bytes &message, qint64 timeUs);
    void foreignBurst(qint64 fromUs);
    void foreignPeer(qint64 fromUs);
    void hear(const BusMessage &message);
    void hearEcho(BusMessage message);
    void forward(const BusMessage &message, qint64 tearUs);
    void sendByte(quint8 byte, qint64 fromUs);
    void queueByte(quint8 byte, qint64 fromUs);

    Bus &bus;
    FaultBox &box;
    InterfaceKind type = InterfaceKind::Direct;
    Mode mode = Mode::PassThrough;
    int baud = 115200;
    bool lineKnown = false;
    bool pcHandshake = false;
    QString pcSettings;
    qint64 breakSinceUs = Never;
    qint64 ctsOffUntilUs = 0;
    qint64 cableFreeUs = 0; // PC to interface
    qint64 pcFreeUs = 0;    // interface to PC
    std::deque<TimedByte> arriving;
    std::deque<TimedByte> toPc;
    QByteArray text;
    MessageAssembler assembler;
};

} // namespace hr::sim
