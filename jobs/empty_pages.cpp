#include "jobs/empty_pages.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace hr::jobs
{

namespace
{

constexpr int LocosPerPage = FlashPageSize / LocoRecordSize;
constexpr int MostDoubts = 3;
constexpr int MostStrange = 2; // pages: then one of them is the better reference

int AddressOf(int page)
{
    return page * FlashPageSize;
}

std::vector<RecordId> LocosOf(int page)
{
    return RecordsOfPage({RecordKind::Loco, qMax(page * LocosPerPage, FirstLoco)});
}

} // namespace

void EmptyPages::pageWasRead(int page, bool empty)
{
    if (!empty) {
        usedAddress = usedAddress == None ? AddressOf(page) : usedAddress;
        return;
    }
    strange = page == lastAsked ? strange + 1 : 0;
    if (reference != None && strange < MostStrange)
        return;
    reference =
        page; // pages of deleted records keep what stood behind their first bytes: they are not like the others
    proven = false;
    strange = 0;
}

void EmptyPages::doubt()
{
    ++doubts;
    proven = false; // a handheld that was restarted has lost buffer 1
}

/// Any page will do that surely holds something: the symbols' size bytes are never those of an erased page.
bool EmptyPages::knowsUsedPage()
{
    for (const int address : {LokSymbolAddress, FktSymbolAddress, TextTableAddress, SettingsAddress}) {
        SpiImage image{};
        if (usedAddress == None && ReadFlash(image, address, 1, Patience::Quiet).ok()
            && image.at(ReadPosition) != EmptyByte)
            usedAddress = address;
    }
    return usedAddress != None;
}

bool EmptyPages::proveByCompares()
{
    if (!knowsUsedPage() || !move_spibuf_to_buf1(AddressOf(reference), Patience::Quiet).ok())
        return false;
    const Result<bool> same = PageEqualsBuffer1(AddressOf(reference));
    const Result<bool> other = PageEqualsBuffer1(usedAddress);
    return same.ok() && same.value && other.ok() && !other.value;
}

bool EmptyPages::prove()
{
    if (!proven && !(proven = proveByCompares()))
        doubt();
    return proven;
}

bool EmptyPages::saysEmpty(int page)
{
    lastAsked = None;
    if (reference == None || doubts >= MostDoubts || !prove())
        return false;
    const Result<bool> equal = PageEqualsBuffer1(AddressOf(page));
    if (!equal.ok()) {
        doubt();
        return false;
    }
    if (!equal.value) {
        lastAsked = page;
        return false;
    }
    strange = 0;
    lastEmpty = page;
    ++saidSinceSample;
    return true;
}

bool EmptyPages::sampleIsEmpty()
{
    saidSinceSample = 0;
    const std::vector<RecordId> ids = LocosOf(lastEmpty);
    NeighbourReader reader;
    for (std::span<const RecordId> left(ids); !left.empty();) {
        const auto reads = reader.read(left, Patience::Quiet);
        const bool empty = std::ranges::all_of(
            reads, [](const RecordRead &read) { return read.outcome.ok() && read.bytes.front() == EmptyByte; });
        if (!empty) {
            doubts = MostDoubts;
            return false;
        }
        left = left.subspan(reads.size());
    }
    return true;
}

} // namespace hr::jobs
