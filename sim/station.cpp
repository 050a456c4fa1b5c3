#include "sim/station.h"

#include <algorithm>
#include <array>

namespace sim
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

Bytes EntryAnswer()
{
    Bytes answer{AnswerHead.begin(), AnswerHead.end()};
    answer.insert(answer.end(), AnswerBody.begin(), AnswerBody.end());
    return WithChecksum(answer);
}

} // namespace

std::vector<BusAnswer> Station::receive(const Bytes &message, qint64)
{
    const bool ours =
        message.size() == RequestSize && std::equal(RequestHead.begin(), RequestHead.end(), message.begin());
    if (!settings.present || !ours || !IsMessage(message))
        return {};
    requests.push_back(message);
    const bool entry = IsEntry(message);
    const bool already = entry && settings.inDownloadMode;
    const quint8 code = already ? AlreadyInDownloadMode : settings.ackCode;
    std::vector<BusAnswer> answers{{WithChecksum({LongAck, AckOfTransfer, code}), settings.ackDelayUs}};
    if (entry && !already && settings.answers)
        answers.push_back({EntryAnswer(), settings.answerDelayUs});
    return answers;
}

} // namespace sim
