#include "sim/interface_model.h"

#include <algorithm>
#include <array>

namespace hr::sim
{
namespace
{

constexpr int DirectBaud = 115200;
constexpr int CommandBaud = 2400;
constexpr int WorkingBaud = 19200;
constexpr int DirectBits = 10;     // start, 8 data, 1 stop
constexpr int TextPromptBits = 11; // start, 8 data, 2 stop
constexpr qint64 SecondUs = 1'000'000;
constexpr qint64 ShortestBreakUs = 500'000;
constexpr qint64 CommandWorkUs = 5'000;
constexpr std::size_t TextLimit = 64;
constexpr char Cr = '\r';

// Block report, slot speed and a switch request of others on the layout.
const std::array<Bytes, 3> ForeignMessages{Bytes{0xB2, 0x15, 0x70}, Bytes{0xA0, 0x04, 0x32}, Bytes{0xB0, 0x0B, 0x30}};

// What a receiver with another speed makes of a byte.
quint8 Garbled(quint8 byte)
{
    return static_cast<quint8>((byte >> 1) ^ 0xB5);
}

} // namespace

InterfaceModel::InterfaceModel(Bus &line, FaultBox &faultBox) : bus(line), box(faultBox)
{
    bus.onStart = [this](const BusMessage &message) { hear(message); };
}

void InterfaceModel::setKind(InterfaceKind wanted)
{
    type = wanted;
    const bool direct = type == InterfaceKind::Direct;
    mode = direct ? Mode::PassThrough : Mode::Idle;
    baud = direct ? DirectBaud : CommandBaud;
    text.clear();
    assembler.reset();
}

void InterfaceModel::setLine(const QString &settings, bool handshake)
{
    lineKnown = true;
    pcSettings = settings;
    pcHandshake = handshake;
}

void InterfaceModel::setLineUnknown()
{
    lineKnown = false;
    pcHandshake = false;
}

QString InterfaceModel::ownSettings() const
{
    const QString stopBits = type == InterfaceKind::Direct ? QStringLiteral("1") : QStringLiteral("2");
    return QString::number(baud) + QStringLiteral(",n,8,") + stopBits;
}

// The direct interface leaves CTS open: with handshake the PC's port never sends.
bool InterfaceModel::lineFits() const
{
    if (!lineKnown)
        return true;
    const bool stuck = type == InterfaceKind::Direct && pcHandshake;
    return !stuck && pcSettings.trimmed().toLower() == ownSettings();
}

qint64 InterfaceModel::byteUs() const
{
    const int bits = type == InterfaceKind::Direct ? DirectBits : TextPromptBits;
    return bits * SecondUs / baud;
}

void InterfaceModel::setBreak(bool on, qint64 nowUs)
{
    if (on) {
        breakSinceUs = std::min(breakSinceUs, nowUs);
        return;
    }
    const bool longEnough = breakSinceUs != Never && nowUs - breakSinceUs >= ShortestBreakUs;
    breakSinceUs = Never;
    if (longEnough && type == InterfaceKind::TextPrompt)
        enterCommandMode();
}

void InterfaceModel::enterCommandMode()
{
    mode = Mode::Command;
    baud = CommandBaud;
    text.clear();
    assembler.reset();
}

void InterfaceModel::fromPc(const Bytes &bytes, qint64 nowUs)
{
    const bool usesCts = type == InterfaceKind::TextPrompt;
    for (const quint8 byte : bytes) {
        cableFreeUs = std::max(cableFreeUs, nowUs) + byteUs();
        if (!usesCts || cts(nowUs))
            arriving.push_back({byte, cableFreeUs});
        if (usesCts && box.strikes(box.faults.ctsOff))
            holdCts(nowUs + box.faults.ctsOffUs);
    }
}

void InterfaceModel::discardFromPc(qint64 nowUs)
{
    arriving.clear();
    cableFreeUs = nowUs;
}

void InterfaceModel::handleArrival()
{
    const TimedByte arrived = arriving.front();
    arriving.pop_front();
    if (!lineFits())
        return;
    const bool passing = mode == Mode::PassThrough; // before a command changes it
    const bool textSeen = mode == Mode::Command || (!lineKnown && type == InterfaceKind::TextPrompt);
    if (textSeen && !assembler.inMessage())
        takeText(arrived.byte, arrived.dueUs);
    if (passing)
        takeMessageByte(arrived.byte, arrived.dueUs);
}

void InterfaceModel::takeText(quint8 byte, qint64 timeUs)
{
    if (byte == Cr)
        runCommand(timeUs);
    else if (byte >= ' ' && byte < 0x7F && text.size() < static_cast<qsizetype>(TextLimit))
        text.append(static_cast<char>(byte));
}

// The speed changes only after the prompt has gone out at the old one.
void InterfaceModel::runCommand(qint64 timeUs)
{
    const QByteArray command = std::exchange(text, {});
    const bool toWorkingSpeed = command == "xB19200";
    const bool toPassThrough = command.startsWith("x&LN$");
    const bool known = toWorkingSpeed || toPassThrough || command.startsWith("xRT");
    const QByteArray answer = known ? QByteArrayLiteral("\r\nOK\r\n]") : QByteArrayLiteral("\r\n?\r\n]");
    sendToPc(ToBytes(answer), timeUs + CommandWorkUs);
    if (toWorkingSpeed)
        baud = WorkingBaud;
    if (toPassThrough)
        mode = Mode::PassThrough;
}

void InterfaceModel::takeMessageByte(quint8 byte, qint64 timeUs)
{
    if (const auto message = assembler.add(byte))
        pcMessage(*message, timeUs);
}

void InterfaceModel::pcMessage(const Bytes &message, qint64 timeUs)
{
    if (box.strikes(box.faults.hangUp)) {
        arriving.clear();
        toPc.clear();
        if (onHangUp)
            onHangUp();
        return;
    }
    if (box.strikes(box.faults.foreignBeforeEcho))
        foreignBurst(timeUs);
    if (box.strikes(box.faults.foreignPeerBefore))
        foreignPeer(timeUs);
    bus.transmit(message, Sender::Pc, timeUs);
}

void InterfaceModel::foreignBurst(qint64 fromUs)
{
    for (int i = 0; i < box.faults.foreignCount; ++i)
        bus.transmit(
            WithChecksum(ForeignMessages.at(static_cast<std::size_t>(box.number(3)))), Sender::Foreign, fromUs);
}

/// A station that answers somebody else.
void InterfaceModel::foreignPeer(qint64 fromUs)
{
    constexpr std::size_t length = 31;
    Bytes message(length - 1, 0x11);
    const Bytes head{0xE5, length, 0x01, 0x50, 0x43};
    std::ranges::copy(head, message.begin());
    message = WithChecksum(message);
    message.back() ^= box.faults.foreignPeerSound ? 0 : 0x0F;
    bus.transmit(message, Sender::Foreign, fromUs);
}

void InterfaceModel::hear(const BusMessage &message)
{
    if (message.sender == Sender::Pc)
        hearEcho(message);
    else
        forward(message, 0);
}

void InterfaceModel::hearEcho(BusMessage message)
{
    if (box.strikes(box.faults.foreignAfterEcho))
        foreignBurst(message.endUs());
    if (box.strikes(box.faults.foreignPeerAfter))
        foreignPeer(message.endUs());
    const bool torn = box.strikes(box.faults.tornEcho);
    const bool changed = box.strikes(box.faults.changedEcho);
    if (box.strikes(box.faults.lostEcho))
        return;
    // Opcode, length and bit 7 stay, so that the echo is still heard as one message.
    if (changed)
        message.bytes.at(message.bytes.size() - 2) ^= static_cast<quint8>(1 << box.number(7));
    forward(message, torn ? box.faults.tearUs : 0);
}

void InterfaceModel::forward(const BusMessage &message, qint64 tearUs)
{
    if (mode != Mode::PassThrough)
        return;
    qint64 timeUs = message.startUs;
    for (std::size_t i = 0; i < message.bytes.size(); ++i) {
        timeUs += BusByteUs + (i == message.bytes.size() / 2 ? tearUs : 0);
        sendByte(message.bytes.at(i), timeUs);
    }
}

void InterfaceModel::sendToPc(const Bytes &bytes, qint64 fromUs)
{
    for (const quint8 byte : bytes)
        sendByte(byte, fromUs);
}

void InterfaceModel::sendByte(quint8 byte, qint64 fromUs)
{
    Faults &faults = box.faults;
    if (box.strikes(faults.lostByte))
        return;
    if (box.strikes(faults.changedByte))
        byte ^= static_cast<quint8>(1 << box.number(8));
    if (box.strikes(faults.lateByte))
        fromUs += faults.lateUs;
    queueByte(byte, fromUs);
    if (box.strikes(faults.doubledByte))
        queueByte(byte, fromUs);
}

void InterfaceModel::queueByte(quint8 byte, qint64 fromUs)
{
    pcFreeUs = std::max(pcFreeUs, fromUs) + byteUs();
    toPc.push_back({lineFits() ? byte : Garbled(byte), pcFreeUs});
}

Bytes InterfaceModel::takeForPc(qint64 nowUs)
{
    Bytes bytes;
    while (nextForPcUs() <= nowUs) {
        bytes.push_back(toPc.front().byte);
        toPc.pop_front();
    }
    return bytes;
}

} // namespace hr::sim
