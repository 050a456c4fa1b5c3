// Records that lie one behind the other in the flash, read together: one flash read brings 139 bytes, seven slices of the
// handheld's buffer fetch them, and what they hold of the record behind the last whole one is kept for the next read. So a
// loco record costs 3.7 messages instead of 5, a symbol half 1.8 instead of 3; an empty loco record costs only the slice that
// shows its first byte.
#pragma once

#include "handheld/record_kinds.h"

#include <span>

namespace hr::handheld
{

/// A record as it was read, with an outcome of its own.
struct RecordRead {
    RecordValue value;
    Outcome outcome;
    LocoBytes bytes{}; // of a loco record: all of them, or 0xFF of an empty one
};

class NeighbourReader
{
public:
    /// True for loco records and symbols; tables have ways of their own.
    static bool canRead(RecordKind kind);

    /// Reads the first of the records and those behind it that come with the same flash read: at least one, and none behind
    /// the first that failed, so that a lost slice makes only one doubtful. Unread bytes are
    /// 0xFF. After a failed flash read it goes on or ends as the patience says.
    std::vector<RecordRead> read(std::span<const RecordId> ids, const Patience &patience);

private:
    int keptAddress = -1;
    std::vector<quint8> kept; // sure bytes of the record that comes next
};

} // namespace hr::handheld
