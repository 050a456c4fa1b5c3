#include "sim/station.h"

#include <algorithm>
#include <array>

namespace hr::sim
{
namespace
{

constexpr std::array<quint8, 5> RequestHead{0xED, 0x1F, 0x08, 0x49, 0x4B};
constexpr std::array<quint8, 5> AnswerHead{0xE5, 0x1F, 0x01, 0x50, 0x43};
constexpr std::size_t RequestSize = 31;
constexpr std::size_t EntryPlace = 5;
// Bytes 5-29: five groups of a collector and four data bytes.
constexpr std::array<quint8, 25> EntryBody{
    0x00, 0, 127, 127, 127, 0x00, 0, 0, 0, 0, 0x30, 12, 8, 19, 30, 0x70, 19, 19, 7, 2, 0x00, 0, 0, 0, 0};
constexpr std::array<quint8, 25> AnswerBody{
    0x70, 0, 0, 0, 0, 0x70, 0, 0, 0, 0, 0x30, 12, 8, 19, 30, 0x70, 19, 19, 7, 2, 0x00, 0, 0, 0, 0};
constexpr quint8 LongAck = 0xB4;
constexpr quint8 AckOfTransfer = 0x6D;
constexpr quint8 AlreadyInDownloadMode = 1;

bool IsEntry(const Bytes &message)
{
    return std::equal(EntryBody.begin(), EntryBody.end(), message.begin() + EntryPlace);
}

constexpr quint8 CommandMask = 0x70;
constexpr std::array<quint8, 3> EntryCommands{0x30, 0x70, 0x00}; // collectors 15, 20, 25
constexpr std::array<quint8, 3> RecordCommands{0x30, 0x10, 0x50};
constexpr int FirstPosition = 7501;
constexpr quint8 NoMoreRecords = 255;
constexpr std::size_t NameSize = 16;
constexpr std::size_t DataSize = 20;

bool HasCommands(const Bytes &message, const std::array<quint8, 3> &commands)
{
    return (message.at(15) & CommandMask) == commands[0] && (message.at(20) & CommandMask) == commands[1]
        && (message.at(25) & CommandMask) == commands[2];
}

/// D1..D20 with their bit 7.
std::array<quint8, DataSize> DataOf(const Bytes &message)
{
    std::array<quint8, DataSize> data{};
    for (std::size_t i = 0; i < DataSize; ++i) {
        const std::size_t group = EntryPlace + i / 4 * 5;
        const bool high = (message.at(group) >> (i % 4) & 1) != 0;
        data.at(i) = static_cast<quint8>(message.at(group + 1 + i % 4) | (high ? 0x80 : 0));
    }
    return data;
}

Bytes Answer(const std::array<quint8, DataSize> &data)
{
    Bytes answer{AnswerHead.begin(), AnswerHead.end()};
    for (std::size_t i = 0; i < DataSize; i += 4) {
        quint8 collector = 0;
        for (std::size_t k = 0; k < 4; ++k)
            collector = static_cast<quint8>(collector | (data.at(i + k) >> 7) << k);
        answer.push_back(collector);
        for (std::size_t k = 0; k < 4; ++k)
            answer.push_back(data.at(i + k) & 0x7F);
    }
    return WithChecksum(answer);
}

Bytes EntryAnswer()
{
    Bytes answer{AnswerHead.begin(), AnswerHead.end()};
    answer.insert(answer.end(), AnswerBody.begin(), AnswerBody.end());
    return WithChecksum(answer);
}

} // namespace

Bytes Station::record(std::size_t index, int part) const
{
    std::array<quint8, DataSize> data{};
    if (index >= locos.size()) {
        data[0] = NoMoreRecords;
        return Answer(data);
    }
    const StationLoco &loco = locos.at(index);
    if (part == 1) {
        std::copy(loco.modes.begin(), loco.modes.end(), data.begin());
        data[4] = loco.symbol;
        return Answer(data);
    }
    data[1] = static_cast<quint8>(loco.address >> 8);
    data[2] = static_cast<quint8>(loco.address);
    const QByteArray name = loco.name.leftJustified(NameSize, ' ', true);
    std::copy(name.begin(), name.end(), data.begin() + 3);
    return Answer(data);
}

Bytes Station::answerTo(const Bytes &request) const
{
    if (!HasCommands(request, RecordCommands))
        return Answer({});
    const auto data = DataOf(request);
    const int position = data[0] * 256 + data[1] - FirstPosition;
    return record(static_cast<std::size_t>(position), data[2]);
}

bool Station::staysSilent() const
{
    return !settings.answers
        || (settings.silentFrom > 0 && requests.size() >= static_cast<std::size_t>(settings.silentFrom));
}

std::vector<BusAnswer> Station::receive(const Bytes &message, qint64)
{
    const bool ours =
        message.size() == RequestSize && std::equal(RequestHead.begin(), RequestHead.end(), message.begin());
    if (!settings.present || !ours || !IsMessage(message))
        return {};
    requests.push_back(message);
    const bool entering = HasCommands(message, EntryCommands);
    const bool already = entering && IsEntry(message) && settings.inDownloadMode;
    const quint8 code = already ? AlreadyInDownloadMode : settings.ackCode;
    std::vector<BusAnswer> answers{{WithChecksum({LongAck, AckOfTransfer, code}), settings.ackDelayUs}};
    if (staysSilent() || already || (entering && !IsEntry(message)))
        return answers;
    answers.push_back({entering ? EntryAnswer() : answerTo(message), settings.answerDelayUs});
    return answers;
}

std::vector<StationLoco> DemoStationLocos()
{
    return {{3, "BR 01 1066", {0x94, 0x94, 0x01, 0x00}, 1},
        {24,
            "64 419 (gr\xFC"
            "n)",
            {0x04, 0x00, 0x00, 0x00}, 8},
        {44, "44 1681 Kohle", {0x0C, 0x00, 0x00, 0x00}, 3}, {141, "E41 'Knallfrosch'", {0x04, 0x01, 0x00, 0x00}, 26},
        {216, "216 010-9", {0x04, 0x00, 0x00, 0x00}, 16}, {515, "515 Akkublitz", {0x06, 0x00, 0x00, 0x80}, 35},
        {628, "628 + 928", {0x04, 0x00, 0x00, 0x00}, 36},
        {1189,
            "Krokodil Gr\xFC"
            "n",
            {0x04, 0x00, 0x00, 0x01}, 25},
        {4014,
            "Stra\xDF"
            "enbahn #14",
            {0x08, 0x00, 0x00, 0x80}, 41}};
}

} // namespace hr::sim
