#include "handheld/picture.h"

#include <cstddef>

namespace hr::handheld
{

Picture EmptyPicture(SymbolKind kind)
{
    Picture picture{GeometryOf(kind), std::vector<quint8>(static_cast<size_t>(BackupBytesOf(kind)), 0)};
    LaySizeBytes(picture);
    return picture;
}

Picture EmptyStartPicture()
{
    constexpr PictureGeometry geometry = StartImageGeometry;
    Picture picture{geometry, std::vector<quint8>(static_cast<size_t>(FlashBytesOf(geometry)), 0)};
    LaySizeBytes(picture);
    return picture;
}

void LaySizeBytes(Picture &picture)
{
    picture.bytes.at(0) = static_cast<quint8>(picture.geometry.width / 2 - 1);
    picture.bytes.at(1) = static_cast<quint8>(picture.geometry.height - 1);
}

} // namespace hr::handheld
