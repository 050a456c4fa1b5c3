#include "cli/results.h"

#include "cli/output.h"
#include "handheld/backup/number_list.h"
#include "jobs/report.h"
#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"

#include <QDir>

#include <algorithm>

namespace
{

void PrintGroup(const QString &heading, const std::vector<RecordId> &records)
{
    if (records.empty())
        return;
    PrintLine(heading);
    PrintLine(ScreenLines(RecordsText(records)));
}

} // namespace

Exit ExitOf(JobEnd end, bool allSound)
{
    switch (end) {
    case JobEnd::Complete:
        return allSound ? Exit::Done : Exit::Incomplete;
    case JobEnd::Stopped:
    case JobEnd::ProgramEnds:
        return Exit::Stopped;
    case JobEnd::NothingDone:
        return Exit::Usage;
    case JobEnd::PortLost:
    case JobEnd::NoAnswer:
        break;
    }
    return Exit::Incomplete;
}

Exit ExitOf(const Report &report)
{
    const bool sound = std::ranges::all_of(report.entries, [](const JobEntry &entry) {
        const bool read = entry.state == RecordState::Empty && entry.step.kind != StepKind::Write;
        return read || entry.state == RecordState::Done || entry.state == RecordState::Unchanged;
    });
    return ExitOf(report.end, sound);
}

QJsonArray RecordsJson(const std::vector<RecordId> &records)
{
    QJsonArray array;
    for (const RecordId &id : records) {
        QJsonObject object{{QStringLiteral("art"), RowOf(id.kind).jsonKey}};
        if (RowOf(id.kind).numbered)
            object.insert(QStringLiteral("nummer"), id.number);
        array += object;
    }
    return array;
}

Exit PrintReport(const Call &call, const Report &report, const QString &done, const QString &key)
{
    if (report.end != JobEnd::Complete)
        Tell(EndText(report.end, QStringLiteral("Abgebrochen.")));
    struct Group {
        RecordState state;
        QString heading;
        QString key;
    };
    const Group groups[] = {{RecordState::Done, done, key},
        {RecordState::Unchanged, QStringLiteral("Unverändert:"), QStringLiteral("unveraendert")},
        {RecordState::Empty, QStringLiteral("Im Handregler leer und nicht geschrieben, weil der Name fehlt:"),
            QStringLiteral("leer")},
        {RecordState::Differs, QStringLiteral("Nach dem Schreiben nicht wie gewünscht:"), QStringLiteral("anders")},
        {RecordState::Doubtful,
            QStringLiteral("Unsicher, vielleicht nur zum Teil geschrieben (bitte auch die Nachbarn prüfen):"),
            QStringLiteral("unsicher")},
        {RecordState::Untouched, QStringLiteral("Nicht geschrieben:"), QStringLiteral("unberuehrt")}};
    QJsonObject object;
    for (const Group &group : groups) {
        const auto ids = IdsOf(report, group.state);
        object.insert(group.key, RecordsJson(ids));
        if (!call.options.json)
            PrintGroup(group.heading, ids);
    }
    if (call.options.json)
        PrintJson(QJsonDocument(object));
    else if (report.entries.empty())
        PrintLine(QStringLiteral("Es war nichts zu schreiben."));
    return ExitOf(report);
}

std::optional<std::vector<int>> ListArgument(const QString &text, int low, int high)
{
    const QString list = text == u"alle" ? QString(QString::number(low) + u'-' + QString::number(high)) : text;
    const QString fault = NumberListFault(list, low, high);
    if (fault.isEmpty())
        return EachNumberOnce(list);
    UsageFault(QStringLiteral("Liste \"%1\": %2").arg(text, fault));
    return {};
}

std::optional<QByteArray> ReadFileArgument(const QString &fileName)
{
    auto content = ReadWholeFile(fileName);
    if (!content)
        Tell(QStringLiteral("Die Datei %1 kann nicht gelesen werden.").arg(QDir::toNativeSeparators(fileName)));
    return content;
}

bool WriteFileArgument(const QString &fileName, const QByteArray &content)
{
    if (ReplaceFile(fileName, content))
        return true;
    ReportFileUnwritable(fileName);
    return false;
}

Exit UsageFault(const QString &text)
{
    Tell(QStringLiteral("handregler: ") + text);
    return Exit::Usage;
}

Exit FileFaults(const QString &fileName, const QString &faults)
{
    Tell(QStringLiteral("Die Datei %1 kann nicht verwendet werden:\n").arg(QDir::toNativeSeparators(fileName))
        + ScreenLines(faults));
    return Exit::Usage;
}
