// The pictures in the handheld's dataflash: loco symbols, function and accessory symbol pairs, start image.
//
//   kind                      address                        bytes                          rest of the slot
//   loco symbol n (0..63)     0x110000 + n x 512             98 (48 x 16 pixels)            not preserved
//   function symbol n, half h 0x0F0000 + n x 64 + h x 32     30 (14 x 14 pixels)            2 bytes, untouched
//   accessory symbol n, h     0x0F8000 + n x 64 + h x 32     30 (14 x 14 pixels)            2 bytes, untouched
//   start image               0x118000                       262 (80 x 26 pixels)           page bytes kept
//
// n = 0..255 for the pairs. In the image a picture lies in write position, from index 4, after a read; what lies behind
// it there is programmed with a loco symbol. Reads go on after a time-out (each shows its "Timeout" box).
#pragma once

#include "handheld/page_sequence.h"
#include "handheld/picture.h"

namespace hr::handheld
{

/// Which half of a pair is which, in the handheld: the index of the option buttons too.
constexpr int HalfOn = 0;  // function symbol ON, accessory symbol green
constexpr int HalfOff = 1; // function symbol OFF, accessory symbol red

constexpr int SymbolHalfDistance = 32; // flash bytes from one half to the next

constexpr int LokSymbolCount = 64;
constexpr int PairCount = 256;

/// The symbols up to this number came with the handheld; -1 where none did.
constexpr int LastBuiltInSymbol(SymbolKind kind)
{
    constexpr int lastFunction = 163;
    constexpr int lastAccessory = 27;
    if (kind == SymbolKind::Loco)
        return -1;
    return kind == SymbolKind::Function ? lastFunction : lastAccessory;
}

/// The picture of a symbol with the bytes that a backup carries; half is ignored for loco symbols.
Result<Picture> ReadPicture(
    SpiImage &image, SymbolKind kind, int n, int half, const Patience &patience = Patience::Agreed);

/// Writes a picture and what it carries behind itself.
PageResult WritePicture(
    SpiImage &image, SymbolKind kind, int n, int half, const Picture &picture, const Patience &patience);

/// The first flash byte of a symbol, and the buffer write of a picture.
int PictureAddress(SymbolKind kind, int n, int half);
PagePart PicturePart(SymbolKind kind, int n, int half, const Picture &picture);

Result<Picture> ReadStartPicture(SpiImage &image, const Patience &patience = Patience::Agreed);
PageResult WriteStartPicture(SpiImage &image, const Picture &picture, const Patience &patience);

} // namespace hr::handheld
