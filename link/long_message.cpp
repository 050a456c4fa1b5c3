#include "link/long_message.h"

namespace hr::link
{

namespace
{

constexpr size_t GroupDataBytes = 4;

size_t CollectorOf(size_t dataIndex)
{
    return CollectorPlaces.at(dataIndex / GroupDataBytes);
}

quint8 MaskOf(size_t dataIndex)
{
    return static_cast<quint8>(1U << (dataIndex % GroupDataBytes));
}

} // namespace

int LengthOfOpcode(quint8 opcode)
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

std::span<const quint8> WholeMessage(const LocoNetMessage &message)
{
    const int fixed = LengthOfOpcode(message.at(0));
    return std::span(message).first(fixed != -1 ? static_cast<size_t>(fixed) : message.at(1));
}

bool ChecksumRight(std::span<const quint8> bytes)
{
    int sum = 0;
    for (const quint8 byte : bytes)
        sum ^= byte;
    return sum == 0xFF;
}

void PackHighBits(LocoNetMessage &message)
{
    for (size_t i = 0; i < DataPlaces.size(); ++i) {
        quint8 &data = message.at(DataPlaces.at(i));
        if ((data & OpcodeBit) != 0)
            message.at(CollectorOf(i)) |= MaskOf(i);
        data &= 0x7F;
    }
}

void UnpackHighBits(LocoNetMessage &message)
{
    for (size_t i = 0; i < DataPlaces.size(); ++i) {
        if ((message.at(CollectorOf(i)) & MaskOf(i)) != 0)
            message.at(DataPlaces.at(i)) |= OpcodeBit;
    }
}

SliceBytes DataOf(const LocoNetMessage &message)
{
    SliceBytes data{};
    for (size_t i = 0; i < data.size(); ++i)
        data.at(i) = message.at(DataPlaces.at(i));
    return data;
}

void LayData(LocoNetMessage &message, const SliceBytes &data)
{
    for (size_t i = 0; i < data.size(); ++i)
        message.at(DataPlaces.at(i)) = data.at(i);
}

} // namespace hr::link
