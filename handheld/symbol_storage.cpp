#include "handheld/symbol_storage.h"

#include "handheld/flash_map.h"
#include "handheld/transfer.h"
#include "platform/run_control.h"
#include "platform/world.h"

#include <algorithm>
#include <vector>

namespace
{

constexpr int PairSize = 64;
constexpr int HalfSize = 32;
constexpr int LokLastSlice = 100;
constexpr int HalfLastSlice = 20;
constexpr int LokLastMoved = 98;  // one entry more than the picture; backups carry it
constexpr int HalfLastMoved = 34; // five entries more than a half; backups carry them

constexpr int ChunkSize = 64;

constexpr int FirstResetSymbol = 164;
constexpr int EmptyPictureWidthByte = 6;
constexpr int EmptyPictureHeightByte = 13;
constexpr double SettleSeconds = 0.5;

int LokAddress(int n)
{
    return LokSymbolAddress + n * FlashPageSize;
}

int HalfAddress(int base, int n, int half)
{
    return base + n * PairSize + half * HalfSize;
}

int ReadHalf(int address)
{
    const int status = ReadFlash(address, HalfSymbolBytes);
    MoveToWritePosition(HalfLastMoved);
    return status;
}

int WriteHalf(int address)
{
    const PageSequence sequence;
    int loadStatus = 0;
    move_spibuf_to_buf1(address, loadStatus);
    LayBufferWrite(PageOffset(address));
    const int sliceStatus = WriteSlices(HalfLastSlice, WritePosition + HalfSymbolBytes);
    int programStatus = 0;
    write_buf1_to_flash(address, programStatus);
    return loadStatus | sliceStatus | programStatus;
}

void LayEmptyPicture()
{
    std::fill(SpiBuf.begin() + WritePosition, SpiBuf.begin() + 38, 0);
    SpiBuf.at(WritePosition) = EmptyPictureWidthByte;
    SpiBuf.at(WritePosition + 1) = EmptyPictureHeightByte;
}

int LastSliceOf(int bytes)
{
    // The last message carries only 19 data bytes; index 4 + bytes - 1 must be among them.
    return (WritePosition + bytes) / SliceSize * SliceSize;
}

using StartImage = std::vector<int>;

/// Lays a picture in write position.
void LayImage(const StartImage &image)
{
    std::copy(image.begin(), image.end(), SpiBuf.begin() + WritePosition);
}

int WriteChunk(const StartImage &image, int offset)
{
    const int size = std::min(ChunkSize, StartImageBytes - offset);
    LayBufferWrite(offset);
    std::copy_n(image.begin() + offset, size, SpiBuf.begin() + WritePosition);
    return WriteSlices(LastSliceOf(size), WritePosition + size);
}

} // namespace

int ReadLokSymbol(int n)
{
    const int status = ReadFlash(LokAddress(n), LokSymbolBytes);
    MoveToWritePosition(LokLastMoved);
    return status;
}

int WriteLokSymbol(int n)
{
    // The page holds only this symbol and is not loaded first.
    const PageSequence sequence;
    LayBufferWrite(0);
    const int sliceStatus = WriteSlices(LokLastSlice, WritePosition + LokSymbolBytes);
    int programStatus = 0;
    write_buf1_to_flash(LokAddress(n), programStatus);
    return sliceStatus | programStatus;
}

int ReadFktSymbol(int n, int half)
{
    return ReadHalf(HalfAddress(FktSymbolAddress, n, half));
}

int WriteFktSymbol(int n, int half)
{
    return WriteHalf(HalfAddress(FktSymbolAddress, n, half));
}

int ReadMagSymbol(int n, int half)
{
    return ReadHalf(HalfAddress(MagSymbolAddress, n, half));
}

int WriteMagSymbol(int n, int half)
{
    return WriteHalf(HalfAddress(MagSymbolAddress, n, half));
}

int ReadSymbol(SymbolKind kind, int n, int half)
{
    switch (kind) {
    case SymbolKind::Loco:
        return ReadLokSymbol(n);
    case SymbolKind::Function:
        return ReadFktSymbol(n, half);
    case SymbolKind::Accessory:
        return ReadMagSymbol(n, half);
    }
    Q_UNREACHABLE();
}

int WriteSymbol(SymbolKind kind, int n, int half)
{
    switch (kind) {
    case SymbolKind::Loco:
        return WriteLokSymbol(n);
    case SymbolKind::Function:
        return WriteFktSymbol(n, half);
    case SymbolKind::Accessory:
        return WriteMagSymbol(n, half);
    }
    Q_UNREACHABLE();
}

int ReadStartImage()
{
    StartImage image;
    int failed = 0;
    for (int offset = 0; offset < StartImageBytes; offset += ChunkSize) {
        const int size = std::min(ChunkSize, StartImageBytes - offset);
        failed |= ReadFlash(StartImageAddress + offset, size);
        image.insert(image.end(), SpiBuf.begin() + ReadPosition, SpiBuf.begin() + ReadPosition + size);
    }
    LayImage(image);
    return failed;
}

int WriteStartImage()
{
    const StartImage image(SpiBuf.begin() + WritePosition, SpiBuf.begin() + WritePosition + StartImageBytes);
    const PageSequence sequence;
    int failed = 0;
    move_spibuf_to_buf1(StartImageAddress, failed);
    for (int offset = 0; offset < StartImageBytes; offset += ChunkSize)
        failed |= WriteChunk(image, offset);
    int programStatus = 0;
    write_buf1_to_flash(StartImageAddress, programStatus);
    LayImage(image);
    return failed | programStatus;
}

void ResetFktSymbols()
{
    const StoppableJob job;
    LayEmptyPicture();
    int failed = 0;
    for (int n = FirstResetSymbol; n < PairCount && failed == 0 && !StoppableJob::stopRequested(); ++n) {
        TheFrontend().setProgressText(QStringLiteral("Fktsym. ") + QString::number(n));
        failed = WriteFktSymbol(n, 0) | WriteFktSymbol(n, 1);
    }
    WaitSeconds(SettleSeconds);
}
