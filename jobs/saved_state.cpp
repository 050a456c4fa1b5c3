#include "jobs/saved_state.h"

#include "jobs/checked_lines.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>

namespace hr::jobs
{

namespace
{

const auto FormatWord = QStringLiteral("handregler-vorher");
const auto FirstLine = QStringLiteral("handregler-vorher 1");
const auto BeforeWord = QStringLiteral("war");
const auto WantedWord = QStringLiteral("soll");
const auto EndWord = QStringLiteral("ende");

/// The words of the head and where their texts live.
std::array<std::pair<QString, QString SavedState::*>, 5> HeadWords()
{
    return {std::pair(QStringLiteral("handregler"), &SavedState::handheld),
        {QStringLiteral("zeit"), &SavedState::time}, {QStringLiteral("auftrag"), &SavedState::command},
        {QStringLiteral("fortschritt"), &SavedState::journal}, {QStringLiteral("ersetzt"), &SavedState::replaces}};
}

template <typename Bytes> QByteArray AsByteArray(const Bytes &bytes, size_t count)
{
    QByteArray array;
    for (size_t i = 0; i < count; ++i)
        array.append(static_cast<char>(bytes.data()[i]));
    return array;
}

template <typename Bytes> void TakeInto(Bytes &bytes, const QByteArray &array)
{
    const auto count = std::min(static_cast<qsizetype>(bytes.size()), array.size());
    for (qsizetype i = 0; i < count; ++i)
        bytes.data()[i] = static_cast<quint8>(array.at(i));
}

template <typename Table> Table TableOf(const QByteArray &bytes)
{
    Table table{};
    std::copy_n(reinterpret_cast<const quint8 *>(bytes.constData()),
        std::min(static_cast<size_t>(bytes.size()), Table::size()), table.begin());
    return table;
}

bool TakeBytes(std::map<RecordId, QByteArray> &records, const QString &rest)
{
    const auto id = IdOf(rest.section(u' ', 0, 1));
    const QByteArray bytes = QByteArray::fromHex(rest.section(u' ', 2).toLatin1());
    if (!id || bytes.size() != RowOf(id->kind).flashBytes)
        return false;
    records.insert_or_assign(*id, bytes);
    return true;
}

/// False for a line that is none of such a file.
bool TakeLine(SavedState &state, const QString &line)
{
    const QString word = line.section(u' ', 0, 0);
    const QString rest = line.section(u' ', 1);
    if (word == BeforeWord || word == WantedWord)
        return TakeBytes(word == BeforeWord ? state.before : state.wanted, rest);
    for (const auto &[name, member] : HeadWords()) {
        if (word == name) {
            state.*member = rest;
            return true;
        }
    }
    return false;
}

QString CountText(const SavedState &state)
{
    return EndWord + u' ' + QString::number(state.before.size() + state.wanted.size());
}

} // namespace

SavedRecord SavedRecordOf(const RecordId &id, const RecordValue &value, const LocoBytes &beneath)
{
    if (const auto *loco = std::get_if<LocoRecord>(&value))
        return {id, AsByteArray(EncodeLoco(*loco, beneath), LocoRecordSize)};
    if (const auto *picture = std::get_if<Picture>(&value))
        return {id, AsByteArray(picture->bytes, static_cast<size_t>(FlashBytesOf(picture->geometry)))};
    if (const auto *routes = std::get_if<Routes>(&value))
        return {id, AsByteArray(*routes, routes->size())};
    if (const auto *places = std::get_if<AccessoryList>(&value))
        return {id, AsByteArray(*places, places->size())};
    const auto &assignment = std::get<Assignment>(value);
    return {id, AsByteArray(assignment, assignment.size())};
}

RecordValue ValueOf(const SavedRecord &record)
{
    switch (record.id.kind) {
    case RecordKind::Loco:
        return DecodeLoco(LocoBytesOf(record).value_or(LocoBytes()));
    case RecordKind::RouteTable:
        return TableOf<Routes>(record.bytes);
    case RecordKind::PlaceTable:
        return TableOf<AccessoryList>(record.bytes);
    case RecordKind::AssignmentTable:
        return TableOf<Assignment>(record.bytes);
    case RecordKind::StartImage: {
        Picture picture = EmptyStartPicture();
        TakeInto(picture.bytes, record.bytes);
        return picture;
    }
    default:
        break;
    }
    Picture picture = EmptyPicture(SymbolKindOf(record.id.kind));
    TakeInto(picture.bytes, record.bytes);
    return picture;
}

std::optional<LocoBytes> LocoBytesOf(const SavedRecord &record)
{
    if (record.id.kind != RecordKind::Loco)
        return {};
    LocoBytes bytes{};
    TakeInto(bytes, record.bytes);
    return bytes;
}

QByteArray SavedStateFile(const SavedState &state)
{
    QByteArray file = CheckedLine(FirstLine);
    for (const auto &[word, member] : HeadWords()) {
        if (!(state.*member).isEmpty())
            file += CheckedLine(word + u' ' + (state.*member).simplified());
    }
    for (const auto &[word, records] : {std::pair(BeforeWord, &state.before), {WantedWord, &state.wanted}}) {
        for (const auto &[id, bytes] : *records)
            file += CheckedLine(word + u' ' + IdText(id) + u' ' + QString::fromLatin1(bytes.toHex()));
    }
    return file + CheckedLine(CountText(state));
}

ReadState ReadSavedState(const QByteArray &file)
{
    const CheckedLines lines = ReadCheckedLines(file);
    ReadState read;
    read.foreign = !lines.texts.isEmpty() && lines.texts.constFirst() != FirstLine
        && lines.texts.constFirst().startsWith(FormatWord);
    if (lines.texts.isEmpty() || read.foreign)
        return read;
    bool understood = true;
    for (const QString &line : lines.texts.mid(1)) {
        if (!line.startsWith(EndWord + u' '))
            understood = TakeLine(read.state, line) && understood;
    }
    read.sound = understood && !lines.spoilt && lines.texts.constFirst() == FirstLine
        && lines.texts.constLast() == CountText(read.state);
    return read;
}

QString FileFault(bool foreign)
{
    return foreign ? QStringLiteral("stammt von einer anderen Version dieses Programms")
                   : QStringLiteral("ist beschädigt");
}

QString IdText(const RecordId &id)
{
    return QString::number(ByteOfKind(id.kind)) + u' ' + QString::number(id.number);
}

std::optional<RecordId> IdOf(const QString &text)
{
    bool kindSound = false;
    bool numberSound = false;
    const auto kind = KindOfByte(text.section(u' ', 0, 0).toInt(&kindSound));
    const int number = text.section(u' ', 1).toInt(&numberSound);
    if (!kindSound || !numberSound || !kind || number < RowOf(*kind).lowest || number > RowOf(*kind).highest)
        return {};
    return RecordId{*kind, number};
}

Since SinceThen(const SavedState &state, const SavedRecord &now)
{
    const QByteArray &before = state.before.at(now.id);
    if (now.bytes == before)
        return Since::AsBefore;
    const auto found = state.wanted.find(now.id);
    const QByteArray &wanted = found != state.wanted.end() ? found->second : before;
    if (now.bytes == wanted)
        return Since::AsWanted;
    for (qsizetype i = 0; i < now.bytes.size(); ++i) {
        const char byte = now.bytes.at(i);
        if (byte != before.at(i) && byte != wanted.at(i) && byte != '\xFF')
            return Since::Edited;
    }
    return Since::Destroyed;
}

QString ShownTime(const SavedState &state)
{
    return QDateTime::fromString(state.time, QStringLiteral("yyyy-MM-dd HH:mm:ss"))
        .toString(QStringLiteral("dd.MM.yyyy HH:mm"));
}

} // namespace hr::jobs
