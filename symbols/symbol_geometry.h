// Which kind of symbol SpiBuf holds: the geometry that the BMP files and the pixel editor work with.
//
//   kind              width  height  bytes a row  pixel bytes  size bytes (index 4, 5)
//   loco symbol          48      16            6           96  23, 15
//   function symbol      14      14            2           28   6, 13
//   accessory symbol     14      14            2           28   6, 13
//   start image          80      26           10          260  39, 25
//
// Layout in SpiBuf: index 4 = width / 2 - 1, index 5 = height - 1, pixel rows from index 6 on without padding, the
// picture's bottom row first; in a row the most significant bit of each byte is the leftmost pixel; 1 = dark.
// Without the size bytes (SymbolNoHeader) the rows begin at index 4.
#pragma once

#include "handheld/symbol_storage.h"

// Set by every caller before a BMP conversion and before the pixel editor opens; read by both.
extern int SymbolWidth;     // pixels
extern int SymbolHeight;    // rows
extern bool SymbolNoHeader; // no size bytes before the rows

constexpr int LokSymbolWidth = 48;
constexpr int LokSymbolHeight = 16;
constexpr int HalfSymbolWidth = 14;
constexpr int HalfSymbolHeight = 14;
constexpr int StartImageWidth = 80;
constexpr int StartImageHeight = 26;

void SetSymbolGeometry(SymbolKind kind);
void SetStartImageGeometry();

/// Bytes of one row of so many pixels.
constexpr int RowBytesOf(int width)
{
    return width / 8 + (width % 8 != 0 ? 1 : 0);
}

/// SpiBuf index of the first pixel byte: 6, or 4 without the size bytes.
int FirstPixelIndex();

/// Writes the two size bytes, unless SymbolNoHeader.
void LaySizeBytes();

void ResetSymbolGeometry();
