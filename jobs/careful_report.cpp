#include "jobs/careful_report.h"

#include "jobs/report.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace hr::jobs
{

namespace
{

bool IsAmong(const std::vector<RecordId> &records, const RecordId &id)
{
    return std::ranges::find(records, id) != records.end();
}

std::vector<RecordId> Without(std::vector<RecordId> records, const std::vector<RecordId> &others)
{
    std::erase_if(records, [&](const RecordId &id) { return IsAmong(others, id); });
    return records;
}

QString InOneLine(const std::vector<RecordId> &records)
{
    return RecordsText(records).replace(u'\r', QStringLiteral("; "));
}

} // namespace

bool IsSettled(const CarefulReport &report)
{
    return report.job.end == JobEnd::Complete && report.unproved.empty()
        && std::ranges::all_of(report.job.entries, [](const JobEntry &entry) {
               return entry.state == RecordState::Done || entry.state == RecordState::Unchanged
                   || entry.state == RecordState::Empty;
           });
}

std::vector<ReportGroup> ReportGroups(const CarefulReport &report, const QString &done, const QString &doneKey)
{
    const auto in = [&report](RecordState state) { return IdsOf(report.job, state); };
    const auto untouched = Without(Without(in(RecordState::Untouched), report.edited), report.unreadable);
    return {{QStringLiteral("wiederhergestellt"), QStringLiteral("Wiederhergestellt:"), report.restored},
        {doneKey, done, in(RecordState::Done)},
        {QStringLiteral("schon_geschrieben"), QStringLiteral("Schon geschrieben:"), report.already},
        {QStringLiteral("unveraendert"), QStringLiteral("Unverändert:"),
            Without(in(RecordState::Unchanged), report.already)},
        {QStringLiteral("leer"), QStringLiteral("Im Handregler leer und nicht geschrieben, weil der Name fehlt:"),
            in(RecordState::Empty)},
        {QStringLiteral("seither_geaendert"), QStringLiteral("Seither geändert und so gelassen:"), report.edited},
        {QStringLiteral("anders"), QStringLiteral("Nach dem Schreiben nicht wie gewünscht:"),
            in(RecordState::Differs)},
        {QStringLiteral("unsicher"),
            QStringLiteral("Unsicher, vielleicht nur zum Teil geschrieben (bitte auch die Nachbarn prüfen):"),
            in(RecordState::Doubtful)},
        {QStringLiteral("unlesbar"),
            QStringLiteral("Nicht geschrieben, weil ihre Speicherseite nicht sicher gelesen wurde:"),
            report.unreadable},
        {QStringLiteral("unberuehrt"), QStringLiteral("Nicht geschrieben:"), untouched}};
}

QStringList ReportAdvice(const CarefulReport &report)
{
    QStringList advice;
    if (!IdsOf(report.job, RecordState::Done).empty() && report.unproved.empty())
        advice += report.proves ? QStringLiteral("Geprüft: Was geschrieben ist, wurde zurückgelesen und stimmt.")
                                : QStringLiteral("Nicht geprüft, weil es so gewünscht war.");
    if (!report.unproved.empty())
        advice += QStringLiteral("Nicht bewiesen ist, was jetzt hier steht: %1.\rWas vorher dort stand, ist "
                                 "aufbewahrt: Das nächste Schreiben in diesen Handregler bietet an, es zuerst "
                                 "wiederherzustellen.")
                      .arg(InOneLine(report.unproved));
    if (report.goesOn)
        advice += QStringLiteral("Was noch fehlt, wird beim nächsten Schreiben dieser Datei fortgesetzt.");
    if (!report.snapshot.isEmpty())
        advice += QStringLiteral("Was vorher dort stand, ist gesichert und kann zurückgenommen werden: %1")
                      .arg(QDir::toNativeSeparators(report.snapshot));
    return advice;
}

QString ReportText(const CarefulReport &report)
{
    QStringList parts;
    for (const ReportGroup &group : ReportGroups(report, QStringLiteral("Geschrieben:"), {})) {
        if (!group.records.empty())
            parts += group.heading + u'\r' + RecordsText(group.records);
    }
    if (parts.isEmpty())
        parts += QStringLiteral("Es war nichts zu schreiben.");
    return (parts + ReportAdvice(report)).join(QStringLiteral("\r\r"));
}

std::vector<RecordChange> AfterWriting(std::vector<RecordChange> changes, const CarefulReport &report)
{
    for (size_t i = 0; i < changes.size() && i < report.job.entries.size(); ++i) {
        RecordChange &change = changes.at(i);
        const RecordState state = report.job.entries.at(i).state;
        if (state == RecordState::Done) {
            change.present = change.wanted;
            change.change = Change::Unchanged;
        } else if (state == RecordState::Differs || state == RecordState::Doubtful) {
            change.present.reset();
            change.change = Change::Unknown;
        }
    }
    return changes;
}

} // namespace hr::jobs
