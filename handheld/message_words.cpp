#include "handheld/message_words.h"

#include <QStringList>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace hr::handheld
{

namespace
{

using Message = std::span<const quint8>;

constexpr int PageSize = 512;
constexpr int ReadCommandLength = 8; // clocked before the data of a read

int At(Message message, size_t index)
{
    return message[index];
}

QString Hex(int value, int digits)
{
    return QStringLiteral("0x") + QString::number(value, 16).rightJustified(digits, u'0').toUpper();
}

QString Slot(Message message)
{
    return QStringLiteral(" für Platz %1").arg(At(message, 1));
}

QString Speed(Message message)
{
    const int speed = At(message, 2);
    if (speed == 0)
        return QStringLiteral("Halt") + Slot(message);
    return (speed == 1 ? QStringLiteral("Nothalt") : QStringLiteral("Fahrstufe %1").arg(speed - 1)) + Slot(message);
}

/// The functions that are on: "f1 f3", or "keine".
QString FunctionsOn(int bits, int first, int count)
{
    QStringList on;
    for (int i = 0; i < count; ++i) {
        if ((bits >> i & 1) != 0)
            on += u'f' + QString::number(first + i);
    }
    return on.isEmpty() ? QStringLiteral("keine") : on.join(u' ');
}

QString DirectionAndFunctions(Message message)
{
    const int bits = At(message, 2);
    const QString light = (bits & 0x10) != 0 ? QStringLiteral("f0 ") : QString();
    const QString direction = (bits & 0x20) != 0 ? QStringLiteral("rückwärts") : QStringLiteral("vorwärts");
    return QStringLiteral("%1, an: %2%3").arg(direction, light, FunctionsOn(bits & 0x0F, 1, 4)) + Slot(message);
}

QString MoreFunctions(Message message, int first)
{
    return QStringLiteral("an: ") + FunctionsOn(At(message, 2) & 0x0F, first, 4) + Slot(message);
}

int AccessoryAddress(Message message)
{
    return ((At(message, 2) & 0x0F) << 7 | At(message, 1)) + 1;
}

QString Accessory(const QString &does, Message message)
{
    const int bits = At(message, 2);
    return QStringLiteral("%1 %2 %3%4")
        .arg(does)
        .arg(AccessoryAddress(message))
        .arg((bits & 0x20) != 0 ? QStringLiteral("grün") : QStringLiteral("rot"),
            (bits & 0x10) != 0 ? QString() : QStringLiteral(" aus"));
}

QString Sensor(Message message)
{
    const int bits = At(message, 2);
    const int number = ((bits & 0x0F) << 8 | At(message, 1) << 1 | (bits >> 5 & 1)) + 1;
    return QStringLiteral("Rückmelder %1 %2")
        .arg(number)
        .arg((bits & 0x10) != 0 ? QStringLiteral("besetzt") : QStringLiteral("frei"));
}

QString LongAck(Message message)
{
    const int opcode = At(message, 1) | OpcodeBit;
    const int code = At(message, 2);
    if (opcode != OpcodeImmediate)
        return QStringLiteral("Antwort auf %1: %2").arg(Hex(opcode, 2)).arg(code);
    return code == AckAccepted ? QStringLiteral("Quittung: erledigt") : QStringLiteral("Quittung: Code %1").arg(code);
}

QString LocoAddress(Message message)
{
    return QStringLiteral("fragt nach dem Platz der Lok %1").arg(At(message, 1) << 7 | At(message, 2));
}

QString SlotData(Message message)
{
    if (message.size() < 10)
        return QStringLiteral("Daten eines Platzes");
    return QStringLiteral("Daten von Platz %1, Lok %2").arg(At(message, 2)).arg(At(message, 4) | At(message, 9) << 7);
}

// --- The memory transfer. ---

/// D1..D20 with their bit 7.
SliceBytes DataBytes(Message message)
{
    LocoNetMessage copy{};
    std::ranges::copy(message, copy.begin());
    UnpackHighBits(copy);
    return DataOf(copy);
}

int StartIndex(Message message)
{
    return (At(message, 15) >> 4 & 1) << 6 | (At(message, 20) >> 4 & 7) << 3 | (At(message, 25) >> 4 & 7);
}

/// A command to the flash chip, which stands at the beginning of the buffer; empty when it is none.
QString ChipWords(const SliceBytes &data)
{
    const int address = data.at(1) << 16 | data.at(2) << 8 | data.at(3);
    const int page = address / PageSize;
    switch (data.at(0)) {
    case 0xE8:
        return QStringLiteral("liest Flash %1, %2 Bytes").arg(Hex(address, 6)).arg(data.at(19) - ReadCommandLength);
    case 0x53:
        return QStringLiteral("Seite %1 laden").arg(page);
    case 0x60:
        return QStringLiteral("Seite %1 vergleichen").arg(page);
    case 0x83:
        return QStringLiteral("Seite %1 programmieren").arg(page);
    case 0xD7:
        return QStringLiteral("Zustand des Speichers abfragen");
    default:
        return {};
    }
}

QString HandheldRequest(Message message)
{
    const int manner = At(message, 10) >> 4 & 7;
    const int start = StartIndex(message);
    const SliceBytes data = DataBytes(message);
    if (manner == 3)
        return (At(message, 5) & 0x70) != 0 ? QStringLiteral("Handregler rufen oder in den Bedienmodus schicken")
                                            : QStringLiteral("Kennung des Handreglers abfragen");
    if (manner == 2)
        return QStringLiteral("Puffer ab %1 lesen").arg(start);
    if (manner == 0)
        return QStringLiteral("Puffer ab %1 schreiben").arg(start);
    QString chip = start == 0 ? ChipWords(data) : QString();
    if (!chip.isEmpty())
        return chip;
    return QStringLiteral("Puffer ab %1 schreiben, %2 Bytes ausführen").arg(start).arg(data.at(19));
}

QString HandheldAnswer(Message message)
{
    const SliceBytes data = DataBytes(message);
    return QStringLiteral("Handregler: ")
        + QString::fromLatin1(
            QByteArray(reinterpret_cast<const char *>(data.data()), static_cast<qsizetype>(data.size())).toHex(' '))
              .toUpper();
}

bool IsBetween(Message message, int first, int second)
{
    return message.size() == TransferMessageLength && At(message, 3) == first && At(message, 4) == second;
}

QString Immediate(Message message)
{
    if (IsBetween(message, 0x66, 0x33))
        return HandheldRequest(message);
    return IsBetween(message, 0x49, 0x4B) ? QStringLiteral("Anfrage an die Zentrale")
                                          : QStringLiteral("Gleisbefehl oder Anfrage");
}

QString PeerTransfer(Message message)
{
    if (IsBetween(message, 0x66, 0x33))
        return HandheldAnswer(message);
    return IsBetween(message, 0x50, 0x43) ? QStringLiteral("Antwort der Zentrale")
                                          : QStringLiteral("Daten zwischen Geräten");
}

using Wording = std::function<QString(Message)>;

Wording Plain(const char *text)
{
    return [words = QString::fromUtf8(text)](Message) { return words; };
}

const std::map<int, Wording> &Wordings()
{
    static const std::map<int, Wording> wordings{{0x81, Plain("Zentrale ist beschäftigt")},
        {0x82, Plain("Fahrstrom aus")}, {0x83, Plain("Fahrstrom ein")}, {0x85, Plain("Nothalt für alle")},
        {0xA0, Speed}, {0xA1, DirectionAndFunctions},
        {0xA2, [](Message m) -> QString { return MoreFunctions(m, 5); }},
        {0xA3, [](Message m) -> QString { return MoreFunctions(m, 9); }},
        {0xB0, [](Message m) -> QString { return Accessory(QStringLiteral("schaltet Magnetartikel"), m); }},
        {0xB1, Plain("Magnetartikel meldet seine Lage")}, {0xB2, Sensor}, {0xB4, LongAck},
        {0xB5, [](Message m) -> QString { return QStringLiteral("setzt Zustand") + Slot(m); }},
        {0xB6, [](Message m) -> QString { return QStringLiteral("Funktionen der Mehrfachtraktion") + Slot(m); }},
        {0xB8, Plain("trennt Mehrfachtraktion")}, {0xB9, Plain("bildet Mehrfachtraktion")},
        {0xBA,
            [](Message m) -> QString {
                return QStringLiteral("übernimmt Platz %1 nach %2").arg(At(m, 1)).arg(At(m, 2));
            }},
        {0xBB,
            [](Message m) -> QString { return QStringLiteral("fragt nach den Daten von Platz %1").arg(At(m, 1)); }},
        {0xBC,
            [](Message m) -> QString {
                return QStringLiteral("fragt nach Magnetartikel %1").arg(AccessoryAddress(m));
            }},
        {0xBD,
            [](Message m) -> QString { return Accessory(QStringLiteral("schaltet mit Quittung Magnetartikel"), m); }},
        {0xBF, LocoAddress}, {0xD0, Plain("Meldung über Fahrzeug oder Versorgung")}, {0xE5, PeerTransfer},
        {0xE7, SlotData}, {0xED, Immediate},
        {0xEF, [](Message m) -> QString { return QStringLiteral("schreibt ") + SlotData(m); }}};
    return wordings;
}

} // namespace

QString MessageWords(std::span<const quint8> message)
{
    if (message.size() < 2)
        return {};
    const auto found = Wordings().find(At(message, 0));
    const bool longEnough =
        LengthOfOpcode(message[0]) < 0 || std::cmp_equal(message.size(), LengthOfOpcode(message[0]));
    return found != Wordings().end() && longEnough ? found->second(message) : QStringLiteral("unbekannte Meldung");
}

} // namespace hr::handheld
