// The one page sequence: load the page, write parts of it into buffer 1, program it.
//
// Eight records share a page, and a page that is programmed from another buffer destroys seven neighbours. So a load without
// an acknowledge is never believed, and where the page is proved one with an acknowledge neither: the chip is asked whether
// page and buffer are equal, and the load is repeated, twice at most. When the chip says that they differ, nothing is
// programmed. Only when it can't be asked at all, a single command goes on as agreed; everything else gives the page up. A
// page program is never repeated blindly: the chip is asked whether it was done, and the whole sequence is tried again from
// the load, because a handheld that was restarted has lost buffer 1.
#pragma once

#include "handheld/flash_read.h"

#include <vector>

namespace hr::handheld
{

/// One buffer write: data for a place in the page.
struct PagePart {
    int offset = 0;           // in the page, 0..511
    std::vector<quint8> data; // laid at image[4 ..]; what lies behind it in the image is sent as it is
    int lastSlice = 0;        // start index of the message that starts the execution
    int executeLength = 0;    // bytes that the handheld then clocks through the chip, the 4 of the command included
};

/// A page that is to be programmed once.
struct PageWrite {
    int address = 0;       // any address in it
    bool loadFirst = true; // false: bytes that no part lays are programmed from what buffer 1 holds
    std::vector<PagePart> parts;
};

/// What a page may be after its sequence.
enum class PageState {
    Programmed, // as it should be, acknowledged, and proved where that was wanted
    NotLoaded,  // as it was: it could not be loaded for sure
    NotWritten, // as it was: not every part reached buffer 1
    BrokenOff,  // as it was: port lost, a second handheld, or the end of the program, before it was programmed
    Unanswered, // anything: it was to be programmed, and nobody confirmed that
    Differs,    // programmed, and the chip says that it does not hold what it should
};

/// True when nothing can have changed in it.
constexpr bool IsUntouched(PageState page)
{
    return page == PageState::NotLoaded || page == PageState::NotWritten || page == PageState::BrokenOff;
}

/// What a write left behind, and at which command it ended.
struct [[nodiscard]] PageResult {
    PageState page = PageState::Programmed;
    Outcome outcome; // the first failure; done for Programmed
    [[nodiscard]] bool ok() const { return page == PageState::Programmed && outcome.ok(); }
};

/// Programs a page. A started sequence is finished even when the program ends, or not begun. A single command that goes on
/// after a time-out ends as Unanswered. A page that could not be loaded though the chip could be asked is told to the user
/// of a single command: "Der Handregler hat die Speicherseite nicht geladen. ...".
PageResult ProgramPage(SpiImage &image, const PageWrite &page, const Patience &patience);

/// Where the last message of a part with n data bytes begins, so that all of them are sent.
constexpr int LastSliceFor(int n)
{
    // The last message carries only 19 data bytes; index 4 + n - 1 must be among them.
    return (WritePosition + n) / SliceSize * SliceSize;
}

} // namespace hr::handheld
