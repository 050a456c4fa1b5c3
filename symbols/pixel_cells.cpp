#include "symbols/pixel_cells.h"

#include <cmath>

namespace hr::symbols
{

namespace
{

int StepsFromOrigin(double twips)
{
    return (static_cast<int>(std::lround(twips)) - GridOrigin) / CellPitch; // truncates towards zero
}

int ColourAt(const PixelCells &cells, PictureGeometry geometry, int x, int y)
{
    const bool inside = x >= 0 && x < geometry.width && y >= 0 && y < geometry.height;
    return inside ? cells.at(static_cast<size_t>(geometry.width * y + x)) : White;
}

/// Every pixel gets the colour that colourOf(x, y) names; cells beyond the picture stay.
template <typename ColourOf> PixelCells Repainted(PixelCells cells, PictureGeometry geometry, ColourOf colourOf)
{
    for (int y = 0; y < geometry.height; ++y) {
        for (int x = 0; x < geometry.width; ++x)
            cells.at(static_cast<size_t>(geometry.width * y + x)) = colourOf(x, y);
    }
    return cells;
}

} // namespace

int CellAt(PictureGeometry geometry, double xTwips, double yTwips)
{
    const int column = StepsFromOrigin(xTwips); // not held against the width, on purpose
    const int bufferRow = geometry.height - 1 - StepsFromOrigin(yTwips);
    const int number = geometry.width * bufferRow + column + 1;
    return number >= 1 && number <= geometry.width * geometry.height ? number : 0;
}

CellPlace PlaceOfCell(PictureGeometry geometry, int number)
{
    const int x = (number - 1) % geometry.width;
    const int y = (number - 1) / geometry.width;
    return {GridOrigin + CellPitch * x, GridOrigin + CellPitch * (geometry.height - 1 - y)};
}

PixelPlace PlaceOfPixel(int width, int x, int y)
{
    return {y * RowBytesOf(width) + x / 8, 1 << (7 - x % 8)};
}

PixelCells ShiftedCells(const PixelCells &cells, PictureGeometry geometry, int right, int up)
{
    return Repainted(cells, geometry, [&](int x, int y) { return ColourAt(cells, geometry, x - right, y - up); });
}

PixelCells MirroredCells(const PixelCells &cells, PictureGeometry geometry, bool leftRight)
{
    return Repainted(cells, geometry, [&](int x, int y) {
        return leftRight ? ColourAt(cells, geometry, geometry.width - 1 - x, y)
                         : ColourAt(cells, geometry, x, geometry.height - 1 - y);
    });
}

PixelCells InvertedCells(const PixelCells &cells, PictureGeometry geometry)
{
    return Repainted(
        cells, geometry, [&](int x, int y) { return ColourAt(cells, geometry, x, y) == Black ? White : Black; });
}

} // namespace hr::symbols
