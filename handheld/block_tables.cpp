#include "handheld/block_tables.h"

#include "handheld/flash_map.h"
#include "handheld/transfer.h"
#include "platform/run_control.h"
#include "platform/world.h"

#include <algorithm>

std::array<int, 513> FsDaten{};
std::array<int, 2601> MagZuordDaten{};
std::array<int, 513> MagListeDaten{};

namespace
{

constexpr int BlockCount = 4; // routes and accessory list are moved in four blocks

/// How a table of one page is moved.
struct PageTable {
    int pageAddress;
    int firstOffset; // of the table in its page
    int blockSize;
    int lastSlice; // the message that starts the execution
};
constexpr PageTable Routes{RoutesAddress, 4, 80, 80};
constexpr PageTable MagListe{MagListeAddress, 8, 64, 80}; // its last slice carries nothing that is needed

constexpr int GroupSize = 64;
constexpr int GroupLastSlice = 60;
constexpr int GroupCount = LastAccessoryAddress / GroupSize;

int ReadPageTable(const PageTable &source, std::array<int, 513> &table)
{
    std::array<int, 513> received = table;
    int failed = 0;
    for (int k = 0; k < BlockCount && !TransferBrokenOff(); ++k) {
        const int start = k * source.blockSize;
        failed |= ReadFlash(source.pageAddress + source.firstOffset + start, source.blockSize);
        std::copy_n(SpiBuf.begin() + ReadPosition, source.blockSize, received.begin() + start);
    }
    if (TransferBrokenOff())
        return 1;
    table = received;
    return failed;
}

int WritePageTable(const PageTable &target, const std::array<int, 513> &table)
{
    const PageSequence sequence;
    int failed = 0;
    for (int k = 0; k < BlockCount && !TransferBrokenOff(); ++k) {
        const int start = k * target.blockSize;
        LayBufferWrite(target.firstOffset + start);
        std::copy_n(table.begin() + start, target.blockSize, SpiBuf.begin() + WritePosition);
        failed |= WriteSlices(target.lastSlice, WritePosition + target.blockSize);
    }
    int programStatus = 0;
    write_buf1_to_flash(target.pageAddress, programStatus);
    return failed | programStatus;
}

/// Writes `count` entries from an accessory address on into buffer 1.
int WriteGroup(int firstAccessory, int count)
{
    LayBufferWrite(PageOffset(MagZuordAddress + firstAccessory));
    std::copy_n(MagZuordDaten.begin() + firstAccessory, count, SpiBuf.begin() + WritePosition);
    return WriteSlices(count == GroupSize ? GroupLastSlice : 0, WritePosition + count);
}

/// Where the group begins that holds an accessory address and does not cross the end of its page, since buffer 1
/// wraps round to byte 0 there. The last group of the first page overlaps the one before it by one byte.
int GroupStart(int accessory)
{
    const int lastStart = accessory / FlashPageSize * FlashPageSize + FlashPageSize - GroupSize;
    return std::min(accessory, lastStart);
}

/// Writes the part of the assignment that lies in one page. `group` counts on over the pages.
int WriteAssignmentPage(int firstAccessory, int lastAccessory, int &group)
{
    const PageSequence sequence;
    const int address = MagZuordAddress + firstAccessory;
    int failed = 0;
    move_spibuf_to_buf1(address, failed);
    for (int next = firstAccessory; next <= lastAccessory && !TransferBrokenOff();) {
        TheFrontend().setProgressText(QStringLiteral("Schreibe Fahrstraßen ") + QString::number(group++));
        const int start = GroupStart(next);
        const int count = std::min(GroupSize, lastAccessory - start + 1);
        failed |= WriteGroup(start, count);
        next = start + count;
    }
    int programStatus = 0;
    write_buf1_to_flash(address, programStatus);
    return failed | programStatus;
}

} // namespace

int ReadRoutes()
{
    return ReadPageTable(Routes, FsDaten);
}

int WriteRoutes()
{
    return WritePageTable(Routes, FsDaten);
}

int ReadMagListe()
{
    return ReadPageTable(MagListe, MagListeDaten);
}

int WriteMagListe()
{
    return WritePageTable(MagListe, MagListeDaten);
}

int ReadMagZuordnung()
{
    auto received = MagZuordDaten;
    int failed = 0;
    for (int g = 0; g < GroupCount && !TransferBrokenOff(); ++g) {
        TheFrontend().setProgressText(QStringLiteral("Lese Zuordnungsdaten ") + QString::number(g));
        const int first = g * GroupSize + 1;
        failed |= ReadFlash(MagZuordAddress + first, GroupSize);
        std::copy_n(SpiBuf.begin() + ReadPosition, GroupSize, received.begin() + first);
    }
    if (TransferBrokenOff())
        return 1;
    MagZuordDaten = received;
    return failed;
}

int WriteMagZuordnung()
{
    int failed = 0;
    int group = 0;
    int first = 1;
    while (first <= LastAccessoryAddress && !TransferBrokenOff()) {
        const int pageEnd = (first / FlashPageSize + 1) * FlashPageSize - 1;
        const int last = std::min(pageEnd, LastAccessoryAddress);
        failed |= WriteAssignmentPage(first, last, group);
        first = last + 1;
    }
    return first <= LastAccessoryAddress ? 1 : failed;
}

bool TransferBrokenOff()
{
    return !Comm().isOpen() || WaitsMustEnd();
}

void ResetBlockTables()
{
    FsDaten = {};
    MagZuordDaten = {};
    MagListeDaten = {};
}
