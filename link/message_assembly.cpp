// The receiving side of the message layer: bytes become messages in a ring.

#include "link/message_layer.h"
#include "platform/world.h"

#include <algorithm>
#include <utility>

namespace hr::link
{

MessageLayer::TapId MessageLayer::tapTraffic(std::function<void(const Traffic &)> tap)
{
    trafficTaps.emplace(++lastTap, std::move(tap));
    return lastTap;
}

void MessageLayer::ReceiveBytes()
{
    if (textMode)
        return;
    while (Comm().bytesWaiting() > 0) {
        const QByteArray bytes = Comm().read();
        if (bytes.isEmpty())
            return;
        for (const char byte : bytes)
            receiveByte(static_cast<quint8>(byte));
    }
}

void MessageLayer::receiveByte(quint8 byte)
{
    if ((byte & OpcodeBit) != 0)
        startMessage(byte);
    if (RxInMessage)
        storeByte(byte);
}

void MessageLayer::startMessage(quint8 opcode)
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

void MessageLayer::storeByte(quint8 byte)
{
    ++RxCount;
    if (RxCount > MaxMessageIndex) { // a message of the stated length 1 never ends
        RxInMessage = false;
        return;
    }
    if (RxCount == 1 && RxExpected == -1) {
        RxExpected = byte;
        if (byte > MaxMessageIndex || byte == 0)
            RxInMessage = false;
    }
    RxRing.at(static_cast<size_t>(RxSlot)).at(static_cast<size_t>(RxCount)) = byte;
    if (RxInMessage && RxCount == RxExpected - 1)
        completeMessage();
}

void MessageLayer::completeMessage()
{
    if (!trafficTaps.empty()) {
        const auto bytes =
            std::span<const quint8>(RxRing.at(static_cast<size_t>(RxSlot))).first(static_cast<size_t>(RxExpected));
        const bool own = TxWaitEcho && std::cmp_equal(bytes.size(), TxLen + 2)
            && std::ranges::equal(bytes, std::span(TxMsg).first(bytes.size()));
        const Traffic traffic{bytes, ChecksumRight(bytes), own};
        for (const auto &[id, tap] : trafficTaps)
            tap(traffic);
    }
    RxWrite = RxSlot;
    RxEmpty = false;
    RxInMessage = false;
    tellWork();
}

} // namespace hr::link
