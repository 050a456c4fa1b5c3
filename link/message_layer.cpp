#include "link/message_layer.h"

#include "link/cadence.h"
#include "link/link_state.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <algorithm>
#include <utility>

LocoNetMessage TxMsg{};
int TxLen = -1;
bool TxWaitEcho = false;
double TxTime = 0;
bool AwaitingAck = false;
int AckOpcode = 0;
int AckImmByte = 0;

std::array<LocoNetMessage, RingSlots + 1> RxRing{};
int RxWrite = 0;
int RxSlot = 0;
int RxRead = 0;
int RxCount = -1;
int RxExpected = -1;
bool RxInMessage = false;
bool RxEmpty = true;
bool RxOverflow = false;

int LastAckCode = 0;
int LocoAdrReply = 0;
bool HandheldMode = true;
bool RawReplyWanted = false;
std::array<int, 25> RawReply{};
std::array<int, 5> RawReplyHead{};

bool SpiReadWanted = false;
int SpiReadDone = 0;
bool SpiReadSound = false;
std::array<quint8, 20> SpiReadData{};

std::function<void(const LocoNetMessage &)> DownloadAnswerCheck;
bool PortInTextMode = false;

namespace
{

constexpr double EchoTimeoutSeconds = 2;
constexpr double CtsTimeoutSeconds = 3;
constexpr qint64 CtsPollUs = 1000;
constexpr int OpcodeBit = 0x80;
constexpr int LongAckOfImmediate = 0x6D; // 0xED without bit 7
constexpr std::array<size_t, 5> GroupBases{5, 10, 15, 20, 25};
constexpr size_t GroupDataBytes = 4;

int ctsPosition = -1; // next byte of a transmission that CTS holds up; -1 = none
double ctsStart = 0;
int transmission = 0;            // counts transmissions, so that a stale CTS poll ends itself
bool lateAnswerPossible = false; // the last awaited answer never came
std::function<void(const Traffic &)> trafficTap;
std::function<void()> linkWork;

void TellWork()
{
    if (linkWork)
        linkWork();
}

size_t Index(int i)
{
    return static_cast<size_t>(i);
}

void LayChecksum()
{
    int checksum = 0xFF;
    for (int i = 0; i <= TxLen; ++i)
        checksum ^= TxMsg.at(Index(i));
    TxMsg.at(Index(TxLen + 1)) = static_cast<quint8>(checksum);
}

void MarkAsWritten()
{
    ctsPosition = -1;
    TxWaitEcho = true;
    TxTime = NowSeconds();
}

/// Writes one byte while CTS is on and lets events run before the next one; while CTS is off, looks again later.
void TransmitUnderCts(int id)
{
    if (id != transmission || ctsPosition < 0)
        return;
    if (ctsPosition > TxLen + 1 || SecondsSince(ctsStart) > CtsTimeoutSeconds) {
        MarkAsWritten();
        return;
    }
    if (!Comm().cts() || !Comm().outputEmpty()) {
        // CTS and a full driver tell nobody when they change.
        TheEvents().after(CtsPollUs, [id] { TransmitUnderCts(id); });
        return;
    }
    Comm().write(QByteArray(1, static_cast<char>(TxMsg.at(Index(ctsPosition)))));
    ++ctsPosition;
    TheEvents().post([id] { TransmitUnderCts(id); });
}

void Transmit()
{
    LayChecksum();
    if (InterfaceType == InterfaceOrvanto1) {
        ctsPosition = 0;
        ctsStart = NowSeconds();
        TransmitUnderCts(++transmission);
        return;
    }
    QByteArray bytes;
    for (int i = 0; i <= TxLen + 1; ++i)
        bytes.append(static_cast<char>(TxMsg.at(Index(i))));
    Comm().write(bytes);
    MarkAsWritten();
}

void SuperviseEcho()
{
    if (SecondsSince(TxTime) <= EchoTimeoutSeconds)
        return;
    TxLen = -1;
    TxWaitEcho = false;
    if (!BoxesAreSilent()) {
        TheAsk().postBox({QStringLiteral("Message kann nicht gesendet werden!"), QStringLiteral("LocoNet Fehler"),
            BoxIcon::Critical});
    }
}

int LengthOfOpcode(int opcode)
{
    switch (opcode >> 5) {
    case 0x8 >> 1:
        return 2;
    case 0xA >> 1:
        return 4;
    case 0xC >> 1:
        return 6;
    default:
        return -1;
    }
}

/// All bytes of a sound message, its checksum included, XOR to 0xFF.
bool ChecksumRight(std::span<const quint8> bytes)
{
    int sum = 0;
    for (const quint8 byte : bytes)
        sum ^= byte;
    return sum == 0xFF;
}

std::span<const quint8> WholeMessage(const LocoNetMessage &message)
{
    const int fixed = LengthOfOpcode(message.at(0));
    return std::span(message).first(fixed != -1 ? Index(fixed) : message.at(1));
}

void ShowTap(std::span<const quint8> bytes)
{
    if (trafficTap)
        trafficTap({bytes, ChecksumRight(bytes)});
}

void StartMessage(int opcode)
{
    RxInMessage = true;
    if (!RxOverflow) {
        const int next = (RxWrite + 1) % RingSlots;
        if (next == RxRead)
            RxOverflow = true;
        else
            RxSlot = next;
    }
    RxCount = -1;
    RxExpected = LengthOfOpcode(opcode);
}

void StoreByte(int byte)
{
    ++RxCount;
    if (RxCount > MaxMessageIndex) { // a message of the stated length 1 never ends
        RxInMessage = false;
        return;
    }
    if (RxCount == 1 && RxExpected == -1) {
        RxExpected = byte;
        if (byte > MaxMessageIndex || byte <= 0)
            RxInMessage = false;
    }
    LocoNetMessage &slot = RxRing.at(Index(RxSlot));
    slot.at(Index(RxCount)) = static_cast<quint8>(byte);
    if (RxInMessage && RxCount == RxExpected - 1) {
        ShowTap(std::span(slot).first(Index(RxExpected)));
        RxWrite = RxSlot;
        RxEmpty = false;
        RxInMessage = false;
        TellWork();
    }
}

void ReceiveByte(int byte)
{
    if ((byte & OpcodeBit) != 0)
        StartMessage(byte);
    if (RxInMessage)
        StoreByte(byte);
}

template <typename Visit> void ForEachDataByte(Visit visit)
{
    for (const size_t base : GroupBases) {
        for (size_t k = 1; k <= GroupDataBytes; ++k)
            visit(base, base + k, static_cast<quint8>(1U << (k - 1)));
    }
}

void StoreReadBack(LocoNetMessage &message)
{
    // An answer may come although the echo was lost. After a request without an answer it may as well be the late
    // one of that request: then only an answer behind the echo counts.
    const bool echoMissing = TxLen != -1;
    if (!SpiReadWanted || (echoMissing && lateAnswerPossible))
        return;
    SpiReadSound = ChecksumRight(std::span(message).first(TransferMessageLength));
    UnpackHighBits(message);
    size_t index = 0;
    ForEachDataByte([&](size_t, size_t data, quint8) { SpiReadData.at(index++) = message.at(data); });
    SpiReadWanted = false;
    SpiReadDone = 1;
    lateAnswerPossible = false;
}

void DispatchPeerTransfer(LocoNetMessage &message)
{
    if (message.at(1) != TransferMessageLength)
        return; // other devices use this opcode with other lengths
    if (!HandheldMode) {
        if (DownloadAnswerCheck)
            DownloadAnswerCheck(message);
    } else if (!RawReplyWanted) {
        StoreReadBack(message);
    } else {
        std::copy_n(message.begin(), RawReplyHead.size(), RawReplyHead.begin());
        CopyRawBytes(message, RawReply);
        RawReplyWanted = false;
    }
}

void DispatchByOpcode(LocoNetMessage &message)
{
    switch (message.at(0)) {
    case OpcodeLongAck:
        if (AwaitingAck && AckOpcode == OpcodeImmediate && message.at(1) == LongAckOfImmediate) {
            LastAckCode = message.at(2);
            lateAnswerPossible = false;
        }
        break;
    case OpcodePeerTransfer:
        DispatchPeerTransfer(message);
        break;
    case OpcodeLocoAddress:
        LocoAdrReply = message.at(1) * 128 + message.at(2);
        break;
    default:
        break;
    }
}

bool ExpectsReply(int opcode)
{
    return opcode == 0xB0 || opcode == 0xBC || opcode == OpcodeLocoAddress || opcode == OpcodeImmediate;
}

void CheckEcho(const LocoNetMessage &message)
{
    if (!TxWaitEcho || !std::equal(TxMsg.begin(), TxMsg.begin() + TxLen + 2, message.begin()))
        return;
    TxWaitEcho = false;
    if (ExpectsReply(TxMsg.at(0))) {
        AwaitingAck = true;
        AckOpcode = TxMsg.at(0);
        if (AckOpcode == OpcodeImmediate)
            AckImmByte = TxMsg.at(5);
    }
    TxLen = -1;
}

} // namespace

