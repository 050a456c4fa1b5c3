#include "jobs/report.h"

#include "handheld/backup/number_list.h"
#include "program/ask.h"

#include <QStringList>

namespace hr::jobs
{

namespace
{

constexpr int MostNumbersInLine = 30; // entries of a short list

std::vector<int> NumbersOfKind(const std::vector<RecordId> &records, RecordKind kind)
{
    std::vector<int> numbers;
    for (const RecordId &id : records) {
        if (id.kind == kind)
            numbers.push_back(id.number);
    }
    return numbers;
}

/// "5 Lokdatensätze: 1, 3, 8, 18, 24", "4 Loksymbole", "Fahrstraßen".
QString KindContent(RecordKind kind, const std::vector<int> &numbers)
{
    if (IsTableKind(kind))
        return RowOf(kind).plural;
    if (kind != RecordKind::Loco)
        return QString::number(numbers.size()) + u' ' + RowOf(kind).plural;
    QStringList entries = ShortList(numbers, QString()).split(u',');
    if (entries.size() > MostNumbersInLine)
        entries = entries.first(MostNumbersInLine) << QStringLiteral("...");
    const QString count = numbers.size() == 1 ? QStringLiteral("1 Lokdatensatz")
                                              : QStringLiteral("%1 Lokdatensätze").arg(numbers.size());
    return count + QStringLiteral(": ") + entries.join(QStringLiteral(", "));
}

} // namespace

QString RecordsText(const std::vector<RecordId> &records)
{
    QStringList lines;
    for (const RecordKind kind : AllKinds) {
        const std::vector<int> numbers = NumbersOfKind(records, kind);
        const QString list =
            RowOf(kind).numbered ? QStringLiteral(": ") + ShortList(numbers, QStringLiteral("\r     ")) : QString();
        if (!numbers.empty())
            lines += RowOf(kind).plural + list;
    }
    return lines.isEmpty() ? QStringLiteral("keine") : lines.join(u'\r');
}

QString ContentText(const std::vector<RecordId> &records)
{
    QStringList parts;
    for (const RecordKind kind : AllKinds) {
        const std::vector<int> numbers = NumbersOfKind(records, kind);
        if (!numbers.empty())
            parts += KindContent(kind, numbers);
    }
    return parts.isEmpty() ? QStringLiteral("nichts") : parts.join(QStringLiteral("; "));
}

void ShowDoneBox(const QString &text, const QString &title)
{
    TheAsk().showBox({text, title, BoxIcon::Information});
}

QString RecordCount(size_t count)
{
    return count == 1 ? QStringLiteral("1 Datensatz") : QStringLiteral("%1 Datensätze").arg(count);
}

QString LocoCount(size_t count)
{
    return QString::number(count) + (count == 1 ? QStringLiteral(" Lok") : QStringLiteral(" Loks"));
}

QString PageCount(size_t count)
{
    return count == 1 ? QStringLiteral("1 Speicherseite") : QStringLiteral("%1 Speicherseiten").arg(count);
}

bool EndedEarly(JobEnd end)
{
    return end == JobEnd::Stopped || end == JobEnd::PortLost || end == JobEnd::NoAnswer;
}

QString EndText(JobEnd end, const QString &stopped)
{
    switch (end) {
    case JobEnd::PortLost:
        return QStringLiteral("Die Verbindung zum Handregler ging verloren.");
    case JobEnd::NoAnswer:
        return QStringLiteral("Der Handregler antwortet nicht mehr.");
    default:
        return stopped;
    }
}

BoxText EndBox(JobEnd end, const QString &text)
{
    const bool stopped = end == JobEnd::Stopped;
    return {text, stopped ? QStringLiteral("Achtung!") : QStringLiteral("Fehler!"),
        stopped ? BoxIcon::Information : BoxIcon::Critical};
}

void ShowEndBox(JobEnd end, const QString &text)
{
    TheAsk().showBox(EndBox(end, text));
}

} // namespace hr::jobs
