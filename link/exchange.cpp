#include "link/exchange.h"

#include "link/cadence.h"
#include "platform/world.h"
#include "program/run_control.h"

#include <algorithm>

namespace
{

constexpr std::array<quint8, 5> HandheldHead{OpcodeImmediate, TransferMessageLength, 0x08, 0x66, 0x33};
constexpr std::array<size_t, 20> DataBytes{
    6, 7, 8, 9, 11, 12, 13, 14, 16, 17, 18, 19, 21, 22, 23, 24, 26, 27, 28, 29};
constexpr double QuietSeconds = 0.3; // after an unanswered request: a late answer may come in it
constexpr double UsPerSecond = 1e6;

double quietUntil = 0; // NowSeconds() before which no request is sent

/// Wakes the wait at its limit, also when nothing else happens.
void WakeUpAfter(double seconds)
{
    TheEvents().after(static_cast<qint64>(seconds * UsPerSecond) + 1, [] {});
}

void AwaitQuietLine()
{
    if (NowSeconds() >= quietUntil)
        return;
    WakeUpAfter(quietUntil - NowSeconds());
    static_cast<void>(PumpUntil([] { return NowSeconds() >= quietUntil || !Comm().isOpen(); }));
}

LocoNetMessage Packed(const Request &request)
{
    LocoNetMessage message = request.bytes;
    PackHighBits(message);
    return message;
}

/// The wait for the answer to a laid request.
Outcome AwaitOwnAnswer(const std::function<bool()> &answered)
{
    Outcome outcome = Await(answered);
    if (outcome.ok())
        return outcome;
    ForgetAnswer();
    quietUntil = NowSeconds() + QuietSeconds;
    return outcome;
}

} // namespace

Request Request::toHandheld()
{
    Request request;
    std::copy(HandheldHead.begin(), HandheldHead.end(), request.bytes.begin());
    return request;
}

void Request::setData(size_t number, int value)
{
    bytes.at(DataBytes.at(number - 1)) = static_cast<quint8>(value);
}

Outcome Await(const std::function<bool()> &answered, double seconds)
{
    if (answered())
        return {};
    const double start = NowSeconds();
    WakeUpAfter(seconds);
    while (!answered()) {
        if (!Comm().isOpen())
            return Outcome(End::PortLost);
        if (WaitsMustEnd())
            return Outcome(End::ProgramEnds);
        if (SecondsSince(start) > seconds)
            return Outcome(End::NoAnswer);
        TheEvents().pump();
    }
    return {};
}

Outcome LayWhenFree(const LocoNetMessage &message, int lastIndex)
{
    // After a time-out the old message may still wait for its echo.
    if (Outcome slot = Await([] { return TxLen == -1; }, SlotSeconds); !slot.ok()) {
        if (slot.how() == End::ProgramEnds)
            DropPendingMessage(); // the old message is of no use any more, and the end needs the slot
        return slot.how() == End::NoAnswer ? Outcome(End::NotSent) : slot;
    }
    AwaitQuietLine();
    if (WaitsMustEnd())
        return Outcome(End::ProgramEnds);
    return LayMessage(message, lastIndex);
}

Outcome ExchangeForAck(const Request &request)
{
    const double start = NowSeconds();
    Outcome outcome = SendOnly(request);
    if (outcome.ok())
        outcome = AwaitAck();
    if (outcome.ok())
        TakeMeasurement(SecondsSince(start));
    return outcome;
}

void RestLine(double seconds)
{
    quietUntil = qMax(quietUntil, NowSeconds() + seconds);
}

Outcome AwaitAck()
{
    Outcome outcome = AwaitOwnAnswer([] { return LastAckCode == AckAccepted; });
    return outcome.how() == End::NoAnswer && LastAckCode != 0 ? Outcome(End::Refused) : outcome;
}

Result<std::array<quint8, 20>> ExchangeForReadBack(const Request &request)
{
    const double start = NowSeconds();
    if (Outcome laid = LayWhenFree(Packed(request), TransferLastIndex); !laid.ok())
        return {{}, laid};
    // In the fast cadence the message has left already, but its answer needs an event that has not run yet.
    SpiReadDone = 0;
    SpiReadWanted = true;
    Outcome outcome = AwaitOwnAnswer([] { return SpiReadDone == 1; });
    if (outcome.ok())
        TakeMeasurement(SecondsSince(start));
    if (outcome.ok() && !SpiReadSound)
        outcome = Outcome(End::Damaged);
    return {SpiReadData, outcome};
}

Outcome SendOnly(const Request &request)
{
    LastAckCode = 0;
    return LayWhenFree(Packed(request), TransferLastIndex);
}

void ResetExchange()
{
    quietUntil = 0;
}