void TapTraffic(std::function<void(const Traffic &)> tap)
{
    trafficTap = std::move(tap);
}

Outcome LayMessage(const LocoNetMessage &message, int lastIndex)
{
    if (!Comm().isOpen())
        return Outcome(End::PortLost);
    if (TxLen != -1)
        return Outcome(End::NotSent);
    TxMsg = message;
    TxLen = lastIndex; // last: from here on the timer may send it
    TellWork();
    return {};
}

void OnLinkWork(std::function<void()> work)
{
    linkWork = std::move(work);
}

void ForgetAnswer()
{
    AwaitingAck = false;
    SpiReadWanted = false;
    lateAnswerPossible = true;
}

void SendTask()
{
    if (TxLen == -1 || ctsPosition >= 0)
        return;
    if (TxWaitEcho)
        SuperviseEcho();
    else
        Transmit();
}

void ReceiveBytes()
{
    if (PortInTextMode)
        return;
    while (Comm().bytesWaiting() > 0) {
        const QByteArray bytes = Comm().read();
        if (bytes.isEmpty())
            return;
        for (const char byte : bytes)
            ReceiveByte(static_cast<quint8>(byte));
    }
}

void DispatchTask()
{
    if (RxEmpty)
        return;
    RxRead = (RxRead + 1) % RingSlots;
    RxOverflow = false;
    if (RxWrite == RxRead)
        RxEmpty = true;
    LocoNetMessage &message = RxRing.at(Index(RxRead));
    if (CurrentCadence() == Cadence::Events && !ChecksumRight(WholeMessage(message)))
        return;
    const LocoNetMessage received = message; // a read-back restores high bits in the slot
    DispatchByOpcode(message);
    AwaitingAck = false; // only the first message after the echo can be the answer
    CheckEcho(received);
}

