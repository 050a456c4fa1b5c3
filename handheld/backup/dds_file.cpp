#include "handheld/backup/dds_file.h"

#include "handheld/block_tables.h"
#include "handheld/flash_map.h"
#include "handheld/transfer.h"

#include <QFile>

namespace
{

constexpr qint64 LargestFile = 16'000'000; // twenty times the largest backup

/// Length with the kind byte, lowest and highest number (the blocks have none), by kind.
struct KindLayout {
    int length;
    int lowest;
    int highest;
};
constexpr std::array<KindLayout, LastKind + 1> Layouts{KindLayout{0, 0, 0}, KindLayout{76, FirstLoco, LastLoco},
    KindLayout{102, 0, LokSymbolCount - 1}, KindLayout{39, 0, PairCount - 1}, KindLayout{39, 0, PairCount - 1},
    KindLayout{321, 0, 0}, KindLayout{39, 0, PairCount - 1}, KindLayout{39, 0, PairCount - 1}, KindLayout{2049, 0, 0},
    KindLayout{257, 0, 0}};

constexpr qsizetype NumberOffset = 1;
constexpr qsizetype HalfOffset = 3;
constexpr qsizetype LokSymbolPicture = 3; // where the pictures begin
constexpr qsizetype HalfPicture = 4;

constexpr qsizetype NameOffset = 3;
constexpr qsizetype LocoSymbolOffset = NameOffset + NameLength;
constexpr qsizetype FktSymbolOffset = LocoSymbolOffset + 1;
constexpr qsizetype FktModusOffset = FktSymbolOffset + FunctionCount;
constexpr qsizetype MultiUniOffset = FktModusOffset + FunctionCount;

const KindLayout &LayoutOf(int kind)
{
    return Layouts.at(static_cast<size_t>(kind));
}

int ByteAt(const QByteArray &bytes, qsizetype position)
{
    return static_cast<quint8>(bytes.at(position));
}

bool IsBlock(int kind)
{
    return kind == KindRoutes || kind == KindMagZuordnung || kind == KindMagListe;
}

bool IsHalf(int kind)
{
    return kind > KindLokSymbol && !IsBlock(kind);
}

qsizetype PictureOffset(int kind)
{
    return kind == KindLokSymbol ? LokSymbolPicture : HalfPicture;
}

int NumberIn(const QByteArray &record)
{
    return IsBlock(ByteAt(record, 0)) ? 0 : ByteAt(record, NumberOffset) * 256 + ByteAt(record, NumberOffset + 1);
}

/// Begins a record: kind byte, and the number where the kind has one.
QByteArray Begin(const RecordId &id)
{
    QByteArray record(1, static_cast<char>(id.kind));
    if (!IsBlock(id.kind))
        record.append(static_cast<char>(id.number >> 8)).append(static_cast<char>(id.number & 0xFF));
    return record;
}

template <typename Numbers> void AppendBytes(QByteArray &record, const Numbers &numbers, size_t first, size_t count)
{
    for (size_t i = first; i < first + count; ++i)
        record.append(static_cast<char>(numbers.at(i)));
}

template <typename Numbers>
void TakeBytes(const QByteArray &record, qsizetype offset, Numbers &numbers, size_t first, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        numbers.at(first + i) = ByteAt(record, offset + static_cast<qsizetype>(i));
}

/// A fault inside a record: the offset of the wrong byte and what is wrong with it.
struct InnerFault {
    qsizetype offset;
    QString reason;
};

std::optional<InnerFault> NumberFault(const QByteArray &record)
{
    const int kind = ByteAt(record, 0);
    const KindLayout &layout = LayoutOf(kind);
    const int number = NumberIn(record);
    if (number >= layout.lowest && number <= layout.highest)
        return {};
    const QString text = kind == KindLoco ? QStringLiteral("die Lokadresse %1 liegt nicht zwischen %2 und %3")
                                          : QStringLiteral("die Symbolnummer %1 liegt nicht zwischen %2 und %3");
    return InnerFault{NumberOffset, text.arg(number).arg(layout.lowest).arg(layout.highest)};
}

std::optional<InnerFault> HalfFault(const QByteArray &record)
{
    const int kind = ByteAt(record, 0);
    if (!IsHalf(kind) || ByteAt(record, HalfOffset) == HalfOf(kind))
        return {};
    return InnerFault{HalfOffset,
        QStringLiteral("die Symbolhälfte %1 passt nicht zur Satzart %2").arg(ByteAt(record, HalfOffset)).arg(kind)};
}

/// The last bytes of a loco record are all 0 or 1.
std::optional<InnerFault> FlagFault(const QByteArray &record)
{
    if (ByteAt(record, 0) != KindLoco)
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
    const int kind = ByteAt(file, position);
    if (kind < KindLoco || kind > LastKind)
        return InnerFault{0, QStringLiteral("die Satzart %1 gibt es nicht").arg(kind)};
    const qsizetype left = file.size() - position;
    const int length = LayoutOf(kind).length;
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
        const int kind = ByteAt(file, position);
        const QByteArray bytes = file.mid(position, LayoutOf(kind).length);
        content.records.push_back({{kind, NumberIn(bytes)}, position, bytes});
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

QByteArray PackLoco(int address, const LocoRecord &record)
{
    QByteArray bytes = Begin({KindLoco, address});
    bytes.append(FitLocoName(record.name).toLatin1());
    bytes.append(static_cast<char>(record.locoSymbol));
    AppendBytes(bytes, record.symbols, 0, FunctionCount);
    AppendBytes(bytes, record.modes, 0, FunctionCount);
    bytes.append(static_cast<char>(record.multiUni));
    return bytes;
}

LocoRecord UnpackLoco(const DdsRecord &record)
{
    LocoRecord loco;
    loco.name = FitLocoName(QString::fromLatin1(record.bytes.mid(NameOffset, NameLength)));
    loco.locoSymbol = ByteAt(record.bytes, LocoSymbolOffset);
    TakeBytes(record.bytes, FktSymbolOffset, loco.symbols, 0, FunctionCount);
    TakeBytes(record.bytes, FktModusOffset, loco.modes, 0, FunctionCount);
    loco.multiUni = ByteAt(record.bytes, MultiUniOffset);
    return loco;
}

QByteArray PackSymbol(const RecordId &id)
{
    QByteArray bytes = Begin(id);
    if (IsHalf(id.kind))
        bytes.append(static_cast<char>(HalfOf(id.kind)));
    AppendBytes(bytes, SpiBuf, WritePosition, static_cast<size_t>(LayoutOf(id.kind).length - bytes.size()));
    return bytes;
}

void UnpackSymbol(const DdsRecord &record)
{
    const qsizetype offset = PictureOffset(record.id.kind);
    TakeBytes(record.bytes, offset, SpiBuf, WritePosition, static_cast<size_t>(record.bytes.size() - offset));
}

QByteArray PackBlock(int kind)
{
    QByteArray bytes = Begin({kind, 0});
    const auto count = static_cast<size_t>(LayoutOf(kind).length - 1);
    if (kind == KindRoutes)
        AppendBytes(bytes, FsDaten, 0, count);
    else if (kind == KindMagZuordnung)
        AppendBytes(bytes, MagZuordDaten, 1, count);
    else
        AppendBytes(bytes, MagListeDaten, 0, count);
    return bytes;
}

void UnpackBlock(const DdsRecord &record)
{
    const auto count = static_cast<size_t>(record.bytes.size() - 1);
    if (record.id.kind == KindRoutes)
        TakeBytes(record.bytes, 1, FsDaten, 0, count);
    else if (record.id.kind == KindMagZuordnung)
        TakeBytes(record.bytes, 1, MagZuordDaten, 1, count);
    else
        TakeBytes(record.bytes, 1, MagListeDaten, 0, count);
}

SymbolKind SymbolKindOf(int kind)
{
    if (kind == KindLokSymbol)
        return SymbolKind::Loco;
    return kind < KindRoutes ? SymbolKind::Function : SymbolKind::Accessory;
}

int HalfOf(int kind)
{
    if (!IsHalf(kind))
        return 0;
    return kind - (kind < KindRoutes ? KindFktSymbolOn : KindMagSymbolGreen);
}

int RecordKind(SymbolKind symbol, int half)
{
    switch (symbol) {
    case SymbolKind::Loco:
        return KindLokSymbol;
    case SymbolKind::Function:
        return KindFktSymbolOn + half;
    case SymbolKind::Accessory:
        return KindMagSymbolGreen + half;
    }
    Q_UNREACHABLE();
}
