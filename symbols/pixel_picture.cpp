#include "symbols/pixel_picture.h"

#include "link/message_layer.h"
#include "symbols/symbol_geometry.h"

#include <algorithm>
#include <cmath>

std::array<int, CellCount> Pixel{};

namespace
{

int &PixelByte(int x, int y)
{
    return SpiBuf.at(static_cast<size_t>(y * RowBytesOf(SymbolWidth) + x / 8 + FirstPixelIndex()));
}

int PixelMask(int x)
{
    return 1 << (7 - x % 8);
}

int &Cell(int x, int y)
{
    return Pixel.at(static_cast<size_t>(SymbolWidth * y + x));
}

int StepsFromOrigin(double twips)
{
    return (static_cast<int>(std::lround(twips)) - GridOrigin) / CellPitch; // truncates towards zero
}

} // namespace

int GetColor_from_SPIBUF(int x, int y)
{
    return (PixelByte(x, y) & PixelMask(x)) != 0 ? Black : White;
}

void set_color_in_spibuf(int colour, int x, int y)
{
    int &byte = PixelByte(x, y);
    if (colour == Black)
        byte |= PixelMask(x);
    else
        byte &= 255 - PixelMask(x);
}

void LoadCellsFromBuffer()
{
    for (int y = 0; y < SymbolHeight; ++y) {
        for (int x = 0; x < SymbolWidth; ++x)
            Cell(x, y) = GetColor_from_SPIBUF(x, y);
    }
}

void StoreCellsInBuffer()
{
    for (int y = 0; y < SymbolHeight; ++y) {
        for (int x = 0; x < SymbolWidth; ++x)
            set_color_in_spibuf(Cell(x, y), x, y);
    }
}

void ClearCells()
{
    std::fill_n(Pixel.begin(), SymbolWidth * SymbolHeight, White);
}

int CellAt(double xTwips, double yTwips)
{
    const int column = StepsFromOrigin(xTwips);
    const int bufferRow = SymbolHeight - 1 - StepsFromOrigin(yTwips);
    const int number = SymbolWidth * bufferRow + column + 1;
    return number >= 1 && number <= SymbolWidth * SymbolHeight ? number : 0;
}

CellPlace PlaceOfCell(int number)
{
    const int x = (number - 1) % SymbolWidth;
    const int y = (number - 1) / SymbolWidth;
    return {GridOrigin + CellPitch * x, GridOrigin + CellPitch * (SymbolHeight - 1 - y)};
}
