// Copies what the user chose from the handheld into a backup file.
//
// The records come in the order loco records (list, then search), loco symbols, function symbols, accessory symbols,
// routes, assignment, accessory list. An empty loco record gives none. A number that is listed twice is read once.
#pragma once

#include "handheld/backup/record_names.h"
#include "handheld/backup/selection.h"

struct BackupOutcome {
    JobEnd end = JobEnd::Complete;
    QString fileName;
    bool fileExisted = false;       // there was an older backup of that name
    std::vector<RecordId> doubtful; // read with a time-out; in the file all the same
    std::vector<RecordId> unread;   // loco records that timed out and seemed empty: not in the file
    std::vector<int> found;         // addresses of the loco records that the search found
};

/// Reads the chosen records and replaces the file when all have been read; a file of that name stays as it is until
/// then. Time-outs are shown ("Timeout" box) and the reading goes on. The user can stop it between two records. What
/// the windows show (SpiBuf, current record, tables) is as before afterwards.
///
/// A file that cannot be written is reported by a "Fehler!" box before the reading begins (end NothingDone); when
/// only the last step fails, a question offers to try it again.
BackupOutcome Backup(const QString &fileName, const BackupSelection &selection);

/// Tells the user what went differently: stop, lost port, doubtful records. No box when all went well.
void ReportBackup(const BackupOutcome &outcome);
