// Writes a backup file back into the handheld, record by record in the order of the file.
#pragma once

#include "handheld/backup/dds_file.h"
#include "jobs/runner.h"
#include "program/ask.h"

namespace hr::jobs
{

struct RestoreOutcome {
    JobEnd end = JobEnd::Complete;
    std::vector<RecordId> written;
    std::vector<RecordId> doubtful; // the handheld did not answer while they were written
    std::vector<RecordId> untouched;
};

/// What a file offers to be written, and the question that is asked before.
struct RestoreOffer {
    std::vector<DdsRecord> records;
    BoxText question;
};

/// Checks the whole file before anything is written. A file that cannot be read or holds nothing is reported by a
/// box. The question names the file, what it holds and how long it takes; for a damaged file it names record and byte
/// and offers the sound records before it. Its default is No.
[[nodiscard]] std::optional<RestoreOffer> OfferRestore(const QString &fileName);

/// The steps that write these records.
Plan RestorePlan(const std::vector<DdsRecord> &records);

/// Time-outs are shown ("Timeout" box) and the sequence of the page is tried again; a page is never programmed from a
/// doubtful buffer, and a handheld that answers no more ends the job. The user can stop it between two records. Bytes
/// of a loco record that the backup does not hold are written as erased (0xFF).
[[nodiscard]] RestoreOutcome Restore(const std::vector<DdsRecord> &records);

/// Tells the user what was written, or what went differently: stop, lost port, doubtful records, and exactly which
/// records are written.
void ReportRestore(const RestoreOutcome &outcome);

} // namespace hr::jobs
