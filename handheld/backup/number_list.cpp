#include "handheld/backup/number_list.h"

#include "platform/text.h"

#include <QStringList>

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

namespace hr::handheld
{

namespace
{

constexpr size_t EntriesPerLine = 10;

struct Range {
    int low;
    int high;
};

QString WithoutBlanks(const QString &text)
{
    QString result = text;
    result.removeIf([](QChar c) { return c.isSpace(); });
    return result;
}

bool IsNumber(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// Of an entry without blanks; nothing when it is neither a number nor two numbers joined by "-".
std::optional<Range> ParseEntry(const QString &entry)
{
    const qsizetype dash = entry.indexOf(u'-');
    const QString low = entry.left(dash); // all of it without a dash
    const QString high = dash < 0 ? low : entry.mid(dash + 1);
    if (!IsNumber(low) || !IsNumber(high))
        return {};
    return Range{Val(low), Val(high)};
}

QString EntryFault(const QString &entry, int low, int high)
{
    const std::optional<Range> range = ParseEntry(entry);
    if (!range)
        return QStringLiteral("\"%1\" ist keine Nummer und kein Bereich wie 1-5").arg(entry);
    for (const int number : {range->low, range->high}) {
        if (number < low || number > high)
            return QStringLiteral("\"%1\" liegt nicht zwischen %2 und %3").arg(entry).arg(low).arg(high);
    }
    if (range->low > range->high)
        return QStringLiteral("\"%1\": die kleinere Nummer gehört nach vorn").arg(entry);
    return {};
}

std::vector<Range> Ranges(std::span<const int> numbers)
{
    std::vector<int> sorted(numbers.begin(), numbers.end());
    std::sort(sorted.begin(), sorted.end());
    std::vector<Range> ranges;
    for (const int number : sorted) {
        if (!ranges.empty() && number <= ranges.back().high + 1)
            ranges.back().high = number;
        else
            ranges.push_back({number, number});
    }
    return ranges;
}

QString RangeText(const Range &range)
{
    const QString low = QString::number(range.low);
    return range.low == range.high ? low : low + u'-' + QString::number(range.high);
}

QString JoinInLines(const QStringList &entries, const QString &lineSeparator)
{
    QString text;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (i > 0)
            text += u',';
        if (i > 0 && static_cast<size_t>(i) % EntriesPerLine == 0)
            text += lineSeparator;
        text += entries.at(i);
    }
    return text;
}

} // namespace

NumberList::NumberList(const QString &listText) : text(WithoutBlanks(listText)) { }

bool NumberList::openEntry()
{
    while (position < text.size()) {
        const qsizetype comma = text.indexOf(u',', position);
        const qsizetype end = comma < 0 ? text.size() : comma;
        const std::optional<Range> range = ParseEntry(text.mid(position, end - position));
        position = end + 1;
        if (range && range->low <= range->high) {
            current = range->low;
            last = range->high;
            return true;
        }
    }
    return false;
}

int NumberList::next()
{
    if (current > last && !openEntry())
        return -1;
    return static_cast<int>(current++);
}

QString NumberListFault(const QString &text, int low, int high)
{
    const QStringList entries = WithoutBlanks(text).split(u',', Qt::SkipEmptyParts);
    for (const QString &entry : entries) {
        if (QString fault = EntryFault(entry, low, high); !fault.isEmpty())
            return fault;
    }
    return entries.isEmpty() ? QStringLiteral("es ist keine Nummer angegeben") : QString();
}

std::vector<int> EachNumberOnce(const QString &text)
{
    std::vector<int> numbers;
    std::set<int> seen;
    NumberList list(text);
    for (int n = list.next(); n >= 0; n = list.next()) {
        if (seen.insert(n).second)
            numbers.push_back(n);
    }
    return numbers;
}

QString ShortList(std::span<const int> numbers, const QString &lineSeparator)
{
    QStringList entries;
    for (const Range &range : Ranges(numbers))
        entries += RangeText(range);
    return JoinInLines(entries, lineSeparator);
}

QString TenPerLine(std::span<const int> numbers)
{
    QStringList entries;
    for (const int number : numbers)
        entries += QString::number(number);
    return JoinInLines(entries, QStringLiteral("\n"));
}

} // namespace hr::handheld