void PackHighBits(LocoNetMessage &message)
{
    ForEachDataByte([&message](size_t collector, size_t data, quint8 mask) {
        if ((message.at(data) & OpcodeBit) != 0)
            message.at(collector) |= mask;
        message.at(data) &= 0x7F;
    });
}

void UnpackHighBits(LocoNetMessage &message)
{
    ForEachDataByte([&message](size_t collector, size_t data, quint8 mask) {
        if ((message.at(collector) & mask) != 0)
            message.at(data) |= OpcodeBit;
    });
}

void CopyRawBytes(const LocoNetMessage &message, std::array<int, 25> &raw)
{
    size_t next = 0;
    for (const size_t base : GroupBases)
        raw.at(next++) = message.at(base);
    ForEachDataByte([&](size_t, size_t data, quint8) { raw.at(next++) = message.at(data); });
}

void DropUnansweredMessage()
{
    if (!TxWaitEcho)
        return;
    TxLen = -1;
    TxWaitEcho = false;
}

void DropPendingMessage()
{
    TxLen = -1;
    TxWaitEcho = false;
    ctsPosition = -1;
    AwaitingAck = false;
    SpiReadWanted = false;
    lateAnswerPossible = false;
    RxInMessage = false;
    RxRead = RxWrite; // what was received before belongs to no later request
    RxEmpty = true;
    RxOverflow = false;
}

void ResetMessageLayer()
{
    DropPendingMessage();
    TxMsg = {};
    TxTime = 0;
    AckOpcode = AckImmByte = 0;
    RxRing = {};
    RxWrite = RxSlot = RxRead = 0;
    RxCount = RxExpected = -1;
    RxEmpty = true;
    RxOverflow = false;
    LastAckCode = LocoAdrReply = 0;
    HandheldMode = true;
    RawReplyWanted = false;
    RawReply = {};
    RawReplyHead = {};
    SpiReadDone = 0;
    SpiReadSound = false;
    SpiReadData = {};
    DownloadAnswerCheck = nullptr;
    trafficTap = nullptr;
    PortInTextMode = false;
}
