// The pixel editor's arithmetic: where its cells stand, which cell a position means, which bit of a row a pixel is.
//
// Cell n (from 1) stands for buffer row y and column x with n = width x y + x + 1. Buffer row 0 is the picture's bottom
// row and is drawn at the bottom. Lengths are twips: 15 twips are one logical pixel.
#pragma once

#include "handheld/picture.h"

#include <array>

namespace hr::symbols
{

constexpr int TwipsPerPixel = 15;
constexpr int CellPitch = 225;
constexpr int CellSize = 195;
constexpr int GridOrigin = 200;
constexpr int ButtonBand = 1000;
constexpr int CellCount = 2080; // 80 x 26, the largest picture

constexpr int Black = 0;
constexpr int White = 0xFFFFFF;

/// Colours of the cells, index = cell number - 1. Only the first width x height of them belong to a picture.
using PixelCells = std::array<int, CellCount>;

/// Number of the cell at a position of the client area, or 0 when there is none. Positions are rounded to whole
/// twips and divided with truncation towards zero, so that less than one pitch left of or above the grid is still
/// column or row 0; a position right of the grid is a cell of the next buffer row.
int CellAt(PictureGeometry geometry, double xTwips, double yTwips);

/// Left and top edge of the cell with this number, in twips.
struct CellPlace {
    int left;
    int top;
};
CellPlace PlaceOfCell(PictureGeometry geometry, int number);

/// Where pixel column x of buffer row y stands: byte from the first pixel byte on, and its bit.
struct PixelPlace {
    int byte;
    int mask;
};
PixelPlace PlaceOfPixel(int width, int x, int y);

/// The picture moved by whole pixels; what is pushed over an edge is lost, what comes in is white.
PixelCells ShiftedCells(const PixelCells &cells, PictureGeometry geometry, int right, int up);

/// The picture with left and right, or top and bottom, exchanged.
PixelCells MirroredCells(const PixelCells &cells, PictureGeometry geometry, bool leftRight);

/// The picture with black and white exchanged.
PixelCells InvertedCells(const PixelCells &cells, PictureGeometry geometry);

} // namespace hr::symbols
