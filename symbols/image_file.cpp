#include "symbols/image_file.h"

#include <png.h>

namespace hr::symbols
{

namespace
{

constexpr int BitsPerByte = 8;
constexpr int White = 255;
constexpr int Half = 128;

bool EndsIn(const QString &fileName, const QString &ending)
{
    return fileName.endsWith(ending, Qt::CaseInsensitive);
}

DecodedImage DecodePng(const QByteArray &file)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, file.constData(), static_cast<size_t>(file.size())) == 0)
        return {{}, QStringLiteral("das ist keine lesbare PNG-Datei")};
    if (image.width > LargestSide || image.height > LargestSide) {
        png_image_free(&image);
        return {{}, QStringLiteral("das Bild ist größer als %1 Punkte").arg(LargestSide)};
    }
    image.format = PNG_FORMAT_GRAY;
    DecodedImage decoded{{static_cast<int>(image.width), static_cast<int>(image.height), {}}, {}};
    decoded.image.pixels.resize(PNG_IMAGE_SIZE(image));
    const png_color paper{White, White, White}; // behind what is transparent
    if (png_image_finish_read(&image, &paper, decoded.image.pixels.data(), 0, nullptr) == 0)
        return {{}, QStringLiteral("die PNG-Datei ist beschädigt")};
    return decoded;
}

QByteArray PngOf(const PictureRows &rows, PictureGeometry geometry)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(geometry.width);
    image.height = static_cast<png_uint_32>(geometry.height);
    image.format = PNG_FORMAT_GRAY;
    std::vector<quint8> pixels;
    for (int y = geometry.height - 1; y >= 0; --y) {
        for (int x = 0; x < geometry.width; ++x) {
            const auto at = static_cast<size_t>(y * RowBytesOf(geometry.width) + x / BitsPerByte);
            const bool dark = (rows.at(at) >> (BitsPerByte - 1 - x % BitsPerByte) & 1) == 1;
            pixels.push_back(dark ? 0 : White);
        }
    }
    QByteArray file(static_cast<qsizetype>(PNG_IMAGE_PNG_SIZE_MAX(image)), '\0');
    auto size = static_cast<png_alloc_size_t>(file.size());
    if (png_image_write_to_memory(&image, file.data(), &size, 0, pixels.data(), 0, nullptr) == 0)
        return {};
    file.truncate(static_cast<qsizetype>(size));
    return file;
}

} // namespace

PictureRows RowsOfGrey(const GreyImage &image)
{
    const PictureGeometry geometry{image.width, image.height};
    PictureRows rows(static_cast<size_t>(RowBytesOf(geometry.width) * geometry.height), 0);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const int row = image.height - 1 - y;
            const auto at = static_cast<size_t>(row * RowBytesOf(geometry.width) + x / BitsPerByte);
            if (image.pixels.at(static_cast<size_t>(y * image.width + x)) < Half)
                rows.at(at) |= 1 << (BitsPerByte - 1 - x % BitsPerByte);
        }
    }
    return rows;
}

bool IsImageName(const QString &fileName)
{
    return EndsIn(fileName, QStringLiteral(".bmp")) || EndsIn(fileName, QStringLiteral(".png"));
}

ReadImage ReadImageFile(const QString &fileName, const QByteArray &file, PictureGeometry geometry)
{
    const DecodedImage decoded = EndsIn(fileName, QStringLiteral(".png")) ? DecodePng(file) : DecodeBmp(file);
    if (!decoded.fault.isEmpty())
        return {{}, decoded.fault};
    const PictureGeometry found{decoded.image.width, decoded.image.height};
    if (found == geometry)
        return {RowsOfGrey(decoded.image), {}};
    return {{},
        QStringLiteral("das Bild hat %1 x %2 Punkte, gebraucht werden %3 x %4")
            .arg(found.width)
            .arg(found.height)
            .arg(geometry.width)
            .arg(geometry.height)};
}

QByteArray ImageFileOf(const QString &fileName, const PictureRows &rows, PictureGeometry geometry)
{
    return EndsIn(fileName, QStringLiteral(".png")) ? PngOf(rows, geometry) : BmpBytes(rows, geometry);
}

} // namespace hr::symbols
