#include "handheld/backup/dds_file.h"

#include <QFile>

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr qint64 LargestFile = 16'000'000; // twenty times the largest backup

constexpr qsizetype NumberOffset = 1;
constexpr qsizetype HalfOffset = 3;
constexpr qsizetype LokSymbolPicture = 3; // where the pictures begin
constexpr qsizetype HalfPicture = 4;

constexpr qsizetype NameOffset = 3;
constexpr qsizetype LocoSymbolOffset = NameOffset + NameLength;
constexpr qsizetype FktSymbolOffset = LocoSymbolOffset + 1;
constexpr qsizetype FktModusOffset = FktSymbolOffset + FunctionCount;
constexpr qsizetype MultiUniOffset = FktModusOffset + FunctionCount;

int ByteAt(const QByteArray &bytes, qsizetype position)
{
    return static_cast<quint8>(bytes.at(position));
}

/// The kind of a record whose kind byte has been checked.
RecordKind KindIn(const QByteArray &record)
{
    const auto kind = KindOfByte(ByteAt(record, 0));
    Q_ASSERT(kind);
    return *kind;
}

bool IsHalf(RecordKind kind)
{
    return SharesPage(kind) && kind != RecordKind::Loco;
}

qsizetype PictureOffset(RecordKind kind)
{
    return kind == RecordKind::LocoSymbol ? LokSymbolPicture : HalfPicture;
}

int NumberIn(const QByteArray &record)
{
    return IsTableKind(KindIn(record)) ? 0 : ByteAt(record, NumberOffset) * 256 + ByteAt(record, NumberOffset + 1);
}

/// Begins a record: kind byte, and the number where the kind has one.
QByteArray Begin(const RecordId &id)
{
    QByteArray record(1, static_cast<char>(ByteOfKind(id.kind)));
    if (!IsTableKind(id.kind))
        record.append(static_cast<char>(id.number >> 8)).append(static_cast<char>(id.number & 0xFF));
    return record;
}

template <typename Numbers> void AppendBytes(QByteArray &record, const Numbers &numbers)
{
    for (const int number : numbers)
        record.append(static_cast<char>(number));
}

template <typename Numbers> void TakeBytes(const QByteArray &record, qsizetype offset, Numbers &numbers)
{
    for (auto &number : numbers)
        number = static_cast<quint8>(record.at(offset++));
}

void AppendValue(QByteArray &bytes, const LocoRecord &loco)
{
    bytes.append(FitLocoName(loco.name).toLatin1());
    bytes.append(static_cast<char>(loco.locoSymbol));
    AppendBytes(bytes, loco.symbols);
    AppendBytes(bytes, loco.modes);
    bytes.append(static_cast<char>(loco.multiUni));
}

void AppendValue(QByteArray &bytes, const Picture &picture)
{
    AppendBytes(bytes, picture.bytes);
}

template <size_t Size> void AppendValue(QByteArray &bytes, const ByteTable<Size> &table)
{
    AppendBytes(bytes, table);
}

LocoRecord UnpackLoco(const QByteArray &bytes)
{
    LocoRecord loco;
    loco.name = FitLocoName(QString::fromLatin1(bytes.mid(NameOffset, NameLength)));
    loco.locoSymbol = ByteAt(bytes, LocoSymbolOffset);
    TakeBytes(bytes, FktSymbolOffset, loco.symbols);
    TakeBytes(bytes, FktModusOffset, loco.modes);
    loco.multiUni = ByteAt(bytes, MultiUniOffset);
    return loco;
}

Picture UnpackPicture(const DdsRecord &record)
{
    Picture picture = EmptyPicture(SymbolKindOf(record.id.kind));
    TakeBytes(record.bytes, PictureOffset(record.id.kind), picture.bytes);
    return picture;
}

template <typename Table> Table UnpackTable(const DdsRecord &record)
{
    Table table{};
    TakeBytes(record.bytes, 1, table);
    return table;
}

/// A fault inside a record: the offset of the wrong byte and what is wrong with it.
struct InnerFault {
    qsizetype offset;
    QString reason;
};

