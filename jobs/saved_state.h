// What stood in the handheld before something was written, byte for byte, and what was to be written over it: the one
// format of undo snapshots (jobs/undo_snapshot.h) and of pages under way (jobs/open_page.h).
//
// Text, UTF-8, checked lines (jobs/checked_lines.h):
//
//   handregler-vorher 1
//   handregler <type> <version> <date>
//   zeit <yyyy-MM-dd HH:mm:ss>
//   auftrag <what wrote>        "schreiben loks.csv"
//   fortschritt <file>          the journal of the job; missing where it has none
//   ersetzt <file>              the snapshot of an earlier part of the job, which this one contains
//   war <kind> <number> <hex>   a record's bytes in the flash before; whole pages stand in a file, all records of each
//   soll <kind> <number> <hex>  what the job writes there; missing for the neighbours of its records
//   ende <lines>                how many "war" and "soll" there are
#pragma once

#include "handheld/record_kinds.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>

namespace hr::jobs
{

/// A record's bytes as they lie in the flash.
struct SavedRecord {
    RecordId id;
    QByteArray bytes;
};

/// The bytes of a value; those of a loco that nobody interprets come from `beneath`.
SavedRecord SavedRecordOf(const RecordId &id, const RecordValue &value, const LocoBytes &beneath);

/// The value that such bytes are, and all bytes of a loco record; nothing for other records.
RecordValue ValueOf(const SavedRecord &record);
std::optional<LocoBytes> LocoBytesOf(const SavedRecord &record);

struct SavedState {
    QString handheld;
    QString time;
    QString command;
    QString journal;
    QString replaces;
    std::map<RecordId, QByteArray> before;
    std::map<RecordId, QByteArray> wanted;
};

QByteArray SavedStateFile(const SavedState &state);

struct ReadState {
    SavedState state;     // what is sound of it
    bool sound = false;   // all of it is
    bool foreign = false; // made by another version of the program: nothing of it is understood
};

ReadState ReadSavedState(const QByteArray &file);

/// "ist beschädigt", or that another version of the program has made it.
QString FileFault(bool foreign);

/// "1 3" and back; nothing when there is no such record.
QString IdText(const RecordId &id);
std::optional<RecordId> IdOf(const QString &text);

/// What has become of a record since such a state was saved.
enum class Since {
    AsBefore,
    AsWanted,  // what the job wrote
    Destroyed, // neither, but made of both and erased bytes: a page program that did not come to its end
    Edited     // somebody has changed it
};
Since SinceThen(const SavedState &state, const SavedRecord &now);

/// "23.11.2026 10:15".
QString ShownTime(const SavedState &state);

} // namespace hr::jobs
