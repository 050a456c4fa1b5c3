// One page of the flash: its records are programmed together and proved.
#pragma once

#include "jobs/change.h"

namespace hr::jobs
{

struct WrittenPage {
    PageResult result;               // of the whole page
    std::vector<RecordState> states; // of its changes, in their order: Done, Differs, Doubtful or Untouched
    bool neighboursSound = true;     // the other records of the page hold what they held, as far as that was proved
};

/// What the other records of a page hold, by their bytes.
using Neighbours = std::map<RecordId, QByteArray>;

/// Writes the changes, all of one page, in one page program; what nobody interprets stays as it is. With `prove` the chip
/// compares the page after its load and its program, and all of it is read back, the neighbours too; what differs is
/// written once more. What was programmed once is never called untouched.
[[nodiscard]] WrittenPage WritePage(
    const std::vector<RecordChange> &changes, const Neighbours &neighbours, bool prove);

/// A record that is to be again what it was, to the byte.
RecordChange BackTo(const SavedRecord &was, const SavedRecord &now);

/// The changes by page, in the order in which the pages come first.
std::vector<std::vector<RecordChange>> ByPage(const std::vector<RecordChange> &changes);

/// Reads records; those without a sure answer are read again, five times at most, before they are given up. When so many
/// in a row had none, nobody is there any more (NoAnswer).
[[nodiscard]] Report ReadSurely(const std::vector<RecordId> &ids);

} // namespace hr::jobs
