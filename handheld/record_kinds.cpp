#include "handheld/record_kinds.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace
{

template <typename Value> Result<RecordValue> AsRecord(const Result<Value> &read)
{
    return {read.value, read.outcome};
}

std::array<RecordKind, LastKind + 1> Table()
{
    const RecordKind function{true, 0, PairCount - 1, {}, QStringLiteral("Fkt.Symbol: "), 39, 3, 4};
    const RecordKind accessory{true, 0, PairCount - 1, {}, QStringLiteral("Mag.Symbol: "), 39, 3, 4};
    std::array<RecordKind, LastKind + 1> table{RecordKind{},
        RecordKind{
            true, FirstLoco, LastLoco, QStringLiteral("Lokdatensätze"), QStringLiteral("Lok-Daten: "), 76, 5, 6},
        RecordKind{
            true, 0, LokSymbolCount - 1, QStringLiteral("Loksymbole"), QStringLiteral("Lok.Symbol: "), 102, 7, 7},
        function, function,
        RecordKind{false, 0, 0, QStringLiteral("Fahrstraßen"), QStringLiteral("Fahrstraßen"), 321, 24, 21}, accessory,
        accessory,
        RecordKind{false, 0, 0, QStringLiteral("Mag.Art. Symbolzuordnung"), QStringLiteral("Mag.Art.Symbolzuordnung"),
            2049, 160, 139},
        RecordKind{
            false, 0, 0, QStringLiteral("Mag.Art. Liste"), QStringLiteral("Mag.Art.Listendaten"), 257, 20, 21}};
    table.at(KindFktSymbolOn).plural = QStringLiteral("Funktionssymbole ON");
    table.at(KindFktSymbolOn + 1).plural = QStringLiteral("Funktionssymbole OFF");
    table.at(KindMagSymbolGreen).plural = QStringLiteral("Mag.Art. Symbole Grün");
    table.at(KindMagSymbolGreen + 1).plural = QStringLiteral("Mag.Art. Symbole Rot");
    return table;
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

const RecordKind &KindOf(int kind)
{
    static const std::array<RecordKind, LastKind + 1> table = Table();
    Q_ASSERT(kind >= KindLoco);
    return table.at(static_cast<size_t>(kind));
}

QString ProgressText(const RecordId &id)
{
    const RecordKind &kind = KindOf(id.kind);
    return kind.numbered ? kind.progress + QString::number(id.number) : kind.progress;
}

bool IsTableKind(int kind)
{
    return !KindOf(kind).numbered;
}

SymbolKind SymbolKindOf(int kind)
{
    if (kind == KindLokSymbol)
        return SymbolKind::Loco;
    return kind < KindRoutes ? SymbolKind::Function : SymbolKind::Accessory;
}

int HalfOf(int kind)
{
    if (kind <= KindLokSymbol || IsTableKind(kind))
        return 0;
    return kind - (kind < KindRoutes ? KindFktSymbolOn : KindMagSymbolGreen);
}

int RecordKindOf(SymbolKind symbol, int half)
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

Result<RecordValue> ReadRecord(SpiImage &image, const RecordId &id, const std::function<void(int)> &onGroup)
{
    switch (id.kind) {
    case KindLoco:
        return AsRecord(ReadLoco(image, id.number));
    case KindRoutes:
        return AsRecord(ReadRouteTable(image));
    case KindMagZuordnung:
        return AsRecord(ReadAssignment(image, onGroup));
    case KindMagListe:
        return AsRecord(ReadAccessoryList(image));
    default:
        return AsRecord(ReadPicture(image, SymbolKindOf(id.kind), id.number, HalfOf(id.kind)));
    }
}

Outcome WriteRecord(SpiImage &image, const RecordId &id, const RecordValue &value, Patience patience)
{
    switch (id.kind) {
    case KindLoco:
        return WriteLoco(image, id.number, std::get<LocoRecord>(value), patience);
    case KindRoutes:
        return WriteRouteTable(image, std::get<Routes>(value), patience);
    case KindMagZuordnung:
        return WriteAssignment(image, std::get<Assignment>(value), patience);
    case KindMagListe:
        return WriteAccessoryList(image, std::get<AccessoryList>(value), patience);
    default:
        return WritePicture(
            image, SymbolKindOf(id.kind), id.number, HalfOf(id.kind), std::get<Picture>(value), patience);
    }
}

bool SharesPage(int kind)
{
    return kind == KindLoco || (KindOf(kind).numbered && kind != KindLokSymbol);
}

int PageAddressOf(const RecordId &id)
{
    int address = 0;
    switch (id.kind) {
    case KindLoco:
        address = LocoRecordAddress(id.number);
        break;
    case KindRoutes:
        address = RoutesAddress;
        break;
    case KindMagZuordnung:
        address = MagZuordAddress;
        break;
    case KindMagListe:
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
    const RecordKind &kind = KindOf(id.kind);
    const int first = id.number / SymbolsOfPage * SymbolsOfPage; // eight locos a page too
    for (int n = std::max(first, kind.lowest); n <= std::min(first + SymbolsOfPage - 1, kind.highest); ++n) {
        if (id.kind == KindLoco) {
            records.push_back({KindLoco, n});
            continue;
        }
        for (int half = 0; half < 2; ++half)
            records.push_back({RecordKindOf(SymbolKindOf(id.kind), half), n});
    }
    return records;
}

PagePart PartOf(const RecordId &id, const RecordValue &value, const LocoBytes &beneath)
{
    if (id.kind == KindLoco)
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
