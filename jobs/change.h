// What a write would change, or what two sources of records have different: computed from values, before anything is
// done.
#pragma once

#include "handheld/backup/dds_file.h"
#include "jobs/runner.h"
#include "jobs/saved_state.h"

#include <QStringList>

#include <map>

namespace hr::jobs
{

enum class Change {
    New,       // nothing stands there yet
    Changed,   // the same loco with other data; a picture or table with other content
    OtherLoco, // another loco stands there and is overwritten: name and symbol or functions differ
    Emptied,   // what stands there is deleted
    Unchanged,
    Nameless,    // an empty record, and nothing says which name it is to get: it is left alone
    EditedSince, // somebody has changed it since the change that is taken back: it is left alone
    Unknown,     // what stands there was not read, or not without a doubt
};

/// "neu", "geändert", "überschreibt eine andere Lok", ...
QString ChangeText(Change change);

/// One field of a record, in words for the user: "Name", "E94", "E 94"; in a table with its entry: "Fahrstraße 3".
struct FieldChange {
    QString entry; // empty for what is no table
    QString field;
    QString from;
    QString to;

    /// "Name", "Fahrstraße 3, Rückmelder"
    [[nodiscard]] QString name() const
    {
        return entry.isEmpty() ? field : QString(entry + QStringLiteral(", ") + field);
    }
};

struct RecordChange {
    RecordId id;
    Change change = Change::Unknown;
    RecordValue wanted;
    std::optional<RecordValue> present;     // as read; an empty loco record has an empty name
    std::optional<LocoBytes> presentBytes;  // of a loco record that is not empty
    std::optional<LocoBytes> wantedBytes{}; // of a loco record that is to be the same to the byte
};

/// The bytes in the flash of what stands there, as far as it was read, and of what is to stand there. An empty loco record
/// counts as erased: its first byte alone says that it is empty.
std::optional<SavedRecord> PresentRecord(const RecordChange &change);
SavedRecord WantedRecord(const RecordChange &change);

/// The same of what was read for sure, also where it is not understood.
std::optional<SavedRecord> ReadRecordOf(const JobEntry &entry);

/// What becomes different, field by field; tables entry by entry; pictures by how many pixels differ. Empty when nothing
/// does.
std::vector<FieldChange> FieldChanges(const RecordValue &from, const RecordValue &to);

/// The changes in one line: "Name: E94 → E 94; f3: Symbol 7 → 8", "Fahrstraße 3: Rückmelder 77 → 17, Auslösung besetzt →
/// frei".
QString FieldsText(const RecordChange &change);

/// What a change is, from the values.
Change ChangeOf(const std::optional<RecordValue> &present, const RecordValue &wanted);

/// The steps of a write (Write, Merge, Delete) beside what a reading job (Read) found.
std::vector<RecordChange> ChangesOf(const std::vector<Step> &steps, const Report &present);

/// Two files side by side, each as the steps that write it: the records of both, each once, in the order of the
/// first and then of the second. `present` is the first one's, `wanted` the second one's. What only the second one
/// has is New, what only the first one has is Emptied.
std::vector<RecordChange> Differences(const std::vector<Step> &first, const std::vector<Step> &second);

/// The pages that would be programmed, and about how long that takes at the measured speed.
size_t PagesOf(const std::vector<RecordChange> &changes);
double SecondsOf(const std::vector<RecordChange> &changes, bool verify);

/// Those that would be written: what differs or is not known, or all; never what is Nameless, and what was edited since only
/// when all is wanted.
enum class Written { Changes, All };
std::vector<RecordChange> ToBeWritten(const std::vector<RecordChange> &changes, Written which);

} // namespace hr::jobs
