// A picture of the handheld as a value: its geometry and the bytes that lie in the flash.
//
//   kind              width  height  bytes a row  pixel bytes  size bytes  flash bytes  with what a backup carries
//   loco symbol          48      16            6           96  23, 15               98                          99
//   function symbol      14      14            2           28   6, 13               30                          35
//   accessory symbol     14      14            2           28   6, 13               30                          35
//   start image          80      26           10          260  39, 25              262                           -
//
// bytes[0] = width / 2 - 1, bytes[1] = height - 1, then the pixel rows without padding, the picture's bottom row first;
// in a row the most significant bit of each byte is the leftmost pixel; 1 = dark. A backup carries one (loco symbol) or
// five bytes of the handheld's buffer behind the picture.
#pragma once

#include "platform/rooms.h"

#include <QtGlobal>

#include <vector>

namespace hr::handheld
{

struct PictureGeometry {
    int width = 0;  // pixels
    int height = 0; // rows
    bool operator==(const PictureGeometry &) const = default;
};

enum class SymbolKind { Loco, Function, Accessory };

constexpr PictureGeometry LokSymbolGeometry{48, 16};
constexpr PictureGeometry HalfSymbolGeometry{14, 14};
constexpr PictureGeometry StartImageGeometry{80, 26};

constexpr int SizeBytes = 2;

constexpr PictureGeometry GeometryOf(SymbolKind kind)
{
    return kind == SymbolKind::Loco ? LokSymbolGeometry : HalfSymbolGeometry;
}

/// Bytes of one row of so many pixels.
constexpr int RowBytesOf(int width)
{
    return width / 8 + (width % 8 != 0 ? 1 : 0);
}

/// Bytes that the picture takes in the flash, its size bytes included.
constexpr int FlashBytesOf(PictureGeometry geometry)
{
    return SizeBytes + RowBytesOf(geometry.width) * geometry.height;
}

struct Picture {
    PictureGeometry geometry;
    std::vector<quint8> bytes; // at least FlashBytesOf(geometry)
    bool operator==(const Picture &) const = default;
};

/// The bytes that a backup carries for a symbol of this kind.
constexpr int BackupBytesOf(SymbolKind kind)
{
    return FlashBytesOf(GeometryOf(kind)) + (kind == SymbolKind::Loco ? 1 : 5);
}

/// An all white picture with the right size bytes, as many bytes as a backup carries.
Picture EmptyPicture(SymbolKind kind);
Picture EmptyStartPicture();

/// Writes the two size bytes that fit the geometry: a handheld that is given others shows rubbish.
void LaySizeBytes(Picture &picture);

} // namespace hr::handheld
