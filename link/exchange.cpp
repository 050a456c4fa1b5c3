#include "link/exchange.h"

#include "link/cadence.h"
#include "platform/world.h"
#include "program/run_control.h"

#include <algorithm>

namespace hr::link
{

namespace
{

constexpr std::array<quint8, 5> HandheldHead{OpcodeImmediate, TransferMessageLength, 0x08, 0x66, 0x33};
constexpr double QuietSeconds = 0.3; // after an unanswered request, before one of another kind
constexpr double UsPerSecond = 1e6;

double quietUntil = 0; // NowSeconds() before which no request is sent

/// Wakes the wait at its limit, also when nothing else happens.
void WakeUpAfter(double seconds)
{
    TheEvents().after(static_cast<qint64>(seconds * UsPerSecond) + 1, [] {});
}

/// Until the line may be used: a late answer would pass for the next one's. When the program ends nobody asks any more.
void AwaitQuietLine(Expects kind)
{
    const auto seconds = [kind] {
        const double owed = BoxesAreSilent() ? 0 : TheMessages().secondsOwed(kind);
        return qMax(quietUntil - NowSeconds(), owed);
    };
    if (seconds() <= 0)
        return;
    WakeUpAfter(seconds());
    static_cast<void>(PumpUntil([&seconds] { return seconds() <= 0 || !Comm().isOpen(); }));
}

LocoNetMessage Packed(const Request &request)
{
    LocoNetMessage message = request.bytes;
    PackHighBits(message);
    return message;
}

/// Nobody is asked any more once two have answered.
Outcome OneHandheld()
{
    return TheMessages().secondHandheld() ? Outcome(End::SecondHandheld) : Outcome();
}

/// Why no answer needs to be awaited any longer; nothing as long as one may come.
Outcome EndOfWait()
{
    return TheMessages().refused() ? Outcome(End::NotSent) : OneHandheld();
}

Outcome GivenUp(const Outcome &outcome, Tells tells)
{
    TheMessages().giveUp(tells == Tells::No);
    quietUntil = NowSeconds() + QuietSeconds;
    return outcome;
}

Outcome LayRequest(const Request &request, Expects answer)
{
    Outcome one = OneHandheld();
    return one.ok() ? LayWhenFree(Packed(request), TransferLastIndex, answer) : one;
}

Result<SliceBytes> ReadBackOnce(const Request &request, Tells tells)
{
    const double start = NowSeconds();
    if (Outcome laid = LayRequest(request, Expects::ReadBack); !laid.ok())
        return {{}, laid};
    const Outcome outcome = Await([] { return TheMessages().readBack().has_value() || !EndOfWait().ok(); });
    if (!EndOfWait().ok())
        return {{}, GivenUp(EndOfWait(), tells)};
    const bool echoLost = outcome.how() == End::NoAnswer && TheMessages().takeHeldReadBack();
    if (!outcome.ok() && !echoLost)
        return {{}, GivenUp(outcome, tells)};
    if (echoLost && tells == Tells::No)
        TheMessages().giveUp(true);
    TakeMeasurement(SecondsSince(start));
    const ReadBack answer = *TheMessages().readBack();
    return {answer.data, answer.sound ? Outcome() : Outcome(End::Damaged)};
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
    bytes.at(DataPlaces.at(number - 1)) = static_cast<quint8>(value);
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

Outcome LayWhenFree(const LocoNetMessage &message, int lastIndex, Expects answer)
{
    // After a time-out the old message may still wait for its echo.
    if (Outcome slot = Await([] { return TheMessages().slotFree(); }, SlotSeconds); !slot.ok()) {
        if (slot.how() == End::ProgramEnds)
            TheMessages().dropAll(); // the old message is of no use any more, and the end needs the slot
        return slot.how() == End::NoAnswer ? Outcome(End::NotSent) : slot;
    }
    AwaitQuietLine(answer);
    if (WaitsMustEnd())
        return Outcome(End::ProgramEnds);
    return TheMessages().lay(message, lastIndex, answer);
}

Outcome ExchangeForAck(const Request &request, Tells tells)
{
    const double start = NowSeconds();
    Outcome outcome = LayRequest(request, Expects::Acknowledge);
    if (outcome.ok())
        outcome = AwaitAck(tells);
    if (outcome.ok())
        TakeMeasurement(SecondsSince(start));
    return outcome;
}

void RestLine(double seconds)
{
    quietUntil = qMax(quietUntil, NowSeconds() + seconds);
}

bool OnlyOneAnswers(double seconds)
{
    static_cast<void>(Await([] { return !OneHandheld().ok(); }, seconds));
    return OneHandheld().ok();
}

Outcome AwaitAck(Tells tells)
{
    Outcome outcome = Await([] { return TheMessages().acknowledged() || !EndOfWait().ok(); });
    if (!EndOfWait().ok())
        outcome = EndOfWait();
    if (outcome.ok())
        return outcome;
    const bool refused = outcome.how() == End::NoAnswer && TheMessages().acknowledgeCode().has_value();
    return GivenUp(refused ? Outcome(End::Refused) : outcome, tells);
}

Result<SliceBytes> ExchangeForReadBack(const Request &request, Tells tells)
{
    auto answer = ReadBackOnce(request, tells);
    if (answer.outcome.how() != End::Damaged)
        return answer;
    TheMessages().expectRepeat();
    return ReadBackOnce(request, tells); // the handheld's buffer still holds the bytes
}

Outcome SendOnly(const Request &request)
{
    return LayWhenFree(Packed(request), TransferLastIndex, Expects::Acknowledge);
}

void ResetExchange()
{
    quietUntil = 0;
}

} // namespace hr::link
