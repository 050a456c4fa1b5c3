// The commands by which the handheld's dataflash is read and written, and the sequences built of them.
//
// The PC fills the handheld's SPI buffer in slices of 20 bytes and lets the handheld clock it through the flash
// chip; what the chip answers replaces the buffer and is read back in slices of 20 bytes.
//
// Message (31 bytes): 0xED 0x1F 0x08 0x66 0x33, then five groups of a collector byte and four data bytes.
//   byte 10 bits 4-6   0x10 = clock the first N buffer bytes through the chip (N in byte 29),
//                      0x20 = answer with 20 buffer bytes from the start index, 0 = store only
//   byte 15 bit 4      bit 6 of the buffer start index
//   byte 20 bits 4-6   bits 3-5 of it
//   byte 25 bits 4-6   bits 0-2 of it
//
// Chip commands (bytes laid into the buffer, AT45 family, pages of 512 bytes, one RAM buffer "buffer 1"):
//   0xE8 A A A 0 0 0 0   continuous read, data from index 8 on
//   0x53 A A A           page to buffer 1            0x60 A A A   compare page with buffer 1
//   0x84 0 O O data      buffer 1 write              0xD7 0       status register: bit 7 ready, bit 6 = 0 equal
//   0x83 A A A           buffer 1 to page, with erase
//
// Every command is one message (see link/exchange.h). A time-out shows a box "Timeout" (critical) titled with the
// command's name; without a box it ends when the port is lost, when the program ends, and with the outcome Damaged.
//
// In the fast cadence (link/cadence.h) a step is what can be repeated from its beginning without harm, also when the
// handheld was restarted in the middle of it: a flash read with all its slices, or a whole page sequence.
#pragma once

#include "program/outcome.h"

#include <QtGlobal>

#include <array>
#include <functional>
#include <vector>

/// The handheld's SPI buffer as the PC sees it, index 0..512, one byte value each. A sequence works on an image that
/// its caller owns, because bytes that nobody lays are programmed from what the image holds.
constexpr int SpiBufSize = 513;
using SpiImage = std::array<quint8, SpiBufSize>;

constexpr int ReadPosition = 8;  // first data byte in the image after a read
constexpr int WritePosition = 4; // first data byte in the image for a write
constexpr int SliceSize = 20;
constexpr int MaxSliceStart = 127;

/// What happens after a time-out inside a page sequence. A single command of the user tells him and goes on with its
/// remaining steps, as agreed. A job tries the whole sequence again and gives up before a page is programmed from
/// a doubtful buffer. A verified job tries more often, and has the chip compare page and buffer after each program (3
/// messages): what differs is programmed once more, and then ends with the outcome Differs.
enum class Patience { Agreed, Job, Verified };

/// While one lives, time-outs show no box, and a step ends at its first failure instead of going on: its owner tries
/// again and tells the user at the end.
class SilentTransfers
{
public:
    SilentTransfers();
    ~SilentTransfers();
    SilentTransfers(const SilentTransfers &) = delete;
    SilentTransfers &operator=(const SilentTransfers &) = delete;
};

constexpr int LongestRead = 139; // flash bytes of one read that read-backs can reach

/// Reads count flash bytes from a byte address into the handheld's buffer, from index 8 on. Index 8 + count - 1
/// must not exceed 146, the last byte a read-back can reach.
Outcome read_flash_to_spibuf(int address, int count);

/// Reads 20 bytes of the handheld's buffer into image[start .. start + 19]; start is 0..127. The image stays as it is
/// when no answer came.
Outcome read_spibuf(SpiImage &image, int start);

/// Writes image[start .. start + 19] to the handheld's buffer; start is 0..127. With an execute length other than
/// 0 the twentieth byte is that length instead of data, and the handheld clocks so many bytes through the chip.
Outcome write_to_spibuf(const SpiImage &image, int start, int executeLength);

/// Loads the page that holds the address into the chip's buffer 1.
Outcome move_spibuf_to_buf1(int address);

/// Programs buffer 1 into the page that holds the address. Its time-out box is titled "move_spibuf_to_buf1".
Outcome write_buf1_to_flash(int address);

/// Asks the chip whether a page and buffer 1 are equal. Shows no box.
Result<bool> PageEqualsBuffer1(int address);

/// Runs a step. In Ticks it is `lastTry` (without one: the step), with its boxes. In the fast cadence the step is tried
/// without boxes, repeated once after a time-out, and after another one the connection falls back to Ticks.
Outcome RunStep(const std::function<Outcome()> &step, const std::function<Outcome()> &lastTry = nullptr);

/// Reads n bytes (1..128) at a flash address into image[8 ..]: one flash read, then the slices that cover them.
/// Goes on after a time-out; the outcome is the first failure.
Outcome ReadFlash(SpiImage &image, int address, int n);

/// read_spibuf with the starts first, first + 20, ... last. Goes on after a time-out.
Outcome ReadSlices(SpiImage &image, int first, int last);

/// image[4 + i] := image[8 + i] for i = 0 .. lastIndex: from read position to write position.
void MoveToWritePosition(SpiImage &image, int lastIndex);

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

/// The one page sequence: load, buffer writes, program. It is finished even when the program ends, or not begun.
///
/// A load without an acknowledge is never believed: the chip is asked whether page and buffer are equal, and the load
/// is repeated, twice at most. Eight records share a page, and a page that is programmed from another buffer destroys
/// seven neighbours. When the chip says that they differ, nothing is programmed (GivenUp, after a box). Only when it
/// can't be asked at all, a single command goes on as agreed; a job gives the page up (GivenUp). A job also tries the
/// whole sequence once more after an unanswered buffer write or page program.
Outcome ProgramPage(SpiImage &image, const PageWrite &page, Patience patience);

/// Where the last message of a part with n data bytes begins, so that all of them are sent.
constexpr int LastSliceFor(int n)
{
    // The last message carries only 19 data bytes; index 4 + n - 1 must be among them.
    return (WritePosition + n) / SliceSize * SliceSize;
}

/// True when nothing more can be transferred: the port is closed or lost, or the program is ending.
bool TransferBrokenOff();