std::optional<InnerFault> NumberFault(const QByteArray &record)
{
    const RecordKind kind = KindIn(record);
    const KindRow &layout = RowOf(kind);
    const int number = NumberIn(record);
    if (number >= layout.lowest && number <= layout.highest)
        return {};
    const QString text = kind == RecordKind::Loco
        ? QStringLiteral("die Lokadresse %1 liegt nicht zwischen %2 und %3")
        : QStringLiteral("die Symbolnummer %1 liegt nicht zwischen %2 und %3");
    return InnerFault{NumberOffset, text.arg(number).arg(layout.lowest).arg(layout.highest)};
}

std::optional<InnerFault> HalfFault(const QByteArray &record)
{
    const RecordKind kind = KindIn(record);
    if (!IsHalf(kind) || ByteAt(record, HalfOffset) == HalfOf(kind))
        return {};
    return InnerFault{HalfOffset,
        QStringLiteral("die Symbolhälfte %1 passt nicht zur Satzart %2")
            .arg(ByteAt(record, HalfOffset))
            .arg(ByteOfKind(kind))};
}

/// The last bytes of a loco record are all 0 or 1.
std::optional<InnerFault> FlagFault(const QByteArray &record)
{
    if (KindIn(record) != RecordKind::Loco)
        return {};
    for (qsizetype offset = FktModusOffset; offset <= MultiUniOffset; ++offset) {
        if (ByteAt(record, offset) > 1)
            return InnerFault{offset,
                QStringLiteral("der Wert %1 ist hier nicht möglich (nur 0 oder 1)").arg(ByteAt(record, offset))};
    }
    return {};
}

std::optional<InnerFault> RecordFault(const QByteArray &record)
{
    for (const auto &check : {NumberFault, HalfFault, FlagFault}) {
        if (auto fault = check(record))
            return fault;
    }
    return {};
}

/// The fault of the record that begins at a position, or nothing when it is sound.
std::optional<InnerFault> FaultAt(const QByteArray &file, qsizetype position)
{
    const auto kind = KindOfByte(ByteAt(file, position));
    if (!kind || RowOf(*kind).backupBytes == 0)
        return InnerFault{0, QStringLiteral("die Satzart %1 gibt es nicht").arg(ByteAt(file, position))};
    const qsizetype left = file.size() - position;
    const int length = RowOf(*kind).backupBytes;
    if (left < length)
        return InnerFault{
            left, QStringLiteral("die Datei endet mitten im Datensatz (%1 von %2 Bytes)").arg(left).arg(length)};
    return RecordFault(file.mid(position, length));
}

} // namespace

DdsContent ReadDds(const QByteArray &file)
{
    DdsContent content;
    qsizetype position = 0;
    while (position < file.size()) {
        if (const auto fault = FaultAt(file, position)) {
            const int number = static_cast<int>(content.records.size()) + 1;
            content.fault = DdsFault{number, position + fault->offset, fault->reason};
            return content;
        }
        const QByteArray bytes = file.mid(position, RowOf(KindIn(file.mid(position, 1))).backupBytes);
        content.records.push_back({{KindIn(bytes), NumberIn(bytes)}, position, bytes});
        position += bytes.size();
    }
    return content;
}

std::optional<QByteArray> LoadDds(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LargestFile)
        return {};
    const QByteArray bytes = file.read(LargestFile);
    return file.error() == QFileDevice::NoError ? std::optional(bytes) : std::nullopt;
}

QString FaultText(const DdsFault &fault)
{
    return QStringLiteral("Datensatz %1, Byteposition %2: %3")
        .arg(fault.recordNumber)
        .arg(fault.position)
        .arg(fault.reason);
}

QByteArray PackRecord(const RecordId &id, const RecordValue &value)
{
    QByteArray bytes = Begin(id);
    if (IsHalf(id.kind))
        bytes.append(static_cast<char>(HalfOf(id.kind)));
    std::visit([&bytes](const auto &content) { AppendValue(bytes, content); }, value);
    Q_ASSERT(bytes.size() == RowOf(id.kind).backupBytes);
    return bytes;
}

RecordValue UnpackRecord(const DdsRecord &record)
{
    switch (record.id.kind) {
    case RecordKind::Loco:
        return UnpackLoco(record.bytes);
    case RecordKind::RouteTable:
        return UnpackTable<Routes>(record);
    case RecordKind::AssignmentTable:
        return UnpackTable<Assignment>(record);
    case RecordKind::PlaceTable:
        return UnpackTable<AccessoryList>(record);
    default:
        return UnpackPicture(record);
    }
}

} // namespace hr::handheld
