#include "roster/table_csv.h"

#include "handheld/table_entries.h"
#include "handheld/text_encoding.h"

#include <set>

namespace hr::roster
{

namespace
{

constexpr int HighestByte = 255;

using Change = std::function<void(RecordValue &)>;

/// The assignment has a heading of its own, so that its file is never taken for a list of locos.
QString NumberColumn(RecordKind kind)
{
    return kind == RecordKind::AssignmentTable ? QStringLiteral("Magnetartikel") : RowOf(kind).entryName;
}

/// The columns of a table's file: the number of the entry, then its fields.
QStringList ColumnsOf(RecordKind kind)
{
    return QStringList{NumberColumn(kind)} + RowOf(kind).fields;
}

const QString &Column(RecordKind kind, int field)
{
    return RowOf(kind).fields.at(field);
}

/// An address that a cell gives; 0 for none, which is what an empty cell says.
std::optional<int> AddressIn(CsvSheet &sheet, const CsvRow &row, const QString &column, int highest)
{
    const auto text = sheet.cell(row, column);
    if (!text)
        return {};
    return text->isEmpty() ? std::optional<int>(0) : sheet.number(row, column, 1, highest);
}

/// "None" changes nothing where none stands already, in whatever form.
int StoredAddress(int wanted, int present, bool hasAddress)
{
    constexpr int none = 0xFFFF;
    if (wanted == 0)
        return hasAddress ? none : present;
    return wanted;
}

std::optional<int> SymbolIn(CsvSheet &sheet, const CsvRow &row, const QString &column)
{
    return sheet.has(column) ? sheet.number(row, column, 0, HighestByte) : std::nullopt;
}

Change RouteChange(CsvSheet &sheet, const CsvRow &row, size_t n)
{
    const QString &triggerColumn = Column(RecordKind::RouteTable, RouteTrigger);
    const auto address = AddressIn(sheet, row, Column(RecordKind::RouteTable, RouteFeedback), LastFeedbackAddress);
    const auto cell = sheet.cell(row, triggerColumn);
    const QString word = cell.value_or(QString()).toLower();
    if (cell && word != TriggerText(false) && word != TriggerText(true))
        sheet.faults.push_back({row.line, triggerColumn, QStringLiteral("hier muss frei oder besetzt stehen")});
    const auto occupied = cell ? std::optional(word == TriggerText(true)) : std::nullopt;
    return [=](RecordValue &value) {
        auto &routes = std::get<Routes>(value);
        Route route = RouteAt(routes, n);
        if (address)
            route.feedback = StoredAddress(*address, route.feedback, route.hasFeedback());
        if (occupied && *occupied != route.occupied()) // the byte's other bits may mean something
            route.trigger = *occupied ? 1 : 0;
        LayRoute(routes, n, route);
    };
}

Change AssignmentChange(CsvSheet &sheet, const CsvRow &row, size_t n)
{
    const auto symbol = SymbolIn(sheet, row, Column(RecordKind::AssignmentTable, AssignmentSymbol));
    return [n, symbol](RecordValue &value) {
        if (symbol)
            std::get<Assignment>(value).at(n) = static_cast<quint8>(*symbol);
    };
}

Change PlaceChange(CsvSheet &sheet, const CsvRow &row, size_t n)
{
    const QString &nameColumn = Column(RecordKind::PlaceTable, PlaceDesignation);
    const auto address = AddressIn(sheet, row, Column(RecordKind::PlaceTable, PlaceAddress), LastAccessoryAddress);
    const auto name = sheet.cell(row, nameColumn);
    const auto symbol = SymbolIn(sheet, row, Column(RecordKind::PlaceTable, PlaceSymbol));
    if (name && (name->size() > DesignationLength || !UnknownCharacters(*name).isEmpty())) {
        sheet.faults.push_back({row.line, nameColumn,
            QStringLiteral("\"%1\": hier passen nur %2 Zeichen, die der Handregler hat")
                .arg(*name)
                .arg(DesignationLength)});
    }
    return [=](RecordValue &value) {
        auto &list = std::get<AccessoryList>(value);
        AccessoryPlace place = PlaceAt(list, n);
        if (address)
            place.address = StoredAddress(*address, place.address, place.hasAddress());
        if (name && !(name->isEmpty() && !place.hasDesignation())) // as with the addresses, nothing stays nothing
            place.setDesignation(*name);
        if (symbol)
            place.symbol = static_cast<quint8>(*symbol);
        LayPlace(list, n, place);
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
    const RecordKind kind = TableKindOf(table);
    QStringList lines{ColumnsOf(kind).join(u';')};
    for (size_t n = 0; n < static_cast<size_t>(RowOf(kind).entries); ++n) {
        QString line = QString::number(n + 1);
        for (const QString &text : EntryTexts(table, n))
            line += u';' + CsvCell(text);
        lines += line;
    }
    return (lines.join(u'\n') + u'\n').toUtf8();
}

TableChanges ReadTableCsv(const QByteArray &file, RecordKind kind)
{
    const QString numberColumn = NumberColumn(kind);
    CsvSheet sheet(file);
    if (kind == RecordKind::AssignmentTable)
        sheet.alsoCalled(numberColumn, {RowOf(kind).entryName}); // older files
    sheet.checkColumns({numberColumn}, ColumnsOf(kind));
    std::vector<Change> changes;
    std::set<int> seen;
    for (const CsvRow &row : sheet.rows()) {
        const auto n =
            sheet.has(numberColumn) ? sheet.number(row, numberColumn, 1, RowOf(kind).entries) : std::nullopt;
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

} // namespace hr::roster
