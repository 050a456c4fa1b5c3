#include "symbols/edited_picture.h"

#include <algorithm>

namespace hr::symbols
{

namespace
{

template <typename Visit> void ForEachPixel(PictureGeometry geometry, Visit visit)
{
    for (int y = 0; y < geometry.height; ++y) {
        for (int x = 0; x < geometry.width; ++x)
            visit(x, y, static_cast<size_t>(geometry.width * y + x));
    }
}

} // namespace

EditedPicture::EditedPicture(const Picture &picture)
    : SymbolWidth(picture.geometry.width), SymbolHeight(picture.geometry.height), bytes(picture.bytes)
{
    LoadCellsFromBuffer();
}

Picture EditedPicture::painted() const
{
    EditedPicture copy = *this;
    copy.StoreCellsInBuffer();
    return copy.picture();
}

int EditedPicture::GetColor_from_SPIBUF(int x, int y) const
{
    const PixelPlace place = PlaceOfPixel(SymbolWidth, x, y);
    return (bytes.at(firstPixelIndex() + static_cast<size_t>(place.byte)) & place.mask) != 0 ? Black : White;
}

void EditedPicture::set_color_in_spibuf(int colour, int x, int y)
{
    const PixelPlace place = PlaceOfPixel(SymbolWidth, x, y);
    quint8 &byte = bytes.at(firstPixelIndex() + static_cast<size_t>(place.byte));
    byte = static_cast<quint8>(colour == Black ? byte | place.mask : byte & ~place.mask);
}

void EditedPicture::LoadCellsFromBuffer()
{
    ForEachPixel(geometry(), [this](int x, int y, size_t cell) { Pixel.at(cell) = GetColor_from_SPIBUF(x, y); });
}

void EditedPicture::StoreCellsInBuffer()
{
    ForEachPixel(geometry(), [this](int x, int y, size_t cell) { set_color_in_spibuf(Pixel.at(cell), x, y); });
}

void EditedPicture::ClearCells()
{
    std::fill_n(Pixel.begin(), SymbolWidth * SymbolHeight, White);
}

void EditedPicture::LaySizeBytes()
{
    if (SymbolNoHeader)
        return;
    bytes.at(0) = static_cast<quint8>(SymbolWidth / 2 - 1);
    bytes.at(1) = static_cast<quint8>(SymbolHeight - 1);
}

PictureRows EditedPicture::rows() const
{
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(firstPixelIndex());
    return {first, first + std::ptrdiff_t{RowBytesOf(SymbolWidth)} * SymbolHeight};
}

void EditedPicture::LoadBmpToSpibuf(const QString &fileName, int &result)
{
    const auto loaded = LoadBmp(fileName, geometry());
    result = loaded ? 0 : 1;
    if (loaded)
        std::ranges::copy(*loaded, bytes.begin() + static_cast<std::ptrdiff_t>(firstPixelIndex()));
}

void EditedPicture::SaveSpibufToBmp(const QString &fileName, int &result) const
{
    result = SaveBmp(rows(), geometry(), fileName) ? 0 : 1;
}

} // namespace hr::symbols
