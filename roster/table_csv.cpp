#include "roster/table_csv.h"

#include "link/text_encoding.h"
#include "platform/text.h"

#include <set>

namespace
{

constexpr int HighestByte = 255;
constexpr int DesignationLength = 2;
constexpr size_t TriggerOffset = 2;     // of a route
constexpr size_t DesignationOffset = 2; // of a place
constexpr size_t SymbolOffset = 4;      // of a place
constexpr int NoAddress = 0xFFFF;

const auto RouteColumn = QStringLiteral("Fahrstraße");
const auto FeedbackColumn = QStringLiteral("Rückmelder");
const auto TriggerColumn = QStringLiteral("Auslösung");
const auto AddressColumn = QStringLiteral("Adresse");
const auto PlaceColumn = QStringLiteral("Platz");
const auto DesignationColumn = QStringLiteral("Bezeichnung");
const auto SymbolColumn = QStringLiteral("Symbol");
const auto FreeWord = QStringLiteral("frei");
const auto OccupiedWord = QStringLiteral("besetzt");

using Change = std::function<void(RecordValue &)>;

/// What is particular about a table's file.
struct Layout {
    QStringList columns; // the first one numbers the rows
    int rows;
};

Layout LayoutOf(RecordKind kind)
{
    if (kind == RecordKind::RouteTable)
        return {{RouteColumn, FeedbackColumn, TriggerColumn}, RouteCount};
    if (kind == RecordKind::AssignmentTable)
        return {{AddressColumn, SymbolColumn}, LastAccessoryAddress};
    return {{PlaceColumn, AddressColumn, DesignationColumn, SymbolColumn}, PlaceCount};
}

template <typename Table> int Word(const Table &table, size_t at)
{
    return table.at(at) * 256 + table.at(at + 1);
}

/// "None" changes nothing where none stands already, in whatever form.
template <typename Table> void PutAddress(Table &table, size_t at, int word, int highest)
{
    const bool hasAddress = Word(table, at) >= 1 && Word(table, at) <= highest;
    if (word == NoAddress && !hasAddress)
        return;
    table.at(at) = word / 256;
    table.at(at + 1) = word % 256;
}

QString AddressText(int address, int highest)
{
    return address >= 1 && address <= highest ? QString::number(address) : QString();
}

QStringList RouteLines(const Routes &routes)
{
    QStringList lines;
    for (size_t n = 0; n < RouteCount; ++n) {
        const size_t at = n * RouteSize;
        const bool occupied = (routes.at(at + TriggerOffset) & 1) == 1;
        lines += QString::number(n + 1) + u';' + AddressText(Word(routes, at), LastFeedbackAddress) + u';'
            + (occupied ? OccupiedWord : FreeWord);
    }
    return lines;
}

QStringList AssignmentLines(const Assignment &assignment)
{
    QStringList lines;
    for (size_t n = 0; n < assignment.size(); ++n)
        lines += QString::number(n + 1) + u';' + QString::number(assignment.at(n));
    return lines;
}

bool IsDefined(const AccessoryList &list, size_t at)
{
    return list.at(at) <= ZeichensatzLast && list.at(at + 1) <= ZeichensatzLast;
}

QStringList PlaceLines(const AccessoryList &list)
{
    QStringList lines;
    const std::vector<quint8> codes(list.begin(), list.end());
    for (size_t n = 0; n < PlaceCount; ++n) {
        const size_t at = n * PlaceSize;
        const QString name = IsDefined(list, at + DesignationOffset)
            ? DecodeName(codes, static_cast<int>(at + DesignationOffset), DesignationLength)
            : QString();
        lines += QString::number(n + 1) + u';' + AddressText(Word(list, at), LastAccessoryAddress) + u';'
            + CsvCell(WithoutTrailingBlanks(name)) + u';' + QString::number(list.at(at + SymbolOffset));
    }
    return lines;
}

/// An address that may be empty, which means none.
std::optional<int> AddressIn(CsvSheet &sheet, const CsvRow &row, const QString &column, int highest)
{
    const auto text = sheet.cell(row, column);
    if (!text)
        return {};
    return text->isEmpty() ? std::optional<int>(NoAddress) : sheet.number(row, column, 1, highest);
}

Change RouteChange(CsvSheet &sheet, const CsvRow &row, size_t n)
{
    const size_t at = n * RouteSize;
    const auto address = AddressIn(sheet, row, FeedbackColumn, LastFeedbackAddress);
    const auto word = sheet.cell(row, TriggerColumn);
    if (word && word->toLower() != FreeWord && word->toLower() != OccupiedWord)
        sheet.faults.push_back({row.line, TriggerColumn, QStringLiteral("hier muss frei oder besetzt stehen")});
    return [at, address, word](RecordValue &value) {
        auto &routes = std::get<Routes>(value);
        if (address)
            PutAddress(routes, at, *address, LastFeedbackAddress);
        const int trigger = word && word->toLower() == OccupiedWord ? 1 : 0;
        if (word && (routes.at(at + TriggerOffset) & 1) != trigger) // the byte's other bits may mean something
            routes.at(at + TriggerOffset) = trigger;
    };
}

Change AssignmentChange(CsvSheet &sheet, const CsvRow &row, size_t n)
{
    const auto symbol = sheet.has(SymbolColumn) ? sheet.number(row, SymbolColumn, 0, HighestByte) : std::nullopt;
    return [n, symbol](RecordValue &value) {
        if (symbol)
            std::get<Assignment>(value).at(n) = *symbol;
    };
}

/// As with the addresses, nothing stays nothing in whatever form.
void PutDesignation(AccessoryList &list, size_t at, const QString &text)
{
    if (text.isEmpty() && !IsDefined(list, at))
        return;
    std::vector<quint8> codes(DesignationLength);
    EncodeName(text, codes, 0, DesignationLength);
    list.at(at) = codes.at(0);
    list.at(at + 1) = codes.at(1);
}

Change PlaceChange(CsvSheet &sheet, const CsvRow &row, size_t n)
{
    const size_t at = n * PlaceSize;
    const auto address = AddressIn(sheet, row, AddressColumn, LastAccessoryAddress);
    const auto name = sheet.cell(row, DesignationColumn);
    const auto symbol = sheet.has(SymbolColumn) ? sheet.number(row, SymbolColumn, 0, HighestByte) : std::nullopt;
    if (name && (name->size() > DesignationLength || !UnknownCharacters(*name).isEmpty())) {
        sheet.faults.push_back({row.line, DesignationColumn,
            QStringLiteral("\"%1\": hier passen nur %2 Zeichen, die der Handregler hat")
                .arg(*name)
                .arg(DesignationLength)});
    }
    return [=](RecordValue &value) {
        auto &list = std::get<AccessoryList>(value);
        if (address)
            PutAddress(list, at, *address, LastAccessoryAddress);
        if (name)
            PutDesignation(list, at + DesignationOffset, *name);
        if (symbol)
            list.at(at + SymbolOffset) = *symbol;
    };
}

Change ChangeOf(CsvSheet &sheet, const CsvRow &row, RecordKind kind, size_t n)
{
    if (kind == RecordKind::RouteTable)
        return RouteChange(sheet, row, n);
    return kind == RecordKind::AssignmentTable ? AssignmentChange(sheet, row, n) : PlaceChange(sheet, row, n);
}

} // namespace

