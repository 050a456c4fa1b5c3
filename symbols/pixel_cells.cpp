#include "symbols/pixel_cells.h"

#include <cmath>

namespace
{

int StepsFromOrigin(double twips)
{
    return (static_cast<int>(std::lround(twips)) - GridOrigin) / CellPitch; // truncates towards zero
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
