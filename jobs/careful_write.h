// Writing that loses nothing: what stands there is read first and saved, only what differs is written, the records of a
// page together, and what was written is proved.
#pragma once

#include "jobs/change.h"
#include "jobs/journal.h"

struct CarefulWish {
    bool onlyChanges = false; // what holds already what it should is not written
    bool verify = true;       // by the chip after each page, and read back
    bool saveBefore = true;   // whole pages, see jobs/saved_before.h
    bool takesBack = false;   // an earlier change: what stands there is saved, but is none that can be taken back
};

/// What a look at the handheld brought.
struct Look {
    JobEnd end = JobEnd::Complete;
    std::vector<RecordChange> changes;
};

/// Reads each record that the steps are about, and says what they would change.
[[nodiscard]] Look LookAt(const std::vector<Step> &steps);

// --- Going on after an earlier part ---

enum class Earlier { None, Fits, OtherJob, OtherHandheld, Damaged };

/// Is there a journal beside the file, and does it fit? Only with Fits `content` is of use.
Earlier EarlierPart(const QString &fileName, const JournalHead &head, JournalContent &content);

/// What an earlier part has done, as far as it is to be believed.
struct EarlierWork {
    std::vector<RecordId> finished;
    std::set<int> openPages;               // may be half programmed
    QString savedBefore;                   // its file; empty: there is none
    std::map<RecordId, RecordValue> saved; // of the pages that it touched, what stood there before it
};

/// Loads what the earlier part saved. Where that was taken back meanwhile, nothing counts as finished; where it is gone
/// though a page may be half programmed, the user is told that its neighbours cannot be made good.
EarlierWork EarlierWorkOf(const JournalContent &content);

/// Why an earlier part cannot be gone on with, for the user; empty for None and Fits.
QString EarlierFault(Earlier earlier, const QString &fileName);

/// The steps that are left. Where the earlier part ended in the middle of a page, its records are written again, and the
/// neighbours as they stood there before.
std::vector<Step> StepsLeft(const std::vector<Step> &steps, const EarlierWork &earlier);

/// Writes what is to be written of the changes (ToBeWritten), page by page, with one entry for each of them in the report:
/// Done, Unchanged, Empty (Nameless), Differs (after one repetition), Doubtful, or Untouched (also what is Unknown: nothing
/// is overwritten
/// that could not be read). Ends early like every writing job, and NothingDone when what stood there could not be saved
/// or the journal could not be written (the user has been told).
///
/// The journal may be missing. What the earlier part saved goes into this one's file, so that taking back takes both back.
[[nodiscard]] Report WriteCarefully(
    const std::vector<RecordChange> &changes, const CarefulWish &wish, Journal *journal, const EarlierWork &earlier);

/// Opens the journal for this part of the job: begins it, or goes on with what the earlier part left. False after a box.
[[nodiscard]] bool OpenJournal(Journal &journal, const JournalHead &head, const EarlierWork &earlier);

/// True when nothing is left to do: the journal has served.
bool IsSettled(const Report &report);
