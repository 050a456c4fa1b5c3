// The pixel editor's arithmetic: pixels of the picture in SpiBuf, and the cells that the user paints.
//
// Cell n (from 1) stands for buffer row y and column x with n = SymbolWidth x y + x + 1. Buffer row 0 is the
// picture's bottom row and is drawn at the bottom. Lengths are twips: 15 twips are one logical pixel.
#pragma once

#include <array>

constexpr int Black = 0;
constexpr int White = 0xFFFFFF;

constexpr int TwipsPerPixel = 15;
constexpr int CellPitch = 225;
constexpr int CellSize = 195;
constexpr int GridOrigin = 200;
constexpr int ButtonBand = 1000;
constexpr int CellCount = 2080; // 80 x 26, the largest picture

/// Colour of pixel column x of buffer row y: Black for a set bit, else White.
int GetColor_from_SPIBUF(int x, int y);

/// Sets (Black) or clears (any other colour) the pixel's bit; the byte's other bits stay.
void set_color_in_spibuf(int colour, int x, int y);

/// Colours of the cells, index 0 = cell 1. Filled when the editor opens, changed by painting, copied to SpiBuf by OK.
extern std::array<int, CellCount> Pixel;

void LoadCellsFromBuffer();
void StoreCellsInBuffer();
void ClearCells();

/// Number of the cell at a position of the client area, or 0 when there is none. Positions are rounded to whole
/// twips and divided with truncation towards zero, so that less than one pitch left of or above the grid is still
/// column or row 0; a position right of the grid is a cell of the next buffer row.
int CellAt(double xTwips, double yTwips);

/// Left and top edge of the cell with this number, in twips.
struct CellPlace {
    int left;
    int top;
};
CellPlace PlaceOfCell(int number);
