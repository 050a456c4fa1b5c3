// Copies what the user chose from the handheld into a backup file.
//
// The records come in the order loco records (list, then search), loco symbols, function symbols, accessory symbols,
// routes, assignment, accessory list. An empty loco record gives none. A number that is listed twice is read once.
#pragma once

#include "jobs/journal.h"
#include "jobs/runner.h"
#include "jobs/selection.h"
#include "program/ask.h"

namespace hr::jobs
{

struct BackupOutcome {
    JobEnd end = JobEnd::Complete;
    QString fileName;               // that was written; the one that was wanted where none was
    bool fileExisted = false;       // there was an older backup of the wanted name
    bool written = false;           // fileName now holds what was read
    bool answersMissing = false;    // there were time-outs, not only damaged answers and strange contents
    std::vector<RecordId> saved;    // all that is in the file
    std::vector<RecordId> doubtful; // in the file all the same
    std::vector<RecordId> unread;   // loco records that seemed empty and may not be: not in the file
    std::vector<RecordId> missing;  // not read any more, in a broken-off one
    std::vector<int> found;         // addresses of the loco records that the search found
    size_t kept = 0;                // records that the journal of a broken-off backup holds
};

/// What a backup needs that can be gone on with.
struct BackupMemory {
    QString handheld;  // HandheldName(): the journal holds for this one only
    bool goOn = false; // with the records of the journal, which fits; asked again when samples of them have changed
};

/// What the journal of such a backup must say.
JournalHead BackupHead(const BackupSelection &selection, const QString &handheld);

/// A broken-off backup that can be gone on with.
struct BrokenOffBackup {
    QString fileName; // that it is to become
    BoxText question; // whether it is to be gone on with
};

/// The one that fits: of this file, else the last one under another name in the same folder (the proposed names hold the
/// date, so that yesterday's has another one).
std::optional<BrokenOffBackup> FindBrokenOff(const QString &fileName, const JournalHead &head);

/// Keeps what a broken-off backup has read as a backup file of its own, "NAME (unvollständig).dds", whose name is
/// returned. Empty when there is nothing, or (after a box) when it cannot be written.
QString KeepPart(const QString &fileName);

/// The steps of a backup. Wrong numbers are passed over.
Plan BackupPlan(const BackupSelection &selection);

/// Reads the chosen records and replaces the file when all have been read; a file of that name stays as it is until
/// then. Time-outs are shown ("Timeout" box) and the reading goes on. The user can stop it between two records.
///
/// Where an older file would be replaced by one with doubtful or without any records, the user is asked first (default
/// No); then it is written beside, with " (unvollständig)" in its name, or not at all when nothing was read.
/// A file that cannot be written is reported by a "Fehler!" box before the reading begins (end NothingDone); when
/// only the last step fails, a question offers to try it again.
///
/// With a memory each record is laid into a journal beside the file at once (jobs/journal.h), which is gone when the
/// backup is complete; a journal that can't be written is told and ends it (NothingDone).
[[nodiscard]] BackupOutcome Backup(
    const QString &fileName, const BackupSelection &selection, const std::optional<BackupMemory> &memory = {});

/// The report on a broken-off backup as the question whether its part is to be kept (KeepPart). Nothing when there is no
/// part.
std::optional<BoxText> PartQuestion(const BackupOutcome &outcome);

/// Tells the user what was saved and where, or what went differently: stop, lost port, doubtful records.
void ReportBackup(const BackupOutcome &outcome);

} // namespace hr::jobs
