#include "roster/csv_sheet.h"

#include "platform/text.h"

#include <QStringConverter>

#include <algorithm>

namespace hr::roster
{

namespace
{

constexpr size_t MostFaultsShown = 20;
constexpr QChar Quote(u'"');

QString TextOf(const QByteArray &file)
{
    const auto marked = QStringConverter::encodingForData(file); // by its byte order mark
    QStringDecoder decoder(marked.value_or(QStringConverter::Utf8));
    QString text = decoder(file);
    if (decoder.hasError())
        text = QString::fromLatin1(file);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text.replace(u'\r', u'\n');
}

/// "sep=;" is for the spreadsheet, "#" begins a remark.
bool SaysNothing(const CsvRow &row)
{
    const QString first = row.cells.value(0);
    return first.startsWith(u'#') || first.startsWith(QStringLiteral("sep="), Qt::CaseInsensitive);
}

/// The separator that the first line has most of.
QChar SeparatorOf(const QString &text)
{
    const QStringView first = QStringView(text).left(text.indexOf(u'\n'));
    QChar best = u';';
    for (const QChar candidate : {QChar(u','), QChar(u'\t')})
        best = first.count(candidate) > first.count(best) ? candidate : best;
    return best;
}

/// Goes through the text character by character, because a cell in quotes may hold separators and line breaks.
class Splitter
{
public:
    explicit Splitter(const QString &file) : text(file), separator(SeparatorOf(file)) { }

    /// The line of a quote that is never closed; 0 when there is none.
    [[nodiscard]] int unclosedLine() const { return unclosed; }

    std::vector<CsvRow> rows()
    {
        for (; position < text.size(); ++position)
            take(text.at(position));
        unclosed = quoted ? quoteLine : 0;
        endRow();
        std::erase_if(found, SaysNothing);
        return std::move(found);
    }

private:
    void take(QChar c)
    {
        if (c == u'\n')
            ++line;
        if (quoted)
            takeQuoted(c);
        else if (c == Quote && cell.trimmed().isEmpty())
            openQuote();
        else if (c == separator)
            endCell();
        else if (c == u'\n')
            endRow();
        else if (c != u'\r')
            cell += c;
    }

    void openQuote()
    {
        cell.clear();
        quoted = asWritten = true;
        quoteLine = line;
    }

    void takeQuoted(QChar c)
    {
        if (c != Quote) {
            cell += c;
        } else if (position + 1 < text.size() && text.at(position + 1) == Quote) {
            cell += c;
            ++position;
        } else {
            quoted = false;
        }
    }

    void endCell()
    {
        row.cells += asWritten ? cell : cell.trimmed();
        cell.clear();
        asWritten = false;
    }

    void endRow()
    {
        endCell();
        const bool blank = std::ranges::all_of(row.cells, [](const QString &entry) { return entry.isEmpty(); });
        if (!blank)
            found.push_back(row);
        row = {line, {}};
    }

    const QString text;
    const QChar separator;
    qsizetype position = 0;
    int line = 1;
    int quoteLine = 0;
    int unclosed = 0;
    bool quoted = false;    // inside quotes
    bool asWritten = false; // the cell was in quotes: its blanks count
    QString cell;
    CsvRow row{1, {}};
    std::vector<CsvRow> found;
};

} // namespace

QString FaultText(const FileFault &fault)
{
    QStringList places;
    if (fault.line > 0)
        places += QStringLiteral("Zeile %1").arg(fault.line);
    if (!fault.column.isEmpty())
        places += QStringLiteral("Spalte ") + fault.column;
    const QString place = places.join(QStringLiteral(", "));
    return place.isEmpty() ? fault.reason : QString(place + QStringLiteral(": ") + fault.reason);
}

QString FaultsText(const std::vector<FileFault> &faults)
{
    QStringList lines;
    for (size_t i = 0; i < std::min(faults.size(), MostFaultsShown); ++i)
        lines += FaultText(faults.at(i));
    if (faults.size() > MostFaultsShown)
        lines += QStringLiteral("... und %1 weitere Fehler").arg(faults.size() - MostFaultsShown);
    return lines.join(u'\r');
}

CsvSheet::CsvSheet(const QByteArray &file)
{
    Splitter splitter(TextOf(file));
    content = splitter.rows();
    if (const int line = splitter.unclosedLine(); line > 0)
        faults.push_back({line, {}, QStringLiteral("ein Anführungszeichen wird nie geschlossen")});
    if (content.empty()) {
        faults.push_back({0, {}, QStringLiteral("die Datei ist leer")});
        return;
    }
    for (const QString &heading : content.front().cells)
        headings += UpperLatin1(heading);
    content.erase(content.begin());
}

qsizetype CsvSheet::indexOf(const QString &column) const
{
    return headings.indexOf(UpperLatin1(column));
}

void CsvSheet::alsoCalled(const QString &column, const QStringList &others)
{
    for (const QString &other : others) {
        const qsizetype index = indexOf(other);
        if (!has(column) && index >= 0)
            headings[index] = UpperLatin1(column);
    }
}

std::optional<QString> CsvSheet::cell(const CsvRow &row, const QString &column) const
{
    const qsizetype index = indexOf(column);
    if (index < 0)
        return {};
    return row.cells.value(index); // a row that ends early has empty cells
}

std::optional<int> CsvSheet::number(const CsvRow &row, const QString &column, int low, int high)
{
    const std::optional<QString> text = cell(row, column);
    bool isNumber = false;
    const int value = text.value_or(QString()).toInt(&isNumber);
    if (isNumber && value >= low && value <= high)
        return value;
    const QString what = text.value_or(QString()).isEmpty()
        ? QStringLiteral("hier fehlt eine Zahl von %1 bis %2")
        : u'"' + *text + QStringLiteral("\" ist keine Zahl von %1 bis %2");
    faults.push_back({row.line, column, what.arg(low).arg(high)});
    return {};
}

void CsvSheet::checkColumns(const QStringList &needed, const QStringList &known)
{
    for (const QString &name : needed) {
        if (!has(name) && !headings.isEmpty())
            faults.push_back({1, name, QStringLiteral("diese Spalte fehlt")});
    }
    for (const QString &heading : headings) {
        if (headings.count(heading) > 1 && !heading.isEmpty())
            faults.push_back({1, heading, QStringLiteral("diese Spalte steht mehrmals da")});
        else if (!heading.isEmpty()
            && std::ranges::none_of(known, [&](const QString &name) { return UpperLatin1(name) == heading; }))
            faults.push_back({1, heading, QStringLiteral("diese Spalte ist nicht bekannt")});
    }
    for (const CsvRow &row : content) {
        const QStringList beyond = row.cells.mid(headings.size());
        if (!beyond.join(QString()).isEmpty())
            faults.push_back({row.line, {},
                QStringLiteral("mehr Zellen als Spalten (Text mit Trennzeichen gehört in Anführungszeichen)")});
    }
}

QString CsvCell(const QString &text)
{
    const bool plain =
        !text.contains(u';') && !text.contains(Quote) && !text.contains(u'\n') && text == text.trimmed();
    QString doubled = text;
    return plain ? text : QString(Quote + doubled.replace(Quote, QStringLiteral("\"\"")) + Quote);
}

} // namespace hr::roster
