// The outgoing slot of the message layer: laying, transmitting, giving up.

#include "link/link_state.h"
#include "link/message_layer.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <utility>

namespace hr::link
{

namespace
{

constexpr double EchoTimeoutSeconds = 2;
constexpr double CtsTimeoutSeconds = 3;
constexpr double OwedSeconds = 5; // after its request went out an answer may come so late
constexpr qint64 CtsPollUs = 1000;

size_t Index(int i)
{
    return static_cast<size_t>(i);
}

} // namespace

Outcome MessageLayer::lay(const LocoNetMessage &message, int lastIndex, Expects answer)
{
    if (!Comm().isOpen())
        return Outcome(End::PortLost);
    if (TxLen != -1)
        return Outcome(End::NotSent);
    if (awaited.wanted) // nobody waited for it: it may still come
        pastOf(awaited.kind).forgivenUntil = NowSeconds() + OwedSeconds;
    awaited = {};
    awaited.kind = answer;
    awaited.wanted = answer != Expects::Nothing;
    LastAckCode = 0;
    SpiReadDone = 0;
    goneOut = false;
    wasRefused = false;
    abandoned = false;
    TxMsg = message;
    TxLen = lastIndex; // last: from here on the timer may send it
    tellWork();
    return {};
}

void MessageLayer::tellWork()
{
    if (linkWork)
        linkWork();
}

void MessageLayer::layChecksum()
{
    int checksum = 0xFF;
    for (int i = 0; i <= TxLen; ++i)
        checksum ^= TxMsg.at(Index(i));
    TxMsg.at(Index(TxLen + 1)) = static_cast<quint8>(checksum);
}

void MessageLayer::markAsWritten()
{
    ctsPosition = -1;
    TxWaitEcho = true;
    TxTime = NowSeconds();
    goneOut = true;
    if (abandoned) // CTS held it up for longer than anybody waited
        pastOf(awaited.kind).owedUntil = TxTime + OwedSeconds;
}

/// Writes one byte while CTS is on and lets events run before the next one; while CTS is off, looks again later.
void MessageLayer::transmitUnderCts(int id)
{
    if (id != transmission || ctsPosition < 0)
        return;
    if (ctsPosition > TxLen + 1 || SecondsSince(ctsStart) > CtsTimeoutSeconds) {
        markAsWritten();
        return;
    }
    if (!Comm().cts() || !Comm().outputEmpty()) {
        // CTS and a full driver tell nobody when they change.
        TheEvents().after(CtsPollUs, [this, id] { transmitUnderCts(id); });
        return;
    }
    Comm().write(QByteArray(1, static_cast<char>(TxMsg.at(Index(ctsPosition)))));
    ++ctsPosition;
    TheEvents().post([this, id] { transmitUnderCts(id); });
}

void MessageLayer::transmit()
{
    layChecksum();
    if (TheLink().InterfaceType == InterfaceOrvanto1) {
        ctsPosition = 0;
        ctsStart = NowSeconds();
        transmitUnderCts(++transmission);
        return;
    }
    QByteArray bytes;
    for (int i = 0; i <= TxLen + 1; ++i)
        bytes.append(static_cast<char>(TxMsg.at(Index(i))));
    Comm().write(bytes);
    markAsWritten();
}

void MessageLayer::freeSlot()
{
    TxLen = -1;
    TxWaitEcho = false;
    ctsPosition = -1;
    abandoned = false;
}

void MessageLayer::superviseEcho()
{
    if (SecondsSince(TxTime) <= EchoTimeoutSeconds)
        return;
    freeSlot();
    tellNotSent({});
}

void MessageLayer::tellNotSent(const QString &reason)
{
    if (BoxesAreSilent())
        return;
    const auto text = QStringLiteral("Message kann nicht gesendet werden!");
    TheAsk().postBox({reason.isEmpty() ? text : QString(text + u'\r' + reason), QStringLiteral("LocoNet Fehler"),
        BoxIcon::Critical});
}

void MessageLayer::refuse(const QString &reason)
{
    if (TxLen == -1 || !TxWaitEcho)
        return;
    freeSlot();
    AwaitingAck = false;
    wasRefused = true;
    tellNotSent(reason);
}

void MessageLayer::SendTask()
{
    if (TxLen == -1 || ctsPosition >= 0)
        return;
    if (TxWaitEcho)
        superviseEcho();
    else
        transmit();
}

void MessageLayer::giveUp(bool silently)
{
    AwaitingAck = false;
    const bool answerMayCome = awaited.wanted && !awaited.ackCame && !awaited.missed && awaited.held == 0;
    awaited.wanted = false;
    if (TxLen != -1 && !TxWaitEcho && ctsPosition <= 0) {
        freeSlot(); // not a byte of it has left
        return;
    }
    if (answerMayCome)
        pastOf(awaited.kind).owedUntil = (goneOut ? TxTime : NowSeconds()) + OwedSeconds;
    abandoned = TxLen != -1;
    if (silently && TxWaitEcho)
        freeSlot();
}

double MessageLayer::secondsOwed(Expects kind) const
{
    return qMax(0.0, pastOf(kind).owedUntil - NowSeconds());
}

void MessageLayer::expectRepeat()
{
    pastOf(awaited.kind).forgivenUntil = NowSeconds() + OwedSeconds;
}

void MessageLayer::dropAll()
{
    freeSlot();
    AwaitingAck = false;
    awaited = {};
    past = {};
    lastEchoed = Expects::Nothing;
    RxInMessage = false;
    RxRead = RxWrite; // what was received before belongs to no later request
    RxEmpty = true;
    RxOverflow = false;
}

void MessageLayer::reset()
{
    MessageLayer fresh;
    fresh.linkWork = std::move(linkWork); // the driver lives on
    fresh.trafficTaps = std::move(trafficTaps);
    fresh.lastTap = lastTap;
    fresh.transmission = transmission + 1; // a look at CTS that is still outstanding must stay stale
    *this = std::move(fresh);
}

MessageLayer &TheMessages()
{
    static MessageLayer layer;
    return layer;
}

} // namespace hr::link
