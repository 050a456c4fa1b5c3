#include "sim/loconet.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace hr::sim
{
namespace
{

constexpr quint8 OpcodeBit = 0x80;
constexpr std::size_t ShortestMessage = 2;

// 0 = not known yet: the length byte is missing.
std::size_t MessageLength(const Bytes &message)
{
    switch (message.at(0) & 0xE0) {
    case 0x80:
        return 2;
    case 0xA0:
        return 4;
    case 0xC0:
        return 6;
    default:
        return message.size() < 2 ? 0 : std::max<std::size_t>(message.at(1), ShortestMessage);
    }
}

quint8 XorOf(const Bytes &bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), quint8{0}, std::bit_xor<quint8>());
}

} // namespace

Bytes WithChecksum(Bytes message)
{
    message.push_back(XorOf(message) ^ 0xFF);
    return message;
}

bool IsMessage(const Bytes &message)
{
    return message.size() >= ShortestMessage && (message.at(0) & OpcodeBit) != 0
        && MessageLength(message) == message.size() && XorOf(message) == 0xFF;
}

Bytes ToBytes(const QByteArray &bytes)
{
    return {bytes.begin(), bytes.end()};
}

QByteArray ToByteArray(const Bytes &bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QString HexText(const Bytes &bytes)
{
    return QString::fromLatin1(ToByteArray(bytes).toHex(' ').toUpper());
}

std::optional<Bytes> MessageAssembler::add(quint8 byte)
{
    if ((byte & OpcodeBit) != 0)
        message.clear();
    else if (message.empty())
        return std::nullopt;
    message.push_back(byte);
    if (MessageLength(message) != message.size())
        return std::nullopt;
    return std::exchange(message, {});
}

} // namespace hr::sim
