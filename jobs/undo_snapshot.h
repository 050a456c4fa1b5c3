// Undo snapshots: what stood in the handheld before a job overwrote it, in konf\Sicherungen.
//
//   000012-2026-11-23-101530-vorher.bytes            can be taken back
//   000012-2026-11-23-101530-zurueckgenommen.bytes   was taken back, or stood there before that was done
//   000012-2026-11-23-101530-....dds                 the same as a backup file, for the windows and for other computers
//
// The running number says the order, because clocks are set. An older version of the program wrote .dds files without a
// number: they are the oldest ones, and can be taken back too. The last 20 that can be taken back stay, and those that an
// unfinished job needs.
#pragma once

#include "jobs/saved_state.h"

#include <QStringList>

namespace hr::jobs
{

constexpr qsizetype MostUndoSnapshots = 20;

enum class SnapshotOf {
    Change,  // can be taken back
    TakeBack // what stood there before a change was taken back
};

/// Writes a snapshot and reads it back. The name; empty when it could not be written, which the user is told.
QString SaveUndoSnapshot(const SavedState &state, SnapshotOf what);

/// Those that can be taken back, the newest first.
QStringList UndoSnapshots();

/// Its running number; 0 for one of an older version.
int SnapshotNumber(const QString &fileName);

enum class SnapshotState { Sound, TakenBack, Damaged, Gone };

struct LoadedSnapshot {
    SnapshotState is = SnapshotState::Gone;
    SavedState state;     // of a damaged one what is sound
    bool foreign = false; // made by another version of the program
};
LoadedSnapshot LoadUndoSnapshot(const QString &fileName);

/// Marks a snapshot, and those that it replaces, as taken back, so that the next one is the one before. False when a file
/// could not be renamed.
[[nodiscard]] bool MarkAsTakenBack(const QString &fileName);

/// After a job that is complete: removes the snapshot of its earlier part, which its own one contains, and the oldest ones.
void TidySnapshots(const SavedState &completed);

} // namespace hr::jobs
