#include "handheld/record_kinds.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace
{

template <typename Value> Result<RecordValue> AsRecord(const Result<Value> &read)
{
    return {read.value, read.outcome};
}

using Rows = std::array<KindRow, AllKinds.size()>;

/// In the order of AllKinds.
Rows Table()
{
    const auto pair = [](SymbolKind symbol, int half, const QString &plural, const QString &progress) {
        return KindRow{true, 0, PairCount - 1, symbol, half, plural, progress, 39, 3, 4};
    };
    const auto functions = QStringLiteral("Fkt.Symbol: ");
    const auto accessories = QStringLiteral("Mag.Symbol: ");
    return {KindRow{true, FirstLoco, LastLoco, {}, 0, QStringLiteral("Lokdatensätze"), QStringLiteral("Lok-Daten: "),
                76, 5, 6},
        KindRow{true, 0, LokSymbolCount - 1, SymbolKind::Loco, 0, QStringLiteral("Loksymbole"),
            QStringLiteral("Lok.Symbol: "), 102, 7, 7},
        pair(SymbolKind::Function, HalfOn, QStringLiteral("Funktionssymbole ON"), functions),
        pair(SymbolKind::Function, HalfOff, QStringLiteral("Funktionssymbole OFF"), functions),
        KindRow{false, 0, 0, {}, 0, QStringLiteral("Fahrstraßen"), QStringLiteral("Fahrstraßen"), 321, 24, 21},
        pair(SymbolKind::Accessory, HalfOn, QStringLiteral("Mag.Art. Symbole Grün"), accessories),
        pair(SymbolKind::Accessory, HalfOff, QStringLiteral("Mag.Art. Symbole Rot"), accessories),
        KindRow{false, 0, 0, {}, 0, QStringLiteral("Mag.Art. Symbolzuordnung"),
            QStringLiteral("Mag.Art.Symbolzuordnung"), 2049, 160, 139},
        KindRow{false, 0, 0, {}, 0, QStringLiteral("Mag.Art. Liste"), QStringLiteral("Mag.Art.Listendaten"), 257, 20,
            21}};
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

QString ProgressText(const RecordId &id)
{
    const KindRow &row = RowOf(id.kind);
    return row.numbered ? row.progress + QString::number(id.number) : row.progress;
}

bool IsTableKind(RecordKind kind)
{
    return !RowOf(kind).numbered;
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
    default:
        return WritePicture(
            image, SymbolKindOf(id.kind), id.number, HalfOf(id.kind), std::get<Picture>(value), patience);
    }
}

bool SharesPage(RecordKind kind)
{
    return RowOf(kind).numbered && kind != RecordKind::LocoSymbol;
}

int PageAddressOf(const RecordId &id)
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
    default:
        address = PictureAddress(SymbolKindOf(id.kind), id.number, HalfOf(id.kind));
    }
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
