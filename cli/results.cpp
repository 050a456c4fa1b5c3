#include "cli/results.h"

#include "cli/output.h"
#include "handheld/backup/number_list.h"
#include "jobs/report.h"
#include "platform/files.h"
#include "platform/text.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace hr::cli
{

namespace
{
constexpr qint64 LargestInput = 16LL * 1024 * 1024;
const auto AsOption = QStringLiteral("als");
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
    const QString name = QDir::toNativeSeparators(fileName);
    const QFileInfo file(fileName);
    if (file.exists() && !file.isFile()) {
        Tell(QStringLiteral("%1 ist keine Datei.").arg(name));
        return {};
    }
    if (file.size() > LargestInput) {
        Tell(QStringLiteral("Die Datei %1 ist zu groß (höchstens 16 MB).").arg(name));
        return {};
    }
    auto content = ReadSmallFile(fileName, LargestInput);
    if (!content)
        Tell(QStringLiteral("Die Datei %1 kann nicht gelesen werden.").arg(name));
    return content;
}

bool WritesKind(const Call &call, const QString &fileName, const QString &ending)
{
    const auto endsAs = [&fileName](
                            const QString &kind) { return fileName.endsWith(u'.' + kind, Qt::CaseInsensitive); };
    if (endsAs(ending))
        return true;
    const bool insists = call.has(AsOption) && call.value(AsOption).compare(ending, Qt::CaseInsensitive) == 0;
    if (insists && !QFileInfo::exists(fileName))
        return true;
    if (insists)
        UsageFault(QStringLiteral("%1 gibt es schon, und es ist keine .%2-Datei: Sie wird nicht ersetzt.")
                       .arg(fileName, ending));
    else
        UsageFault(QStringLiteral("%1: Der Name muss auf .%2 enden (oder --als %2).").arg(fileName, ending));
    return false;
}

QCommandLineOption AsKindOption(const QString &ending)
{
    return {AsOption, QStringLiteral("schreibt auch in eine neue Datei mit anderer Endung: --als ") + ending,
        QStringLiteral("ART")};
}

bool IsBackupArgument(const QString &fileName, const QByteArray &content)
{
    const bool isList =
        fileName.endsWith(u".csv", Qt::CaseInsensitive) || fileName.endsWith(u".json", Qt::CaseInsensitive);
    if (!isList && !content.isEmpty())
        return true;
    FileFaults(fileName,
        isList ? QStringLiteral("Sie ist eine Liste und keine Datensicherung; \"schreiben\" schreibt sie.")
               : QStringLiteral("Sie ist leer und keine Datensicherung."));
    return false;
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
