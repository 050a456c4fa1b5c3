#include "handheld/block_tables.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace hr::handheld
{

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

bool EndsTable(const Outcome &outcome, const Patience &patience)
{
    return outcome.brokenOff() || EndsStep(outcome, patience);
}

template <typename Table>
Result<Table> ReadPageTable(SpiImage &image, const PageTable &source, const Patience &patience)
{
    Result<Table> read;
    for (int k = 0; k < BlockCount && !EndsTable(read.outcome, patience); ++k) {
        const int start = k * source.blockSize;
        read.outcome.keep(
            ReadFlash(image, source.pageAddress + source.firstOffset + start, source.blockSize, patience));
        std::copy_n(image.begin() + ReadPosition, source.blockSize, read.value.begin() + start);
    }
    return read;
}

template <typename Table>
PageResult WritePageTable(SpiImage &image, const PageTable &target, const Table &table, const Patience &patience)
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

Result<Routes> ReadRouteTable(SpiImage &image, const Patience &patience)
{
    return ReadPageTable<Routes>(image, RouteTable, patience);
}

PageResult WriteRouteTable(SpiImage &image, const Routes &routes, const Patience &patience)
{
    return WritePageTable(image, RouteTable, routes, patience);
}

Result<AccessoryList> ReadAccessoryList(SpiImage &image, const Patience &patience)
{
    return ReadPageTable<AccessoryList>(image, ListTable, patience);
}

PageResult WriteAccessoryList(SpiImage &image, const AccessoryList &list, const Patience &patience)
{
    return WritePageTable(image, ListTable, list, patience);
}

Result<Assignment> ReadAssignment(SpiImage &image, const std::function<void(int)> &onGroup, const Patience &patience)
{
    Result<Assignment> read;
    for (int g = 0; g < GroupCount && !EndsTable(read.outcome, patience); ++g) {
        onGroup(g);
        // From one byte behind the boundary: byte 0x0E0000 + a belongs to address a, and address 0 does not exist.
        read.outcome.keep(ReadFlash(image, MagZuordAddress + 1 + g * GroupSize, GroupSize, patience));
        std::copy_n(image.begin() + ReadPosition, GroupSize, read.value.begin() + std::ptrdiff_t{g} * GroupSize);
    }
    return read;
}

PageResult WriteAssignment(SpiImage &image, const Assignment &assignment, const Patience &patience)
{
    PageResult result;
    for (int first = 1; first <= LastAccessoryAddress;) {
        const int pageEnd = (first / FlashPageSize + 1) * FlashPageSize - 1;
        const int last = std::min(pageEnd, LastAccessoryAddress);
        const PageResult page = ProgramPage(image, AssignmentPage(assignment, first, last), patience);
        result.outcome.keep(page.outcome);
        if (!page.ok()) // after the first page "nothing was written" would be untrue
            result.page = first > 1 && IsUntouched(page.page) ? PageState::Unanswered : page.page;
        if (IsUntouched(page.page) || EndsTable(result.outcome, patience))
            return result;
        first = last + 1;
    }
    return result;
}

} // namespace hr::handheld
