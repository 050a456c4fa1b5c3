// The handheld's serial dataflash of the AT45 family: 8192 pages of 512 bytes and one SRAM page buffer ("buffer 1").
//
// Commands (bytes clocked in one chip select):
//   0xE8  A23-16 A15-8 A7-0  4 dummy bytes  data out...   continuous read, goes on across pages, wraps at the end
//   0x53  A23-16 A15-8 x                                  page to buffer 1
//   0x84  x  (bit 0 = offset bit 8)  offset 7-0  data...  buffer 1 write, wraps at the buffer's end
//   0x83  A23-16 A15-8 x                                  buffer 1 to page with built-in erase
//   0x60  A23-16 A15-8 x                                  compare page with buffer 1; the result stands in the status
//   0xD7  status out...                                   bit 7 = ready, bit 6 = page and buffer differed, 0x34 = size
// While the chip is busy it ignores commands, except for the status. Where it drives no data its
// output floats high and reads 0xFF.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <array>
#include <span>
#include <vector>

namespace hr::sim
{

inline constexpr int PageSize = 512;
inline constexpr int PageCount = 8192;
inline constexpr int FlashSize = PageSize * PageCount;

/// All that the chip knows.
struct DataflashState {
    std::vector<quint8> memory = std::vector<quint8>(FlashSize, 0xFF); // index = byte address
    std::array<quint8, PageSize> buffer1{};                            // undefined after power-on in the real chip
    std::vector<int> wear = std::vector<int>(PageCount, 0);            // erase cycles of each page
    std::array<int, 256> executed{};                                   // index = opcode: accepted commands
    int ignored = 0;          // commands that came while the chip was busy, were cut short or unknown
    int programmingPage = -1; // page of the last program command
    bool differs = false;     // result of the last compare
    qint64 busyUntilUs = 0;
};

class Dataflash
{
public:
    DataflashState state;

    Dataflash() = default;

    /// One chip select: the bytes go to the chip one by one, those that come back replace them in place.
    void clock(std::span<quint8> bytes, qint64 nowUs);

    /// The supply fails at this moment: a page that is being programmed stays half programmed (first half new,
    /// second half erased), buffer 1 is lost.
    void cutPower(qint64 nowUs);

    /// Keeps the memory in a file (raw image, 4 MiB). An image of the right size is loaded, otherwise the file is
    /// created with the present memory. False when the file cannot be read or written: memory only then.
    bool keepIn(const QString &path);

    /// Test doors: no time passes, no wear, the file is not touched. Addresses 0..FlashSize-1.
    [[nodiscard]] QByteArray bytes(int address, int count) const;
    void setBytes(int address, const QByteArray &content);

private:
    void read(std::span<quint8> bytes, int address) const;
    void loadBuffer(int page, qint64 nowUs);
    void writeBuffer(std::span<const quint8> data, int offset);
    void program(int page, qint64 nowUs);
    void compare(int page, qint64 nowUs);
    void readStatus(std::span<quint8> bytes, qint64 nowUs) const;
    void savePage(int page);
    [[nodiscard]] bool run(std::span<quint8> bytes, qint64 nowUs);

    QFile file;
};

} // namespace hr::sim
