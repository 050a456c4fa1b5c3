// LocoNet messages as the simulated devices see them. Written for the simulation alone: it shares nothing with the
// program's own message layer, so a mistake made there shows up here.
//
// Message: byte 0 = opcode (bit 7 set), last byte = checksum (all bytes XOR to 0xFF). Length by opcode:
// 0x8_, 0x9_ = 2; 0xA_, 0xB_ = 4; 0xC_, 0xD_ = 6; 0xE_, 0xF_ = byte 1.
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <limits>
#include <optional>
#include <vector>

namespace hr::sim
{

using Bytes = std::vector<quint8>;

/// Microseconds of Events::monotonicUs(); Never = nothing is due.
inline constexpr qint64 Never = std::numeric_limits<qint64>::max();

/// The message with its checksum appended.
Bytes WithChecksum(Bytes message);

/// Well formed: starts with an opcode, has the opcode's length and a right checksum.
bool IsMessage(const Bytes &message);

Bytes ToBytes(const QByteArray &bytes);
QByteArray ToByteArray(const Bytes &bytes);

/// "ED 1F 08 ...".
QString HexText(const Bytes &bytes);

/// Cuts a byte stream into messages. Bytes outside a message are skipped, an opcode byte starts a new message.
class MessageAssembler
{
public:
    /// The message that this byte completes.
    std::optional<Bytes> add(quint8 byte);
    [[nodiscard]] bool inMessage() const { return !message.empty(); }
    void reset() { message.clear(); }

private:
    Bytes message;
};

} // namespace hr::sim
