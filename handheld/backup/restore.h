// Writes a backup file back into the handheld, record by record in the order of the file.
#pragma once

#include "handheld/backup/record_names.h"

struct RestoreOutcome {
    JobEnd end = JobEnd::Complete;
    std::vector<RecordId> written;
    std::vector<RecordId> doubtful; // the handheld did not answer while they were written
    std::vector<RecordId> untouched;
};

/// Checks the whole file before anything is written. A file that cannot be read or holds nothing is reported by a
/// box; a damaged one by a "Fehler!" question that names record and byte and offers to write the sound records
/// before it (default No). Nothing happens then unless the user says so (end NothingDone).
///
/// Time-outs are shown ("Timeout" box) and the writing goes on. The user can stop it between two records. What the
/// windows show (SpiBuf, current record, tables) is as before afterwards. Bytes of a loco record that the backup
/// does not hold are written as erased (0xFF).
RestoreOutcome Restore(const QString &fileName);

/// Tells the user what went differently: stop, lost port, doubtful records, and exactly which records are written.
/// No box when all went well.
void ReportRestore(const RestoreOutcome &outcome);
