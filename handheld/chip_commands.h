// The commands by which the handheld's dataflash is driven.
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
// Every command is one message (see link/exchange.h).
#pragma once

#include "link/exchange.h"

namespace hr::handheld
{

/// The handheld's SPI buffer as the PC sees it, index 0..512, one byte value each. A sequence works on an image that
/// its caller owns, because bytes that nobody lays are programmed from what the image holds.
constexpr int SpiBufSize = 513;
using SpiImage = std::array<quint8, SpiBufSize>;

constexpr int ReadPosition = 8;  // first data byte in the image after a read
constexpr int WritePosition = 4; // first data byte in the image for a write
constexpr int SliceSize = 20;
constexpr int MaxSliceStart = 127;
constexpr int LongestRead = 139; // flash bytes of one read that read-backs can reach

/// How a transfer deals with answers that do not come. One value for reads and writes.
struct Patience {
    Tells tells = Tells::Yes; // each time-out in a box "Timeout" (critical) that is titled with the command's name
    bool goesOn = true;       // after a time-out, with the remaining steps
    int sequences = 1;        // tries of a whole page sequence; not after a page that could not be loaded
    bool verifies = false;    // the chip compares page and buffer after each load and program (3 messages more each)
    bool keepsRest = false; // pages that the agreed commands do not load first are loaded too: their other bytes stay

    static const Patience Agreed;   // a single command of the user
    static const Patience Job;      // a job whose time-outs are told: gives up before a page is in doubt
    static const Patience Quiet;    // the same without boxes: its owner tries again, and tells at the end
    static const Patience Verified; // the same, and every page is proved

    /// The same without boxes, ended by the first failure.
    [[nodiscard]] constexpr Patience quiet() const { return {Tells::No, false, sequences, verifies, keepsRest}; }
    bool operator==(const Patience &) const = default;
};
inline constexpr Patience Patience::Agreed{};
inline constexpr Patience Patience::Job{Tells::Yes, false, 2, false};
inline constexpr Patience Patience::Quiet{Tells::No, false, 4, false, true};
inline constexpr Patience Patience::Verified{Tells::No, false, 4, true, true};

/// Reads count flash bytes from a byte address into the handheld's buffer, from index 8 on. Index 8 + count - 1
/// must not exceed 146, the last byte a read-back can reach.
Outcome read_flash_to_spibuf(int address, int count, const Patience &patience = Patience::Agreed);

/// Reads 20 bytes of the handheld's buffer into image[start .. start + 19]; start is 0..127. The image stays as it is
/// when no answer came. Damaged: bytes that came twice with a wrong checksum are taken and doubtful.
Outcome read_spibuf(SpiImage &image, int start, const Patience &patience = Patience::Agreed);

/// Writes image[start .. start + 19] to the handheld's buffer; start is 0..127. With an execute length other than
/// 0 the twentieth byte is that length instead of data, and the handheld clocks so many bytes through the chip.
Outcome write_to_spibuf(
    const SpiImage &image, int start, int executeLength, const Patience &patience = Patience::Agreed);

/// Loads the page that holds the address into the chip's buffer 1.
Outcome move_spibuf_to_buf1(int address, const Patience &patience = Patience::Agreed);

/// Programs buffer 1 into the page that holds the address. Its time-out box is titled "move_spibuf_to_buf1".
Outcome write_buf1_to_flash(int address, const Patience &patience = Patience::Agreed);

/// Asks the chip whether a page and buffer 1 are equal (3 messages). Shows no box.
Result<bool> PageEqualsBuffer1(int address);

/// The buffer-write command for an offset in the page, laid in front of the data.
void LayBufferWrite(SpiImage &image, int pageOffset);

/// True when nothing more can be transferred: the port is closed or lost, two handhelds answer, or the program is ending.
bool TransferBrokenOff();

} // namespace hr::handheld
