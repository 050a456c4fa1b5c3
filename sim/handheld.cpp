#include "sim/handheld.h"

#include <algorithm>

namespace hr::sim
{
namespace
{

constexpr std::size_t TransferSize = 31;
constexpr std::array<quint8, 5> RequestHead{0xED, 0x1F, 0x08, 0x66, 0x33};
constexpr quint8 AnswerOpcode = 0xE5;
constexpr quint8 LongAck = 0xB4;
constexpr quint8 AckOfTransfer = 0x6D;
constexpr std::array<std::size_t, 5> Collectors{5, 10, 15, 20, 25};
constexpr std::array<quint8, 5> ModePattern{0x70, 0x30, 0x10, 0x50, 0x60};
constexpr quint8 CommandMask = 0x70;
constexpr quint8 Store = 0x00;
constexpr quint8 Execute = 0x10;
constexpr quint8 ReadBack = 0x20;
constexpr quint8 Identify = 0x30;
constexpr std::size_t FirstData = 6;
constexpr std::size_t SliceSize = 20;
constexpr std::size_t TypeLength = 5;
constexpr quint8 ProgramOpcode = 0x83;
constexpr quint8 LoadOpcode = 0x53;
constexpr qint64 ClockUs = 10; // one byte through the chip

bool HasHead(const Bytes &message)
{
    return message.size() == TransferSize && std::equal(RequestHead.begin(), RequestHead.end(), message.begin());
}

std::array<quint8, SliceSize> Unpacked(const Bytes &message)
{
    std::array<quint8, SliceSize> data{};
    for (std::size_t i = 0; i < SliceSize; ++i) {
        const std::size_t collector = Collectors.at(i / 4);
        const bool high = ((message.at(collector) >> (i % 4)) & 1) != 0;
        data.at(i) = static_cast<quint8>(message.at(collector + 1 + i % 4) | (high ? 0x80 : 0));
    }
    return data;
}

Bytes Packed(std::span<const quint8> data)
{
    Bytes message(TransferSize - 1, 0);
    std::ranges::copy(RequestHead, message.begin());
    message.at(0) = AnswerOpcode;
    for (std::size_t i = 0; i < data.size(); ++i) {
        const std::size_t collector = Collectors.at(i / 4);
        message.at(collector + 1 + i % 4) = data[i] & 0x7F;
        message.at(collector) |= static_cast<quint8>((data[i] >> 7) << (i % 4));
    }
    return WithChecksum(message);
}

std::size_t StartIndex(const Bytes &message)
{
    const int high = (message.at(15) >> 4) & 1;
    const int middle = (message.at(20) >> 4) & 7;
    const int low = (message.at(25) >> 4) & 7;
    return static_cast<std::size_t>((high << 6) | (middle << 3) | low);
}

bool IsModeMessage(const Bytes &message)
{
    for (std::size_t i = 0; i < Collectors.size(); ++i) {
        if (message.at(Collectors.at(i)) != ModePattern.at(i))
            return false;
    }
    return true;
}

} // namespace

Handheld::Handheld(FaultBox &faultBox) : box(faultBox) { }

std::vector<BusAnswer> Handheld::receive(const Bytes &message, qint64 timeUs)
{
    if (!settings.present || !powered || !HasHead(message))
        return {};
    if (!IsMessage(message)) {
        ++state.rejected;
        return {};
    }
    if (box.strikes(box.faults.missedRequest))
        return {};
    return disturbed(handle(message, timeUs));
}

std::vector<BusAnswer> Handheld::disturbed(std::vector<BusAnswer> answers) const
{
    if (answers.empty())
        return answers;
    const BusAnswer first = answers.front();
    if (box.strikes(box.faults.lateAnswer))
        answers.front().delayUs += box.faults.lateAnswerUs;
    if (box.strikes(box.faults.doubledAnswer))
        answers.push_back({first.bytes, first.delayUs + box.faults.doubledUs});
    return answers;
}

std::vector<BusAnswer> Handheld::handle(const Bytes &message, qint64 timeUs)
{
    if (IsModeMessage(message)) {
        ++state.normalModes;
        return acknowledge(0);
    }
    const quint8 command = message.at(10) & CommandMask;
    const auto slice = std::span(state.spiBuffer).subspan(StartIndex(message), SliceSize);
    const auto data = Unpacked(message);
    switch (command) {
    case Store:
        ++state.stores;
        std::ranges::copy(data, slice.begin());
        return acknowledge(0);
    case Execute:
        ++state.stores;
        std::copy_n(data.begin(), SliceSize - 1, slice.begin());
        return execute(data.back(), timeUs);
    case ReadBack:
        ++state.readBacks;
        return answer(slice);
    case Identify:
        ++state.identifications;
        return answer(identification());
    default:
        return {};
    }
}

// The handheld waits for the chip before it acknowledges.
std::vector<BusAnswer> Handheld::execute(std::size_t count, qint64 timeUs)
{
    ++state.executes;
    const qint64 endUs = timeUs + static_cast<qint64>(count) * ClockUs;
    const qint64 busyBefore = flash.state.busyUntilUs;
    const bool programCommand = count > 0 && state.spiBuffer.front() == ProgramOpcode;
    const bool loadCommand = count > 0 && state.spiBuffer.front() == LoadOpcode;
    if ((programCommand && box.strikes(box.faults.skippedProgram))
        || (loadCommand && box.strikes(box.faults.skippedLoad)))
        return acknowledge(0);
    flash.clock(std::span(state.spiBuffer).first(count), endUs);
    const bool programs = flash.state.programmingPage >= 0 && flash.state.busyUntilUs != busyBefore;
    if (programs && box.strikes(box.faults.powerCut)) {
        cutPower(endUs);
        return {};
    }
    return acknowledge(std::max(endUs, flash.state.busyUntilUs) - timeUs);
}

std::vector<BusAnswer> Handheld::acknowledge(qint64 workUs)
{
    if (box.strikes(box.faults.lostAck))
        return {};
    const quint8 code = box.strikes(box.faults.otherAck) ? box.faults.otherAckCode : settings.ackCode;
    return {{WithChecksum({LongAck, AckOfTransfer, code}), settings.answerDelayUs + workUs}};
}

std::vector<BusAnswer> Handheld::answer(std::span<const quint8> data) const
{
    BusAnswer whole{Packed(data), settings.answerDelayUs};
    if (box.strikes(box.faults.damagedAnswer))
        whole.bytes.at(FirstData + static_cast<std::size_t>(box.number(4))) ^=
            static_cast<quint8>(1 << box.number(7));
    return {whole};
}

Bytes Handheld::identification() const
{
    Bytes data(SliceSize, 0);
    data.at(0) = settings.versionMajor;
    data.at(1) = settings.versionMinor;
    const auto type = std::ranges::copy(settings.date, data.begin() + 2).out;
    std::ranges::copy(settings.type.leftJustified(TypeLength, ' ', true), type);
    return data;
}

void Handheld::cutPower(qint64 nowUs)
{
    powered = false;
    flash.cutPower(nowUs);
    state.spiBuffer.fill(0);
}

} // namespace hr::sim
