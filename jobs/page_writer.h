// One page of the flash: its records are programmed together and proved.
#pragma once

#include "jobs/change.h"

struct WrittenPage {
    PageResult result;               // of the whole page
    std::vector<RecordState> states; // of its changes, in their order: Done, Differs, Doubtful or Untouched
};

/// Writes the changes, all of one page, in one page program; what nobody interprets stays as it is. With `prove` the chip
/// compares the page, and each record is read back; what differs is repeated once. What was programmed once is never
/// called untouched.
[[nodiscard]] WrittenPage WritePage(const std::vector<RecordChange> &changes, bool prove);

/// The changes by page, in the order in which the pages come first.
std::vector<std::vector<RecordChange>> ByPage(const std::vector<RecordChange> &changes);

/// Reads records; those without a sure answer are read again, five times at most, before they are given up. When so many
/// in a row had none, nobody is there any more (NoAnswer).
[[nodiscard]] Report ReadSurely(const std::vector<RecordId> &ids);
