#include "cli/results.h"

#include "cli/output.h"
#include "handheld/backup/number_list.h"
#include "jobs/report.h"
#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"

#include <QDir>

namespace
{

QString KindKey(int kind)
{
    static const QStringList keys{QString(), QStringLiteral("lok"), QStringLiteral("loksymbol"),
        QStringLiteral("funktionssymbol_ein"), QStringLiteral("funktionssymbol_aus"), QStringLiteral("fahrstrassen"),
        QStringLiteral("magsymbol_gruen"), QStringLiteral("magsymbol_rot"), QStringLiteral("zuordnung"),
        QStringLiteral("magliste")};
    return keys.at(kind);
}

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
    const bool sound = IdsOf(report, RecordState::Doubtful).empty() && IdsOf(report, RecordState::Untouched).empty();
    return ExitOf(report.end, sound);
}

QJsonArray RecordsJson(const std::vector<RecordId> &records)
{
    QJsonArray array;
    for (const RecordId &id : records) {
        QJsonObject object{{QStringLiteral("art"), KindKey(id.kind)}};
        if (KindOf(id.kind).numbered)
            object.insert(QStringLiteral("nummer"), id.number);
        array += object;
    }
    return array;
}

Exit PrintReport(const Call &call, const Report &report, const QString &done, const QString &key)
{
    if (report.end != JobEnd::Complete)
        Tell(EndText(report.end, QStringLiteral("Abgebrochen.")));
    const auto finished = IdsOf(report, RecordState::Done);
    const auto empty = IdsOf(report, RecordState::Empty);
    std::vector<RecordId> doubtful;
    std::vector<RecordId> strange; // read well, but not understood and therefore left alone
    for (const JobEntry &entry : report.entries) {
        if (entry.state == RecordState::Doubtful)
            (entry.outcome.ok() ? strange : doubtful).push_back(entry.step.id);
    }
    const auto untouched = IdsOf(report, RecordState::Untouched);
    if (call.options.json) {
        PrintJson(QJsonDocument(QJsonObject{{key, RecordsJson(finished)},
            {QStringLiteral("leer"), RecordsJson(empty)}, {QStringLiteral("unsicher"), RecordsJson(doubtful)},
            {QStringLiteral("unberuehrt"), RecordsJson(untouched)},
            {QStringLiteral("unverstanden"), RecordsJson(strange)}}));
        return ExitOf(report);
    }
    PrintGroup(done, finished);
    PrintGroup(QStringLiteral("Im Handregler leer und nicht geschrieben:"), empty);
    PrintGroup(
        QStringLiteral("Unsicher, vielleicht nur zum Teil geschrieben (bitte auch die Nachbarn prüfen):"), doubtful);
    PrintGroup(QStringLiteral("Nicht geschrieben:"), untouched);
    PrintGroup(
        QStringLiteral("Nicht geschrieben, weil im Handregler etwas Unverständliches steht (vorher loeschen):"),
        strange);
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
