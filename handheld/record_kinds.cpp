#include "handheld/record_kinds.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

template <typename Value> Result<RecordValue> AsRecord(const Result<Value> &read)
{
    return {read.value, read.outcome};
}

using Rows = std::array<KindRow, AllKinds.size()>;

KindRow LocoRow()
{
    return {.numbered = true,
        .lowest = FirstLoco,
        .highest = LastLoco,
        .flashBytes = LocoRecordSize,
        .backupBytes = 76,
        .readMessages = 5,
        .rowMessages = 3.7,
        .writeMessages = 6,
        .name = QStringLiteral("Lok"),
        .plural = QStringLiteral("Lokdatensätze"),
        .caption = QStringLiteral("Lokdatensätze"),
        .progress = QStringLiteral("Lok-Daten: "),
        .jsonKey = QStringLiteral("lok"),
        .selectionKey = QStringLiteral("LokDaten"),
        .option = QStringLiteral("loks")};
}

KindRow LocoSymbolRow()
{
    return {.numbered = true,
        .highest = LokSymbolCount - 1,
        .symbol = SymbolKind::Loco,
        .flashBytes = FlashBytesOf(LokSymbolGeometry),
        .backupBytes = 102,
        .readMessages = 7,
        .rowMessages = 6,
        .writeMessages = 7,
        .name = QStringLiteral("Loksymbol"),
        .plural = QStringLiteral("Loksymbole"),
        .caption = QStringLiteral("Loksymbole"),
        .progress = QStringLiteral("Lok.Symbol: "),
        .jsonKey = QStringLiteral("loksymbol"),
        .selectionKey = QStringLiteral("LokSymbole"),
        .allKey = QStringLiteral("AlleLokSym"),
        .option = QStringLiteral("loksymbole"),
        .word = QStringLiteral("lok")};
}

/// What both halves of the function and accessory symbols have in common.
KindRow PairRow(SymbolKind symbol, int half)
{
    return {.numbered = true,
        .highest = PairCount - 1,
        .symbol = symbol,
        .half = half,
        .flashBytes = FlashBytesOf(HalfSymbolGeometry),
        .backupBytes = 39,
        .readMessages = 3,
        .rowMessages = 1.85,
        .writeMessages = 4};
}

KindRow FunctionRow(int half)
{
    const bool on = half == HalfOn;
    KindRow row = PairRow(SymbolKind::Function, half);
    row.name = QStringLiteral("Funktionssymbol");
    row.halfName = on ? QStringLiteral("ON") : QStringLiteral("OFF");
    row.caption = QStringLiteral("Funktionssymbole");
    row.plural = row.caption + u' ' + row.halfName;
    row.progress = QStringLiteral("Fkt.Symbol: ");
    row.jsonKey = on ? QStringLiteral("funktionssymbol_ein") : QStringLiteral("funktionssymbol_aus");
    row.selectionKey = QStringLiteral("LokFktSymbole");
    row.allKey = QStringLiteral("AlleFktSym");
    row.option = QStringLiteral("funktionssymbole");
    row.word = QStringLiteral("funktion");
    row.halfWord = on ? QStringLiteral("ein") : QStringLiteral("aus");
    return row;
}

KindRow AccessoryRow(int half)
{
    const bool green = half == HalfOn;
    KindRow row = PairRow(SymbolKind::Accessory, half);
    row.name = QStringLiteral("Mag.Art. Symbol");
    row.halfName = green ? QStringLiteral("Grün") : QStringLiteral("Rot");
    row.caption = QStringLiteral("Mag.Art. Symbole");
    row.plural = row.caption + u' ' + row.halfName;
    row.progress = QStringLiteral("Mag.Symbol: ");
    row.jsonKey = green ? QStringLiteral("magsymbol_gruen") : QStringLiteral("magsymbol_rot");
    row.selectionKey = QStringLiteral("MagSymbole");
    row.allKey = QStringLiteral("AlleMagSym");
    row.option = QStringLiteral("magsymbole");
    row.word = QStringLiteral("magnet");
    row.halfWord = green ? QStringLiteral("gruen") : QStringLiteral("rot");
    return row;
}

struct TableTexts {
    int entries;
    QString entryName;
    QStringList fields;
    QString name;
    QString progress;
    QString key; // of JSON and terminal
    QString selectionKey;
};

