#include "cli/results.h"

#include "cli/output.h"
#include "handheld/backup/number_list.h"
#include "jobs/report.h"
#include "platform/files.h"
#include "platform/text.h"

#include <QDir>

#include <algorithm>

namespace hr::cli
{

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

bool AgreesToGoOn(const Call &call, const BoxText &question, bool defaultYes)
{
    if (!call.options.yes)
        return TheAsk().askYesNo(question, defaultYes);
    Tell(ScreenLines(question.text) + QStringLiteral(" Nein: Das tut nur --fortsetzen. Es wird von vorn begonnen."));
    return false;
}

} // namespace hr::cli
