#include "handheld/block_tables.h"

#include "handheld/flash_map.h"

#include <algorithm>

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
constexpr PageTable RouteTable{RoutesAddress, 4, 80, 80};
constexpr PageTable ListTable{MagListeAddress, 8, 64, 80}; // its last slice carries nothing that is needed

constexpr int GroupSize = 64;
constexpr int GroupLastSlice = 60;
constexpr int GroupCount = LastAccessoryAddress / GroupSize;

template <typename Table> Result<Table> ReadPageTable(SpiImage &image, const PageTable &source)
{
    Result<Table> read;
    for (int k = 0; k < BlockCount && !read.outcome.brokenOff(); ++k) {
        const int start = k * source.blockSize;
        read.outcome.keep(ReadFlash(image, source.pageAddress + source.firstOffset + start, source.blockSize));
        std::copy_n(image.begin() + ReadPosition, source.blockSize, read.value.begin() + start);
    }
    return read;
}

template <typename Table>
Outcome WritePageTable(SpiImage &image, const PageTable &target, const Table &table, Patience patience)
{
    // The page holds nothing else that the tool uses; it is not loaded first.
    PageWrite page{target.pageAddress, false, {}};
    for (int k = 0; k < BlockCount; ++k) {
        const int start = k * target.blockSize;
        const auto first = table.begin() + start;
        page.parts.push_back({target.firstOffset + start, {first, first + target.blockSize}, target.lastSlice,
            WritePosition + target.blockSize});
    }
    return ProgramPage(image, page, patience);
}

/// Where the group begins that holds an accessory address and does not cross the end of its page, since buffer 1
/// wraps round to byte 0 there. The last group of the first page overlaps the one before it by one byte.
int GroupStart(int accessory)
{
    const int lastStart = accessory / FlashPageSize * FlashPageSize + FlashPageSize - GroupSize;
    return std::min(accessory, lastStart);
}

/// The part of the assignment that lies in one page.
PageWrite AssignmentPage(const Assignment &assignment, int firstAccessory, int lastAccessory)
{
    PageWrite page{MagZuordAddress + firstAccessory, true, {}};
    for (int next = firstAccessory; next <= lastAccessory;) {
        const int start = GroupStart(next);
        const int count = std::min(GroupSize, lastAccessory - start + 1);
        const auto first = assignment.begin() + start - 1;
        page.parts.push_back({PageOffset(MagZuordAddress + start), {first, first + count},
            count == GroupSize ? GroupLastSlice : 0, WritePosition + count});
        next = start + count;
    }
    return page;
}

} // namespace

Result<Routes> ReadRouteTable(SpiImage &image)
{
    return ReadPageTable<Routes>(image, RouteTable);
}

Outcome WriteRouteTable(SpiImage &image, const Routes &routes, Patience patience)
{
    return WritePageTable(image, RouteTable, routes, patience);
}

Result<AccessoryList> ReadAccessoryList(SpiImage &image)
{
    return ReadPageTable<AccessoryList>(image, ListTable);
}

Outcome WriteAccessoryList(SpiImage &image, const AccessoryList &list, Patience patience)
{
    return WritePageTable(image, ListTable, list, patience);
}

Result<Assignment> ReadAssignment(SpiImage &image, const std::function<void(int)> &onGroup)
{
    Result<Assignment> read;
    for (int g = 0; g < GroupCount && !read.outcome.brokenOff(); ++g) {
        onGroup(g);
        // From one byte behind the boundary: byte 0x0E0000 + a belongs to address a, and address 0 does not exist.
        read.outcome.keep(ReadFlash(image, MagZuordAddress + 1 + g * GroupSize, GroupSize));
        std::copy_n(image.begin() + ReadPosition, GroupSize, read.value.begin() + g * GroupSize);
    }
    return read;
}

Outcome WriteAssignment(SpiImage &image, const Assignment &assignment, Patience patience)
{
    Outcome outcome;
    for (int first = 1; first <= LastAccessoryAddress;) {
        const int pageEnd = (first / FlashPageSize + 1) * FlashPageSize - 1;
        const int last = std::min(pageEnd, LastAccessoryAddress);
        const Outcome page = ProgramPage(image, AssignmentPage(assignment, first, last), patience);
        if (page.how() == End::GivenUp) // after the first page "nothing was written" would be untrue
            return first == 1 ? page : Outcome(End::NoAnswer, page.at());
        outcome.keep(page);
        if (outcome.brokenOff() || (patience != Patience::Agreed && !outcome.ok()))
            return outcome;
        first = last + 1;
    }
    return outcome;
}
