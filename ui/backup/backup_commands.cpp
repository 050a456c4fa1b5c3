#include "ui/backup/backup_commands.h"

#include "jobs/backup.h"
#include "jobs/report.h"
#include "jobs/restore.h"
#include "program/branding.h"
#include "program/recent_files.h"
#include "shown/connection.h"
#include "ui/backup/backup_viewer.h"
#include "ui/backup/found_addresses.h"
#include "ui/backup/selection_window.h"
#include "ui/common/command.h"
#include "ui/common/desktop.h"

#include <QDir>

namespace hr::ui
{

namespace
{

QString Filter()
{
    return QStringLiteral("*.dds");
}

void TellOutcome(const BackupOutcome &outcome)
{
    const auto question = PartQuestion(outcome);
    if (!question) {
        ReportBackup(outcome);
        return;
    }
    const QString part = TheAsk().askYesNo(*question, false) ? KeepPart(outcome.fileName) : QString();
    if (part.isEmpty())
        return; // not wanted, or the fault has been told
    NoteRecentFile(part);
    ShowDoneBox(QStringLiteral("Was gelesen wurde, steht in %1.").arg(QDir::toNativeSeparators(part)),
        QStringLiteral("Datensicherung"));
}

} // namespace

void SaveHandheldData()
{
    const Command command;
    if (!command.ok())
        return;
    QString fileName =
        TheDesktop().saveFileName(TheBranding().saveDialogTitle, Filter(), DatedName(QStringLiteral("Handregler")));
    BackupSelection selection = ProposedSelection();
    if (fileName.isEmpty() || !AskForBackupSelection(selection))
        return;
    WriteSelection(selection);
    if (!command.connected())
        return;
    const QString handheld = HandheldName(ShownHandheld());
    const auto broken = FindBrokenOff(fileName, BackupHead(selection, handheld));
    const bool goesOn = broken && TheAsk().askYesNo(broken->question, true);
    if (broken && !command.connected()) // the port may have gone while the question was open
        return;
    if (goesOn)
        fileName = broken->fileName;
    const BackupOutcome outcome = Backup(fileName, selection, BackupMemory{handheld, goesOn});
    if (outcome.written)
        NoteRecentFile(outcome.fileName);
    TellOutcome(outcome);
    const bool worthShowing = outcome.end == JobEnd::Complete || !outcome.found.empty();
    if (selection.lokSuche && worthShowing && !BoxesAreSilent())
        ShowFoundAddresses(outcome.found);
}

void ShowBackupFile()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName = TheDesktop().openFileName(TheBranding().showDialogTitle, Filter());
    if (!fileName.isEmpty())
        OpenBackupViewer(fileName);
}

void RestoreHandheldData()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName = TheDesktop().openFileName(TheBranding().saveDialogTitle, Filter());
    if (fileName.isEmpty() || !command.mayWrite())
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

} // namespace hr::ui
