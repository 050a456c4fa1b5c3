// Reads the records of a plan the quick way: neighbours together (handheld/neighbour_read.h), and a search over many locos by
// asking the chip for the pages that are empty (jobs/empty_pages.h). What comes out is the same as one by one.
#pragma once

#include "jobs/empty_pages.h"
#include "jobs/runner.h"

#include <map>
#include <set>
#include <utility>

namespace hr::jobs
{

/// True for the steps that only read.
bool OnlyReads(const Step &step);

/// In messages, as far as it can be told beforehand: most records that are looked for are empty.
double CostOfReading(const Step &step, bool asksChip);

class RecordReader
{
public:
    /// The plan outlives the reader.
    explicit RecordReader(const Plan &wholePlan);

    /// Reads a step's record into its entry. False: the chip says that it is empty, and that is not proved yet.
    [[nodiscard]] bool read(size_t index, JobEntry &entry);

    /// What the chip said, once it is due to be proved, and at the end in any case: the steps of which it was true, or which
    /// must be read after all.
    struct Checked {
        std::vector<size_t> proved;
        std::vector<size_t> refuted;
    };
    [[nodiscard]] Checked check(bool atEnd);

    /// What is still not proved, and never will be.
    [[nodiscard]] std::vector<size_t> dropUnproved() { return std::exchange(unproved, {}); }

    /// Reads it without asking the chip: what was refuted.
    void readAnyway(size_t index, JobEntry &entry);

    /// Something was written: what is known of the flash may not be true any more.
    void forget() { neighbours = {}; }

    [[nodiscard]] bool asksChip() const { return chipIsAsked; }

private:
    [[nodiscard]] const Step &step(size_t index) const { return plan.steps.at(index); }
    [[nodiscard]] bool chipSaysEmpty(size_t index);
    [[nodiscard]] std::vector<RecordId> groupFrom(size_t index) const;
    void take(JobEntry &entry, const RecordRead &read);
    void notePage(int loco, RecordState state);

    const Plan &plan;
    const bool chipIsAsked;
    SpiImage image{};
    NeighbourReader neighbours;
    std::map<size_t, RecordRead> ahead; // read with a neighbour before their turn
    EmptyPages pages;
    int askedPage = -1;
    bool askedPageEmpty = false;
    std::vector<size_t> unproved; // steps of which only the chip says that they are empty
    int readPage = -1;            // of the last loco that was read
    std::set<int> emptyOfPage;    // locos of it that are empty without a doubt
};

} // namespace hr::jobs
