#include "handheld/record_kinds.h"

#include "handheld/flash_map.h"

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
