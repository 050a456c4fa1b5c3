// LocoNet messages as bytes: lengths, checksum, and the high-bit packing of the 31-byte messages.
#pragma once

#include "platform/rooms.h"

#include <QtGlobal>

#include <array>
#include <span>

namespace hr::link
{

constexpr int MaxMessageIndex = 64;
constexpr int TransferMessageLength = 0x1F; // bytes of a 31-byte message, also its byte 1
constexpr int TransferLastIndex = 29;       // last byte before the checksum

constexpr int OpcodePeerTransfer = 0xE5;
constexpr int OpcodeImmediate = 0xED;
constexpr int OpcodeLongAck = 0xB4;
constexpr int OpcodeLocoAddress = 0xBF;
constexpr int AckAccepted = 0x7F;
constexpr int OpcodeBit = 0x80;

using LocoNetMessage = std::array<quint8, MaxMessageIndex + 1>;
using SliceBytes = std::array<quint8, 20>;

/// Where D1..D20 and their collectors stand in a 31-byte message.
constexpr std::array<size_t, 20> DataPlaces{
    6, 7, 8, 9, 11, 12, 13, 14, 16, 17, 18, 19, 21, 22, 23, 24, 26, 27, 28, 29};
constexpr std::array<size_t, 5> CollectorPlaces{5, 10, 15, 20, 25};

/// Length in bytes that the opcode says, or -1 when byte 1 says it.
int LengthOfOpcode(quint8 opcode);

/// The bytes of a complete message.
std::span<const quint8> WholeMessage(const LocoNetMessage &message);

/// All bytes of a sound message, its checksum included, XOR to 0xFF.
bool ChecksumRight(std::span<const quint8> bytes);

/// Moves bit 7 of the 20 data bytes of a message into the collector bytes, whose other bits stay.
void PackHighBits(LocoNetMessage &message);

/// Restores bit 7 of the 20 data bytes of a received message from its collectors.
void UnpackHighBits(LocoNetMessage &message);

/// D1..D20 of a message as they stand.
SliceBytes DataOf(const LocoNetMessage &message);
void LayData(LocoNetMessage &message, const SliceBytes &data);

} // namespace hr::link