QByteArray TableCsv(const RecordValue &table)
{
    QStringList lines;
    RecordKind kind = RecordKind::PlaceTable;
    if (const auto *routes = std::get_if<Routes>(&table)) {
        lines = RouteLines(*routes);
        kind = RecordKind::RouteTable;
    } else if (const auto *assignment = std::get_if<Assignment>(&table)) {
        lines = AssignmentLines(*assignment);
        kind = RecordKind::AssignmentTable;
    } else {
        lines = PlaceLines(std::get<AccessoryList>(table));
    }
    return (LayoutOf(kind).columns.join(u';') + u'\n' + lines.join(u'\n') + u'\n').toUtf8();
}

TableChanges ReadTableCsv(const QByteArray &file, RecordKind kind)
{
    const Layout layout = LayoutOf(kind);
    const QString &numberColumn = layout.columns.constFirst();
    CsvSheet sheet(file);
    sheet.checkColumns({numberColumn}, layout.columns);
    std::vector<Change> changes;
    std::set<int> seen;
    for (const CsvRow &row : sheet.rows()) {
        const auto n = sheet.has(numberColumn) ? sheet.number(row, numberColumn, 1, layout.rows) : std::nullopt;
        if (!n)
            continue;
        if (!seen.insert(*n).second)
            sheet.faults.push_back({row.line, numberColumn, QStringLiteral("%1 steht mehrmals da").arg(*n)});
        changes.push_back(ChangeOf(sheet, row, kind, static_cast<size_t>(*n - 1)));
    }
    if (changes.empty() && sheet.faults.empty())
        sheet.faults.push_back({0, {}, QStringLiteral("die Datei enthält keine Zeilen")});
    return {[changes](RecordValue &value) {
                for (const Change &change : changes)
                    change(value);
            },
        sheet.faults};
}
