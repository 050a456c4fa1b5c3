// Which pages of the loco records are empty, asked of the chip: an empty page is loaded into its buffer 1 once, and page
// after page is compared with it, three messages for eight records.
//
// Nothing is taken on trust. The way begins with a page that was read and is empty; that page must then compare equal, and
// one that was read and holds something must compare different. A compare without a sure answer is a doubt: that page is
// read, the proof is made anew, and after three doubts the chip is not asked any more. Every 64th equal page, and the last
// one, is read as well: what the chip has said since the last such sample counts only when it is empty.
//
// Nobody else may load buffer 1 meanwhile: not for plans that write.
#pragma once

#include "handheld/neighbour_read.h"

namespace hr::jobs
{

class EmptyPages
{
public:
    /// A page (eight loco records, number = loco address / 8) was read, all of it and surely.
    void pageWasRead(int page, bool empty);

    /// Asks the chip about a page; true when it says that the page is empty. Three messages, more where the proof is due.
    [[nodiscard]] bool saysEmpty(int page);

    /// True when enough has been said on trust.
    [[nodiscard]] bool sampleDue() const { return saidSinceSample >= PagesPerSample; }

    /// Reads the page about which the chip spoke last. False: it lied, and is not asked any more.
    [[nodiscard]] bool sampleIsEmpty();

    static constexpr int PagesPerSample = 64;

private:
    bool prove();
    bool proveByCompares();
    bool knowsUsedPage();
    void doubt();

    static constexpr int None = -1;
    int reference = None;   // an empty page
    int usedAddress = None; // any flash address in a page that is not empty
    bool proven = false;    // the reference is in buffer 1, and the chip answers truly
    int doubts = 0;
    int strange = 0;      // pages in a row that compared different and were read as empty
    int lastAsked = None; // and said to be different
    int lastEmpty = None; // said to be empty
    int saidSinceSample = 0;
};

} // namespace hr::jobs
