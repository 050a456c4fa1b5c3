#include "ui/backup/backup_commands.h"

#include "jobs/backup.h"
#include "jobs/restore.h"
#include "program/branding.h"
#include "program/recent_files.h"
#include "ui/backup/backup_viewer.h"
#include "ui/backup/found_addresses.h"
#include "ui/backup/selection_window.h"
#include "ui/common/command.h"
#include "ui/common/windows.h"

namespace
{

QString Filter()
{
    return QStringLiteral("*.dds");
}

} // namespace

void SaveHandheldData()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName =
        TheWindows().saveFileName(TheBranding().saveDialogTitle, Filter(), DatedName(QStringLiteral("Handregler")));
    BackupSelection selection = ReadSelection();
    if (fileName.isEmpty() || !AskForBackupSelection(selection))
        return;
    WriteSelection(selection);
    if (!command.connected())
        return;
    const BackupOutcome outcome = Backup(fileName, selection);
    if (outcome.written)
        NoteRecentFile(outcome.fileName);
    ReportBackup(outcome);
    const bool worthShowing = outcome.end == JobEnd::Complete || !outcome.found.empty();
    if (selection.lokSuche && worthShowing && !BoxesAreSilent())
        ShowFoundAddresses(outcome.found);
}

void ShowBackupFile()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName = TheWindows().openFileName(TheBranding().showDialogTitle, Filter());
    if (!fileName.isEmpty())
        OpenBackupViewer(fileName);
}

void RestoreHandheldData()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName = TheWindows().openFileName(TheBranding().saveDialogTitle, Filter());
    if (fileName.isEmpty() || !command.connected())
        return;
    const auto offer = OfferRestore(fileName);
    if (offer)
        NoteRecentFile(fileName);
    if (offer && command.confirmed(offer->question, false))
        ReportRestore(Restore(offer->records));
}

void ResetBackupWindows()
{
    ResetFoundAddresses();
    ResetBackupViewer();
}
