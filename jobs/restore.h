// Writes a backup file back into the handheld, record by record in the order of the file.
#pragma once

#include "handheld/backup/dds_file.h"
#include "jobs/runner.h"

struct RestoreOutcome {
    JobEnd end = JobEnd::Complete;
    std::vector<RecordId> written;
    std::vector<RecordId> doubtful; // the handheld did not answer while they were written
    std::vector<RecordId> untouched;
};

/// The steps that write these records.
Plan RestorePlan(const std::vector<DdsRecord> &records);

/// Checks the whole file before anything is written. A file that cannot be read or holds nothing is reported by a
/// box; a damaged one by a "Fehler!" question that names record and byte and offers to write the sound records
/// before it (default No). Nothing happens then unless the user says so (end NothingDone).
///
/// Time-outs are shown ("Timeout" box) and the step is tried again; a page is never programmed from a doubtful buffer,
/// and a handheld that answers no more ends the job. The user can stop it between two records. Bytes of a loco
/// record that the backup does not hold are written as erased (0xFF).
[[nodiscard]] RestoreOutcome Restore(const QString &fileName);

/// Tells the user what went differently: stop, lost port, doubtful records, and exactly which records are written.
/// No box when all went well.
void ReportRestore(const RestoreOutcome &outcome);
