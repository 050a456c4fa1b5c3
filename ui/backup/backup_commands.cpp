#include "ui/backup/backup_commands.h"

#include "handheld/backup/backup.h"
#include "handheld/backup/restore.h"
#include "handheld/discovery.h"
#include "link/branding.h"
#include "platform/run_control.h"
#include "platform/text.h"
#include "ui/backup/backup_viewer.h"
#include "ui/backup/found_addresses.h"
#include "ui/backup/selection_window.h"
#include "ui/progress.h"
#include "ui/shown_record.h"

namespace
{

QString Filter()
{
    return QStringLiteral("*.dds");
}

BackupOutcome RunBackup(const QString &fileName, const BackupSelection &selection)
{
    const ShownRecord shown;
    const Progress progress(QStringLiteral("Datensicherung"));
    return Backup(fileName, selection);
}

RestoreOutcome RunRestore(const QString &fileName)
{
    const ShownRecord shown;
    const Progress progress(QStringLiteral("Datensicherung zurückschreiben"));
    return Restore(fileName);
}

} // namespace

void SaveHandheldData()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const QString fileName = TheFrontend().saveFileName(TheBranding().saveDialogTitle, Filter());
    BackupSelection selection = ReadSelection();
    if (fileName.isEmpty() || !AskForBackupSelection(selection))
        return;
    WriteSelection(selection);
    if (!HandheldConnected())
        return;
    const BackupOutcome outcome = RunBackup(fileName, selection);
    ReportBackup(outcome);
    const bool worthShowing = outcome.end == JobEnd::Complete || !outcome.found.empty();
    if (selection.lokSuche && worthShowing && !BoxesAreSilent())
        ShowFoundAddresses(outcome.found);
}

void ShowBackupFile()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const QString fileName = TheFrontend().openFileName(TheBranding().showDialogTitle, Filter());
    if (!fileName.isEmpty())
        OpenBackupViewer(fileName);
}

void RestoreHandheldData()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const QString fileName = TheFrontend().openFileName(TheBranding().saveDialogTitle, Filter());
    if (!fileName.isEmpty() && HandheldConnected())
        ReportRestore(RunRestore(fileName));
}

void ResetBackupWindows()
{
    ResetFoundAddresses();
    ResetBackupViewer();
}
