#include "handheld/symbol_storage.h"

#include "handheld/flash_map.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr int PairSize = 64;
constexpr int LokLastSlice = 100; // one more than the data need: it only starts the execution
constexpr int HalfLastSlice = 20;
constexpr int ChunkSize = 64; // of the start image

/// Where a symbol lies and how it is moved.
struct Slot {
    int address;
    int lastSlice;
    bool loadFirst;
};

Slot SlotOf(SymbolKind kind, int n, int half)
{
    // A loco symbol has its page to itself, so that it need not be loaded first.
    if (kind == SymbolKind::Loco)
        return {LokSymbolAddress + n * FlashPageSize, LokLastSlice, false};
    const int base = kind == SymbolKind::Function ? FktSymbolAddress : MagSymbolAddress;
    return {base + n * PairSize + half * SymbolHalfDistance, HalfLastSlice, true};
}

PagePart StartImageChunk(const Picture &picture, int offset)
{
    const int size = std::min(ChunkSize, FlashBytesOf(StartImageGeometry) - offset);
    const auto first = picture.bytes.begin() + offset;
    return {offset, {first, first + size}, LastSliceFor(size), WritePosition + size};
}

} // namespace

Result<Picture> ReadPicture(SpiImage &image, SymbolKind kind, int n, int half, const Patience &patience)
{
    const PictureGeometry geometry = GeometryOf(kind);
    Outcome outcome = ReadFlash(image, SlotOf(kind, n, half).address, FlashBytesOf(geometry), patience);
    MoveToWritePosition(image, BackupBytesOf(kind) - 1);
    const auto first = image.begin() + WritePosition;
    return {{geometry, {first, first + BackupBytesOf(kind)}}, outcome};
}

PageResult WritePicture(
    SpiImage &image, SymbolKind kind, int n, int half, const Picture &picture, const Patience &patience)
{
    const Slot slot = SlotOf(kind, n, half);
    return ProgramPage(image, {slot.address, slot.loadFirst, {PicturePart(kind, n, half, picture)}}, patience);
}

int PictureAddress(SymbolKind kind, int n, int half)
{
    return SlotOf(kind, n, half).address;
}

PagePart PicturePart(SymbolKind kind, int n, int half, const Picture &picture)
{
    Q_ASSERT(picture.geometry == GeometryOf(kind));
    const Slot slot = SlotOf(kind, n, half);
    return {PageOffset(slot.address), picture.bytes, slot.lastSlice, WritePosition + FlashBytesOf(picture.geometry)};
}

Result<Picture> ReadStartPicture(SpiImage &image, const Patience &patience)
{
    Result<Picture> read{{StartImageGeometry, {}}, {}};
    const int bytes = FlashBytesOf(StartImageGeometry);
    for (int offset = 0; offset < bytes && !EndsStep(read.outcome, patience); offset += ChunkSize) {
        const int size = std::min(ChunkSize, bytes - offset);
        read.outcome.keep(ReadFlash(image, StartImageAddress + offset, size, patience));
        const auto first = image.begin() + ReadPosition;
        read.value.bytes.insert(read.value.bytes.end(), first, first + size);
    }
    return read;
}

PageResult WriteStartPicture(SpiImage &image, const Picture &picture, const Patience &patience)
{
    PageWrite page{StartImageAddress, true, {}};
    for (int offset = 0; offset < FlashBytesOf(StartImageGeometry); offset += ChunkSize)
        page.parts.push_back(StartImageChunk(picture, offset));
    return ProgramPage(image, page, patience);
}

} // namespace hr::handheld
