#include "jobs/report.h"

#include "handheld/backup/number_list.h"
#include "program/ask.h"

#include <QStringList>

QString RecordsText(const std::vector<RecordId> &records)
{
    QStringList lines;
    for (int kind = KindLoco; kind <= LastKind; ++kind) {
        std::vector<int> numbers;
        for (const RecordId &id : records) {
            if (id.kind == kind)
                numbers.push_back(id.number);
        }
        const QString list =
            KindOf(kind).numbered ? QStringLiteral(": ") + ShortList(numbers, QStringLiteral("\r     ")) : QString();
        if (!numbers.empty())
            lines += KindOf(kind).plural + list;
    }
    return lines.isEmpty() ? QStringLiteral("keine") : lines.join(u'\r');
}

QString RecordCount(size_t count)
{
    return count == 1 ? QStringLiteral("1 Datensatz") : QStringLiteral("%1 Datensätze").arg(count);
}

QString LocoCount(size_t count)
{
    return QString::number(count) + (count == 1 ? QStringLiteral(" Lok") : QStringLiteral(" Loks"));
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

void ShowEndBox(JobEnd end, const QString &text)
{
    const bool stopped = end == JobEnd::Stopped;
    TheAsk().showBox({text, stopped ? QStringLiteral("Achtung!") : QStringLiteral("Fehler!"),
        stopped ? BoxIcon::Information : BoxIcon::Critical});
}
