#include "roster/loco_csv.h"

#include "handheld/text_encoding.h"
#include "platform/text.h"

#include <QRegularExpression>
#include <map>

namespace hr::roster
{

namespace
{

constexpr int HighestByte = 255;

const auto AddressColumn = QStringLiteral("Adresse");
const auto NameColumn = QStringLiteral("Name");
const auto SymbolColumn = QStringLiteral("Symbol");
const auto MultiUniColumn = QStringLiteral("MultiUni");
const auto MomentaryColumn = QStringLiteral("Tast");

QString FunctionColumn(size_t function)
{
    return u'f' + QString::number(function);
}

QStringList AllColumns()
{
    QStringList columns{AddressColumn, NameColumn, SymbolColumn, MultiUniColumn};
    for (size_t f = 1; f < FunctionCount; ++f)
        columns += FunctionColumn(f);
    return columns << MomentaryColumn;
}

QString MomentaryText(const LocoRecord &record)
{
    QStringList numbers;
    for (size_t f = 0; f < FunctionCount; ++f) {
        if (record.modes.at(f) == 1)
            numbers += QString::number(f);
    }
    return numbers.join(u' ');
}

std::optional<QString> NameIn(CsvSheet &sheet, const CsvRow &row)
{
    std::optional<QString> name = sheet.cell(row, NameColumn);
    if (!name || name->isEmpty()) // an empty cell changes nothing
        return {};
    if (name->size() > NameLength) {
        sheet.faults.push_back({row.line, NameColumn,
            QStringLiteral("\"%1\" hat mehr als %2 Zeichen")
                .arg(name->left(qsizetype{2} * NameLength))
                .arg(NameLength)});
    }
    return name;
}

std::array<std::optional<int>, FunctionCount> ModesIn(CsvSheet &sheet, const CsvRow &row)
{
    const std::optional<QString> text = sheet.cell(row, MomentaryColumn);
    if (!text)
        return {};
    std::array<std::optional<int>, FunctionCount> modes{};
    modes.fill(0); // the cell lists all that are momentary
    static const QRegularExpression separators(QStringLiteral("[ ,;]+"));
    for (const QString &entry : text->split(separators, Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const uint function = entry.toUInt(&isNumber);
        if (isNumber && function < FunctionCount)
            modes.at(function) = 1;
        else
            sheet.faults.push_back({row.line, MomentaryColumn,
                QStringLiteral("\"%1\" ist keine Funktion von 0 bis %2").arg(entry).arg(FunctionCount - 1)});
    }
    return modes;
}

std::optional<int> NumberIn(CsvSheet &sheet, const CsvRow &row, const QString &column, int high)
{
    const auto text = sheet.cell(row, column);
    return text && !text->isEmpty() ? sheet.number(row, column, 0, high) : std::nullopt;
}

ListedLoco LocoIn(CsvSheet &sheet, const CsvRow &row)
{
    ListedLoco loco;
    loco.line = row.line;
    loco.address = sheet.number(row, AddressColumn, FirstLoco, LastLoco).value_or(0);
    loco.name = NameIn(sheet, row);
    loco.symbol = NumberIn(sheet, row, SymbolColumn, HighestByte);
    loco.multiUni = NumberIn(sheet, row, MultiUniColumn, 1);
    for (size_t f = 1; f < FunctionCount; ++f)
        loco.symbols.at(f) = NumberIn(sheet, row, FunctionColumn(f), HighestByte);
    loco.modes = ModesIn(sheet, row);
    return loco;
}

} // namespace

std::vector<RosterLoco> LocosIn(const DdsContent &content)
{
    std::vector<RosterLoco> locos;
    for (const DdsRecord &record : content.records) {
        if (record.id.kind == RecordKind::Loco)
            locos.push_back({record.id.number, std::get<LocoRecord>(UnpackRecord(record))});
    }
    return locos;
}

QString FrontCaption(int column)
{
    static const std::array<QString, FrontColumns> captions{
        QStringLiteral("Adresse"), QStringLiteral("Name"), QStringLiteral("Symbol"), QStringLiteral("ident. Sym.")};
    return captions.at(static_cast<size_t>(column));
}

QString CsvHeading()
{
    return AllColumns().join(u';');
}

QString CsvLine(const RosterLoco &loco)
{
    const LocoRecord &record = loco.record;
    QStringList cells{QString::number(loco.address), CsvCell(ShownName(record)), QString::number(record.locoSymbol),
        QString::number(record.multiUni)};
    for (size_t f = 1; f < FunctionCount; ++f)
        cells += QString::number(record.symbols.at(f));
    return (cells << MomentaryText(record)).join(u';');
}

QByteArray CsvOf(const std::vector<RosterLoco> &locos, CsvFor reader)
{
    const bool spreadsheet = reader == CsvFor::Spreadsheets;
    const QString end = spreadsheet ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QString text = spreadsheet ? QString(QChar(QChar::ByteOrderMark)) : QString();
    text += CsvHeading() + end;
    for (const RosterLoco &loco : locos) {
        if (!IsEmptyName(loco.record.name))
            text += CsvLine(loco) + end;
    }
    return text.toUtf8();
}

LocoList ReadLocoCsv(const QByteArray &file)
{
    CsvSheet sheet(file);
    sheet.alsoCalled(AddressColumn, {QStringLiteral("Lokadresse"), QStringLiteral("Adr."), QStringLiteral("Adr")});
    sheet.alsoCalled(NameColumn, {QStringLiteral("Lokname"), QStringLiteral("Bezeichnung")});
    sheet.alsoCalled(SymbolColumn, {QStringLiteral("Loksymbol")});
    sheet.checkColumns({AddressColumn}, AllColumns());
    LocoList list;
    if (sheet.has(AddressColumn)) {
        for (const CsvRow &row : sheet.rows())
            list.locos.push_back(LocoIn(sheet, row));
    }
    list.faults = std::move(sheet.faults);
    if (list.locos.empty() && list.faults.empty())
        list.faults.push_back({0, {}, QStringLiteral("die Datei enthält keine Loks")});
    CheckAddressesOnce(list);
    return list;
}

ListedLoco Listed(const RosterLoco &loco)
{
    ListedLoco listed{loco.address, 0, WithoutTrailingBlanks(loco.record.name), loco.record.locoSymbol,
        loco.record.multiUni, {}, {}};
    for (size_t f = 1; f < FunctionCount; ++f)
        listed.symbols.at(f) = loco.record.symbols.at(f);
    for (size_t f = 0; f < FunctionCount; ++f)
        listed.modes.at(f) = loco.record.modes.at(f);
    return listed;
}

LocoRecord Applied(const ListedLoco &listed, const LocoRecord &present)
{
    LocoRecord record = present;
    if (listed.name)
        record.name = FitLocoName(AsStored(*listed.name, NameLength));
    record.locoSymbol = listed.symbol.value_or(record.locoSymbol);
    record.multiUni = listed.multiUni.value_or(record.multiUni);
    for (size_t f = 1; f < FunctionCount; ++f)
        record.symbols.at(f) = listed.symbols.at(f).value_or(record.symbols.at(f));
    for (size_t f = 0; f < FunctionCount; ++f)
        record.modes.at(f) = listed.modes.at(f).value_or(record.modes.at(f));
    return record;
}

void CheckAddressesOnce(LocoList &list)
{
    std::map<int, int> lines;
    for (const ListedLoco &loco : list.locos) {
        if (loco.address == 0 || lines.emplace(loco.address, loco.line).second)
            continue;
        const int first = lines.at(loco.address);
        const QString where =
            first > 0 ? QStringLiteral(" schon in Zeile %1").arg(first) : QStringLiteral(" mehrmals");
        list.faults.push_back(
            {loco.line, AddressColumn, QStringLiteral("die Adresse %1 steht").arg(loco.address) + where});
    }
}

QString AdaptedNames(const std::vector<ListedLoco> &locos)
{
    QStringList lines;
    for (const ListedLoco &loco : locos) {
        const QString name = loco.name.value_or(QString());
        const QString stored = WithoutTrailingBlanks(AsStored(name, NameLength));
        if (!UnknownCharacters(UpperLatin1(name)).isEmpty())
            lines += QStringLiteral("Lok %1: \"%2\" wird zu \"%3\"").arg(loco.address).arg(name, stored);
    }
    return lines.join(u'\r');
}

} // namespace hr::roster