KindRow TableRow(int flashBytes, int readMessages, int writeMessages, const TableTexts &texts)
{
    return {.flashBytes = flashBytes,
        .backupBytes = flashBytes + 1,
        .readMessages = readMessages,
        .rowMessages = static_cast<double>(readMessages),
        .writeMessages = writeMessages,
        .entries = texts.entries,
        .entryName = texts.entryName,
        .fields = texts.fields,
        .name = texts.name,
        .plural = texts.name,
        .caption = texts.name,
        .progress = texts.progress,
        .jsonKey = texts.key,
        .selectionKey = texts.selectionKey,
        .option = texts.key};
}

KindRow StartImageRow()
{
    return {.flashBytes = FlashBytesOf(StartImageGeometry),
        .readMessages = 22,
        .rowMessages = 22,
        .writeMessages = 19,
        .name = QStringLiteral("Startbild"),
        .plural = QStringLiteral("Startbild"),
        .caption = QStringLiteral("Startbild"),
        .progress = QStringLiteral("Startbild"),
        .jsonKey = QStringLiteral("startbild")};
}

/// In the order of AllKinds.
Rows Table()
{
    const TableTexts routes{RouteCount, QStringLiteral("Fahrstraße"),
        {QStringLiteral("Rückmelder"), QStringLiteral("Auslösung")}, QStringLiteral("Fahrstraßen"),
        QStringLiteral("Fahrstraßen"), QStringLiteral("fahrstrassen"), QStringLiteral("FSdaten")};
    const TableTexts assignment{LastAccessoryAddress, QStringLiteral("Adresse"), {QStringLiteral("Symbol")},
        QStringLiteral("Mag.Art. Symbolzuordnung"), QStringLiteral("Mag.Art.Symbolzuordnung"),
        QStringLiteral("zuordnung"), QStringLiteral("MagSymZuord")};
    const TableTexts places{PlaceCount, QStringLiteral("Platz"),
        {QStringLiteral("Adresse"), QStringLiteral("Bezeichnung"), QStringLiteral("Symbol")},
        QStringLiteral("Mag.Art. Liste"), QStringLiteral("Mag.Art.Listendaten"), QStringLiteral("magliste"),
        QStringLiteral("MagListe")};
    return {LocoRow(), LocoSymbolRow(), FunctionRow(HalfOn), FunctionRow(HalfOff),
        TableRow(Routes::size(), 24, 21, routes), AccessoryRow(HalfOn), AccessoryRow(HalfOff),
        TableRow(Assignment::size(), 160, 139, assignment), TableRow(AccessoryList::size(), 20, 21, places),
        StartImageRow()};
}

constexpr int SymbolsOfPage = 8;

/// The loco as the handheld would give it back.
LocoRecord AsRead(const LocoRecord &loco)
{
    return IsEmptyName(loco.name) ? LocoRecord{.name = EmptyName()} : DecodeLoco(EncodeLoco(loco, {}));
}

bool SamePicture(const Picture &one, const Picture &other)
{
    const int count = FlashBytesOf(one.geometry);
    return one.geometry == other.geometry
        && std::equal(one.bytes.begin(), one.bytes.begin() + count, other.bytes.begin());
}

} // namespace

std::optional<RecordKind> KindOfByte(int byte)
{
    const auto found = std::ranges::find(AllKinds, byte, ByteOfKind);
    return found != AllKinds.end() ? std::optional(*found) : std::nullopt;
}

const KindRow &RowOf(RecordKind kind)
{
    static const Rows table = Table();
    return table.at(static_cast<size_t>(std::ranges::find(AllKinds, kind) - AllKinds.begin()));
}

QString RecordName(const RecordId &id)
{
    const KindRow &row = RowOf(id.kind);
    if (!row.numbered)
        return row.name;
    const QString name = row.name + u' ' + QString::number(id.number);
    return row.halfName.isEmpty() ? name : QString(name + u' ' + row.halfName);
}

QString ProgressText(const RecordId &id)
{
    const KindRow &row = RowOf(id.kind);
    return row.numbered ? row.progress + QString::number(id.number) : row.progress;
}

bool IsTableKind(RecordKind kind)
{
    return !RowOf(kind).numbered;
}

RecordKind TableKindOf(const RecordValue &table)
{
    if (std::holds_alternative<Routes>(table))
        return RecordKind::RouteTable;
    Q_ASSERT(std::holds_alternative<Assignment>(table) || std::holds_alternative<AccessoryList>(table));
    return std::holds_alternative<Assignment>(table) ? RecordKind::AssignmentTable : RecordKind::PlaceTable;
}

SymbolKind SymbolKindOf(RecordKind kind)
{
    const std::optional<SymbolKind> symbol = RowOf(kind).symbol;
    Q_ASSERT(symbol);
    return *symbol;
}

