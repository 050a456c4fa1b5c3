#include "platform/loconet_lines.h"

#include <QList>

#include <algorithm>

namespace hr::platform
{

namespace
{

constexpr qsizetype LongestLine = 1024; // a message of 127 bytes takes 389
constexpr size_t MostUnanswered = 32;
constexpr int LongestComment = 200;
constexpr int FirstOpcode = 0x80;
constexpr int LengthBits = 0x60;
constexpr int LongestMessage = 127;

/// The length of a message by its first bytes; 0 when it is not known yet, -1 for what is none.
int LengthOf(const QByteArray &bytes)
{
    const int opcode = static_cast<quint8>(bytes.at(0));
    if (opcode < FirstOpcode)
        return -1;
    switch (opcode & LengthBits) {
    case 0x00:
        return 2;
    case 0x20:
        return 4;
    case 0x40:
        return 6;
    default:
        break;
    }
    if (bytes.size() < 2)
        return 0;
    const int length = static_cast<quint8>(bytes.at(1));
    return length >= 3 && length <= LongestMessage ? length : -1;
}

bool IsWholeMessage(const QByteArray &bytes)
{
    return !bytes.isEmpty() && LengthOf(bytes) == bytes.size()
        && std::none_of(bytes.begin() + 1, bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
}

/// The bytes that are written as "A0 2F 00 70"; nothing for anything else.
QByteArray BytesOf(const QByteArray &hex)
{
    QByteArray bytes;
    for (const QByteArray &word : hex.split(' ')) {
        if (word.isEmpty())
            continue;
        bool isHex = false;
        const uint value = word.toUInt(&isHex, 16);
        if (!isHex || word.size() > 2 || word.startsWith('+') || word.startsWith('-'))
            return {};
        bytes += static_cast<char>(value);
    }
    return bytes;
}

} // namespace

QByteArray LocoNetLines::linesFor(const QByteArray &written)
{
    QByteArray lines;
    for (const char byte : written) {
        if ((byte & 0x80) != 0)
            outgoing.clear(); // a message begins here
        outgoing += byte;
        const int length = LengthOf(outgoing);
        if (length < 0)
            outgoing.clear();
        if (length <= 0 || outgoing.size() < length)
            continue;
        lines += "SEND " + outgoing.toHex(' ').toUpper() + "\r\n";
        if (sent.size() == MostUnanswered)
            sent.pop_front();
        sent.push_back({outgoing, false});
        standIn.clear();
        if (echoMissing)
            serverEchoes = false; // it was not an echo from which that was taken
        echoMissing = false;
        outgoing.clear();
    }
    return lines;
}

QByteArray LocoNetLines::messagesIn(const QByteArray &fromServer)
{
    QByteArray messages;
    for (const char byte : fromServer)
        takeByte(byte, messages);
    return messages;
}

void LocoNetLines::takeByte(char byte, QByteArray &messages)
{
    if (byte != '\r' && byte != '\n') {
        lineTooLong = lineTooLong || line.size() >= LongestLine;
        if (!lineTooLong)
            line += byte;
        return;
    }
    if (!line.isEmpty() && !lineTooLong)
        messages += takeLine(line);
    line.clear();
    lineTooLong = false;
}

QByteArray LocoNetLines::takeLine(const QByteArray &whole)
{
    const qsizetype blank = whole.indexOf(' ');
    const QByteArray token = (blank < 0 ? whole : whole.left(blank)).toUpper();
    const QByteArray parameter = blank < 0 ? QByteArray() : whole.mid(blank + 1).trimmed();
    if (token == "RECEIVE")
        return takeReceive(parameter);
    if (token == "SENT")
        return takeSent(parameter);
    // A wrong checksum is seen by whoever gets the message: it is asked for again.
    if (token == "ERROR" && (parameter.toUpper().startsWith("LINE") || parameter.toUpper().startsWith("MESSAGE")))
        disturbed = true;
    return {};
}

QByteArray LocoNetLines::takeReceive(const QByteArray &parameter)
{
    const bool wasDisturbed = disturbed;
    disturbed = false;
    QByteArray message = BytesOf(parameter);
    if (wasDisturbed || !IsWholeMessage(message))
        return {};
    if (message == standIn) {
        standIn.clear();
        serverEchoes = true;
        return {};
    }
    const auto own =
        std::ranges::find_if(sent, [&message](const Sent &one) { return !one.echoed && one.message == message; });
    if (own != sent.end()) {
        own->echoed = true;
        serverEchoes = true;
    } else {
        echoMissing = false;
    }
    return message;
}

QByteArray LocoNetLines::takeSent(const QByteArray &parameter)
{
    if (sent.empty())
        return {};
    const Sent answered = sent.front();
    sent.pop_front();
    if (parameter.toUpper().startsWith("ERROR")) {
        if (onRefused)
            onRefused(QString::fromUtf8(parameter.mid(5).trimmed()).left(LongestComment));
        return {};
    }
    if (answered.echoed || !parameter.toUpper().startsWith("OK"))
        return {};
    echoMissing = serverEchoes;
    if (serverEchoes)
        return {};
    standIn = answered.message;
    return answered.message;
}

void LocoNetLines::reset()
{
    auto handler = std::move(onRefused);
    *this = {};
    onRefused = std::move(handler);
}

} // namespace hr::platform
