// What the message layer makes of a received message: echo, acknowledge, answer, or nothing.

#include "link/cadence.h"
#include "link/message_layer.h"
#include "program/run_control.h"

#include <algorithm>
#include <utility>

namespace hr::link
{

namespace
{

constexpr quint8 LongAckOfImmediate = 0x6D; // 0xED without bit 7
constexpr std::array<quint8, 2> HandheldPair{0x66, 0x33};
constexpr double SecondAnswerSeconds = 1; // so long after an answer another one belongs to the same request

bool IsAckOfImmediate(const LocoNetMessage &message)
{
    return message.at(0) == OpcodeLongAck && message.at(1) == LongAckOfImmediate;
}

bool IsFromHandheld(const LocoNetMessage &message)
{
    return std::equal(HandheldPair.begin(), HandheldPair.end(), message.begin() + 3);
}

bool ExpectsReply(int opcode)
{
    return opcode == 0xB0 || opcode == 0xBC || opcode == OpcodeLocoAddress || opcode == OpcodeImmediate;
}

ReadBack ReadBackOf(LocoNetMessage message)
{
    const bool sound = ChecksumRight(WholeMessage(message));
    UnpackHighBits(message);
    return {DataOf(message), sound};
}

RawAnswer RawOf(const LocoNetMessage &message)
{
    RawAnswer raw;
    std::copy_n(message.begin(), raw.head.size(), raw.head.begin());
    const auto data = std::ranges::transform(CollectorPlaces, raw.bytes.begin(), [&message](size_t place) {
        return message.at(place);
    }).out;
    std::ranges::copy(DataOf(message), data);
    return raw;
}

bool IsRecent(double moment)
{
    return moment > 0 && SecondsSince(moment) <= SecondAnswerSeconds;
}

} // namespace

void MessageLayer::DispatchTask()
{
    if (RxEmpty)
        return;
    RxRead = (RxRead + 1) % RingSlots;
    RxOverflow = false;
    if (RxWrite == RxRead)
        RxEmpty = true;
    const LocoNetMessage message = RxRing.at(static_cast<size_t>(RxRead));
    if (CurrentCadence() == Cadence::Events && !ChecksumRight(WholeMessage(message)))
        return;
    dispatchByOpcode(message);
    const bool isEcho = isOwnEcho(message);
    if (endsWaitForAck(message, isEcho))
        AwaitingAck = false;
    if (isEcho)
        takeEcho();
    else if (message.at(0) == OpcodeImmediate)
        foreignImmediate = NowSeconds();
}

void MessageLayer::dispatchByOpcode(const LocoNetMessage &message)
{
    if (IsAckOfImmediate(message))
        takeAcknowledge(message);
    else if (message.at(0) == OpcodePeerTransfer)
        takePeerTransfer(message);
    else if (message.at(0) == OpcodeLocoAddress)
        LocoAdrReply = message.at(1) * 128 + message.at(2);
}

/// Only the first message after the echo can be the answer. In the fast cadence traffic of others may come between, but
/// not another request to whose acknowledge ours would be mistaken.
bool MessageLayer::endsWaitForAck(const LocoNetMessage &message, bool isEcho) const
{
    const int opcode = message.at(0);
    return CurrentCadence() == Cadence::Ticks || isEcho || opcode == OpcodeLongAck || opcode == OpcodeImmediate;
}

void MessageLayer::takeAcknowledge(const LocoNetMessage &message)
{
    const bool awaitsAck = awaited.kind == Expects::Acknowledge && awaited.wanted;
    if (AwaitingAck && AckOpcode == OpcodeImmediate) {
        LastAckCode = message.at(2);
        awaited.ackCame = true;
        if (awaitsAck)
            pastOf(Expects::Acknowledge).answered = NowSeconds();
        awaited.wanted = awaited.wanted && !awaitsAck;
    } else if (awaitsAck && awaited.echoed) {
        awaited.missed = true; // something came between: as agreed it does not count
    } else if (awaitsAck) {
        ++awaited.held;
    } else {
        noteUnawaited(Expects::Acknowledge);
    }
}

void MessageLayer::takePeerTransfer(const LocoNetMessage &message)
{
    if (message.at(1) != TransferMessageLength)
        return; // other devices use this opcode with other lengths
    if (!HandheldMode) {
        HandheldMode = !downloadAnswerCheck || downloadAnswerCheck(message);
    } else if (RawReplyWanted) {
        RawReply = RawOf(message);
        RawReplyWanted = false;
    } else if (IsFromHandheld(message)) {
        takeReadBack(ReadBackOf(message));
    }
}

void MessageLayer::takeReadBack(const ReadBack &answer)
{
    if (awaited.kind != Expects::ReadBack || !awaited.wanted)
        return noteUnawaited(Expects::ReadBack);
    awaited.readBack = answer;
    if (!awaited.echoed) {
        ++awaited.held;
        return;
    }
    awaited.wanted = false;
    SpiReadDone = 1;
    pastOf(Expects::ReadBack).answered = NowSeconds();
}

bool MessageLayer::takeHeldReadBack()
{
    const bool alone = awaited.held == 1 && secondsOwed(Expects::ReadBack) == 0;
    if (awaited.kind != Expects::ReadBack || !awaited.wanted || awaited.echoed || !alone)
        return false;
    awaited.wanted = false;
    SpiReadDone = 1;
    pastOf(Expects::ReadBack).answered = NowSeconds();
    return true;
}

bool MessageLayer::isOwnEcho(const LocoNetMessage &message) const
{
    return TxWaitEcho && std::equal(TxMsg.begin(), TxMsg.begin() + TxLen + 2, message.begin());
}

/// The slot is free. What was held came before the request: it answers an older one, or nobody.
void MessageLayer::takeEcho()
{
    if (!abandoned && ExpectsReply(TxMsg.at(0))) {
        AwaitingAck = true;
        AckOpcode = TxMsg.at(0);
        if (AckOpcode == OpcodeImmediate)
            AckImmByte = TxMsg.at(5);
    }
    const bool counts = !abandoned;
    freeSlot();
    if (!counts)
        return;
    for (; awaited.held > 0; --awaited.held)
        noteUnawaited(awaited.kind);
    awaited.echoed = true;
    lastEchoed = awaited.kind;
}

/// A late answer settles what is owed. Any other one that comes right behind an answer is another handheld's.
void MessageLayer::noteUnawaited(Expects kind)
{
    Past &before = pastOf(kind);
    if (NowSeconds() < qMax(before.owedUntil, before.forgivenUntil)) {
        before.owedUntil = before.forgivenUntil = 0;
        return;
    }
    const bool ofOthers =
        kind == Expects::Acknowledge && (lastEchoed != Expects::Acknowledge || IsRecent(foreignImmediate));
    if (ofOthers || !IsRecent(before.answered))
        return;
    if (++strangeAnswers > 1)
        return;
    strangeSince = NowSeconds();
    if (secondHandler)
        secondHandler();
}

std::optional<int> MessageLayer::acknowledgeCode() const
{
    return awaited.ackCame ? std::optional(LastAckCode) : std::nullopt;
}

std::optional<ReadBack> MessageLayer::readBack() const
{
    return SpiReadDone == 1 ? std::optional(awaited.readBack) : std::nullopt;
}

void MessageLayer::setDownloadAnswerCheck(std::function<bool(const LocoNetMessage &)> check)
{
    HandheldMode = !check;
    downloadAnswerCheck = std::move(check);
}

void MessageLayer::wantRawReply()
{
    RawReply = {};
    RawReplyWanted = true;
}

std::optional<RawAnswer> MessageLayer::rawReply() const
{
    return RawReplyWanted ? std::nullopt : std::optional(RawReply);
}

} // namespace hr::link
