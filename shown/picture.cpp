#include "shown/picture.h"

#include "handheld/page_sequence.h"
#include "shown/record.h"
#include "symbols/bmp_file.h"

#include <algorithm>

int SymbolWidth = LokSymbolGeometry.width;
int SymbolHeight = LokSymbolGeometry.height;
bool SymbolNoHeader = false;
PixelCells Pixel{};
int PixelEditDone = 1;

namespace
{

quint8 &PixelByte(const PixelPlace &place)
{
    return SpiBuf.at(static_cast<size_t>(FirstPixelIndex() + place.byte));
}

int &Cell(int x, int y)
{
    return Pixel.at(static_cast<size_t>(SymbolWidth * y + x));
}

template <typename Visit> void ForEachPixel(Visit visit)
{
    for (int y = 0; y < SymbolHeight; ++y) {
        for (int x = 0; x < SymbolWidth; ++x)
            visit(x, y);
    }
}

} // namespace

PictureGeometry ShownGeometry()
{
    return {SymbolWidth, SymbolHeight};
}

void ShowPicture(const Picture &picture)
{
    SymbolWidth = picture.geometry.width;
    SymbolHeight = picture.geometry.height;
    SymbolNoHeader = false;
    std::copy(picture.bytes.begin(), picture.bytes.end(), SpiBuf.begin() + WritePosition);
}

Picture TakePicture(size_t bytes)
{
    const auto first = SpiBuf.begin() + WritePosition;
    return {ShownGeometry(), {first, first + static_cast<std::ptrdiff_t>(bytes)}};
}

std::vector<quint8> ShownRows()
{
    const auto first = SpiBuf.begin() + FirstPixelIndex();
    return {first, first + RowBytesOf(SymbolWidth) * SymbolHeight};
}

void LayRows(const std::vector<quint8> &rows)
{
    std::copy(rows.begin(), rows.end(), SpiBuf.begin() + FirstPixelIndex());
}

int FirstPixelIndex()
{
    return SymbolNoHeader ? WritePosition : WritePosition + SizeBytes;
}

void LaySizeBytes()
{
    if (SymbolNoHeader)
        return;
    SpiBuf.at(WritePosition) = SymbolWidth / 2 - 1;
    SpiBuf.at(WritePosition + 1) = SymbolHeight - 1;
}

int GetColor_from_SPIBUF(int x, int y)
{
    const PixelPlace place = PlaceOfPixel(SymbolWidth, x, y);
    return (PixelByte(place) & place.mask) != 0 ? Black : White;
}

void set_color_in_spibuf(int colour, int x, int y)
{
    const PixelPlace place = PlaceOfPixel(SymbolWidth, x, y);
    if (colour == Black)
        PixelByte(place) |= place.mask;
    else
        PixelByte(place) &= 255 - place.mask;
}

void LoadCellsFromBuffer()
{
    ForEachPixel([](int x, int y) { Cell(x, y) = GetColor_from_SPIBUF(x, y); });
}

void StoreCellsInBuffer()
{
    ForEachPixel([](int x, int y) { set_color_in_spibuf(Cell(x, y), x, y); });
}

void ClearCells()
{
    std::fill_n(Pixel.begin(), SymbolWidth * SymbolHeight, White);
}

void LoadBmpToSpibuf(const QString &fileName, int &result)
{
    const auto rows = LoadBmp(fileName, ShownGeometry());
    result = rows ? 0 : 1;
    if (rows)
        LayRows(*rows);
}

void SaveSpibufToBmp(const QString &fileName, int &result)
{
    result = SaveBmp(ShownRows(), ShownGeometry(), fileName) ? 0 : 1;
}

void ResetShownPicture()
{
    SymbolWidth = LokSymbolGeometry.width;
    SymbolHeight = LokSymbolGeometry.height;
    SymbolNoHeader = false;
    Pixel = {};
    PixelEditDone = 1;
}
