#include "ui/compare/compare_commands.h"

#include "jobs/report.h"
#include "jobs/restore.h"
#include "jobs/saved_before.h"
#include "ui/common/desktop.h"
#include "ui/compare/careful_job.h"
#include "ui/compare/compare_window.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <memory>

namespace
{

std::unique_ptr<CompareWindow> compareWindow;

/// The window on a file; null where the file cannot be used.
CompareWindow *OpenOn(const QString &fileName)
{
    const auto file = LoadBackupFile(fileName);
    if (!file)
        return nullptr;
    if (!compareWindow)
        compareWindow = std::make_unique<CompareWindow>();
    compareWindow->open(*file);
    return compareWindow.get();
}

/// "23.11.2026 10:15", as the name of the file says.
QString TimeOf(const QString &fileName)
{
    const auto pattern = QStringLiteral("yyyy-MM-dd-HHmmss");
    return QDateTime::fromString(QFileInfo(fileName).fileName().left(pattern.size()), pattern)
        .toString(QStringLiteral("dd.MM.yyyy HH:mm"));
}

QString TakeBackLead(const BackupFile &file)
{
    std::vector<RecordId> ids;
    for (const DdsRecord &record : file.records)
        ids.push_back(record.id);
    return QStringLiteral("Der Handregler bekommt zurück, was vor der Änderung vom %1 darin stand:\r%2.\r(%3)\r\r")
        .arg(TimeOf(file.name), ContentText(ids), QDir::toNativeSeparators(file.name));
}

} // namespace

void CompareBackup()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName =
        TheDesktop().openFileName(QStringLiteral("Datensicherung vergleichen"), QStringLiteral("*.dds"));
    if (!fileName.isEmpty())
        OpenOn(fileName);
}

void CompareBackupWithHandheld(const QString &fileName)
{
    const Command command;
    if (!command.ok())
        return;
    if (CompareWindow *window = OpenOn(fileName))
        window->compareWithHandheld(command);
}

void TakeBackLastChange()
{
    const Command command;
    if (!command.ok())
        return;
    const QString title = QStringLiteral("Letzte Änderung zurücknehmen");
    const QString fileName = LastSavedBefore();
    if (fileName.isEmpty()) {
        TheAsk().showBox({QStringLiteral("Es gibt nichts zurückzunehmen."), title, BoxIcon::Information});
        return;
    }
    const auto file = LoadBackupFile(fileName);
    if (!file || !command.connected())
        return;
    const CarefulJob job{
        {}, {}, RestorePlan(file->records).steps, {true, true, true, true}, title, TakeBackLead(*file)};
    if (RunCarefully(command, job).complete)
        MarkAsTakenBack(fileName);
}

void ResetCompareWindow()
{
    compareWindow.reset();
}