int HalfOf(RecordKind kind)
{
    return RowOf(kind).half;
}

RecordKind RecordKindOf(SymbolKind symbol, int half)
{
    const auto found = std::ranges::find_if(AllKinds, [=](RecordKind kind) {
        const KindRow &row = RowOf(kind);
        return row.symbol == symbol && (row.half == half || symbol == SymbolKind::Loco);
    });
    Q_ASSERT(found != AllKinds.end());
    return *found;
}

Result<RecordValue> ReadRecord(
    SpiImage &image, const RecordId &id, const std::function<void(int)> &onGroup, const Patience &patience)
{
    switch (id.kind) {
    case RecordKind::Loco:
        return AsRecord(ReadLoco(image, id.number, patience));
    case RecordKind::RouteTable:
        return AsRecord(ReadRouteTable(image, patience));
    case RecordKind::AssignmentTable:
        return AsRecord(ReadAssignment(image, onGroup, patience));
    case RecordKind::PlaceTable:
        return AsRecord(ReadAccessoryList(image, patience));
    case RecordKind::StartImage:
        return AsRecord(ReadStartPicture(image, patience));
    default:
        return AsRecord(ReadPicture(image, SymbolKindOf(id.kind), id.number, HalfOf(id.kind), patience));
    }
}

PageResult WriteRecord(SpiImage &image, const RecordId &id, const RecordValue &value, const Patience &patience)
{
    switch (id.kind) {
    case RecordKind::Loco:
        return WriteLoco(image, id.number, std::get<LocoRecord>(value), patience);
    case RecordKind::RouteTable:
        return WriteRouteTable(image, std::get<Routes>(value), patience);
    case RecordKind::AssignmentTable:
        return WriteAssignment(image, std::get<Assignment>(value), patience);
    case RecordKind::PlaceTable:
        return WriteAccessoryList(image, std::get<AccessoryList>(value), patience);
    case RecordKind::StartImage:
        return WriteStartPicture(image, std::get<Picture>(value), patience);
    default:
        return WritePicture(
            image, SymbolKindOf(id.kind), id.number, HalfOf(id.kind), std::get<Picture>(value), patience);
    }
}

bool SharesPage(RecordKind kind)
{
    return RowOf(kind).numbered && kind != RecordKind::LocoSymbol;
}

int FirstByteOf(const RecordId &id)
{
    int address = 0;
    switch (id.kind) {
    case RecordKind::Loco:
        address = LocoRecordAddress(id.number);
        break;
    case RecordKind::RouteTable:
        address = RoutesAddress;
        break;
    case RecordKind::AssignmentTable:
        address = MagZuordAddress;
        break;
    case RecordKind::PlaceTable:
        address = MagListeAddress;
        break;
    case RecordKind::StartImage:
        address = StartImageAddress;
        break;
    default:
        address = PictureAddress(SymbolKindOf(id.kind), id.number, HalfOf(id.kind));
    }
    return address;
}

int PageAddressOf(const RecordId &id)
{
    const int address = FirstByteOf(id);
    return address - PageOffset(address);
}

std::vector<RecordId> RecordsOfPage(const RecordId &id)
{
    if (!SharesPage(id.kind))
        return {id};
    std::vector<RecordId> records;
    const KindRow &row = RowOf(id.kind);
    const int first = id.number / SymbolsOfPage * SymbolsOfPage; // eight locos a page too
    for (int n = std::max(first, row.lowest); n <= std::min(first + SymbolsOfPage - 1, row.highest); ++n) {
        if (id.kind == RecordKind::Loco) {
            records.push_back({RecordKind::Loco, n});
            continue;
        }
        for (int half = 0; half < 2; ++half)
            records.push_back({RecordKindOf(SymbolKindOf(id.kind), half), n});
    }
    return records;
}

PagePart PartOf(const RecordId &id, const RecordValue &value, const LocoBytes &beneath)
{
    if (id.kind == RecordKind::Loco)
        return LocoPart(id.number, std::get<LocoRecord>(value), beneath);
    return PicturePart(SymbolKindOf(id.kind), id.number, HalfOf(id.kind), std::get<Picture>(value));
}

bool SameContent(const RecordValue &one, const RecordValue &other)
{
    if (one.index() != other.index())
        return false;
    if (const auto *loco = std::get_if<LocoRecord>(&one))
        return AsRead(*loco) == AsRead(std::get<LocoRecord>(other));
    if (const auto *picture = std::get_if<Picture>(&one))
        return SamePicture(*picture, std::get<Picture>(other));
    return one == other;
}

} // namespace hr::handheld
