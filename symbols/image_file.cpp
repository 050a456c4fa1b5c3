#include "symbols/image_file.h"

#include <QtEndian>

#include <png.h>

#include <array>
#include <optional>

namespace hr::symbols
{

namespace
{

constexpr int LargestSide = 4096; // a wrong size is refused anyway; nothing huge is unpacked for that
constexpr int BitsPerByte = 8;
constexpr int White = 255;
constexpr int Half = 128;

constexpr int HeaderSize = 54;
constexpr int OffsetDataOffset = 10;
constexpr int OffsetInfoSize = 14;
constexpr int OffsetWidth = 18;
constexpr int OffsetHeight = 22;
constexpr int OffsetDepth = 28;
constexpr int OffsetCompression = 30;
constexpr int OffsetColours = 46;
constexpr int PaletteEntry = 4;
constexpr int FileHeaderSize = 14;

/// Grey values, 0 = black, top row first.
struct GreyImage {
    int width = 0;
    int height = 0;
    std::vector<quint8> pixels;
};

struct Decoded {
    GreyImage image;
    QString fault;
};

bool EndsIn(const QString &fileName, const QString &ending)
{
    return fileName.endsWith(ending, Qt::CaseInsensitive);
}

quint8 Grey(int red, int green, int blue)
{
    return static_cast<quint8>((red * 11 + green * 16 + blue * 5) / 32);
}

template <typename Number> Number At(const QByteArray &file, qsizetype offset)
{
    return qFromLittleEndian<Number>(file.constData() + offset);
}

/// The layout of a BMP file whose header has been checked.
struct Bmp {
    int width;
    int height;
    bool topDown;
    int depth;
    qsizetype data;
    qsizetype stride;
    std::vector<quint8> palette; // as grey values
};

std::vector<quint8> PaletteOf(const QByteArray &file, int depth)
{
    if (depth > BitsPerByte)
        return {};
    if (depth == 1)
        return {0, White}; // whatever the file's own palette says, as everywhere with the handheld's pictures
    const auto listed = At<quint32>(file, OffsetColours);
    const auto all = static_cast<quint32>(1 << depth);
    const qsizetype start = FileHeaderSize + At<quint32>(file, OffsetInfoSize);
    std::vector<quint8> palette(all, White);
    for (quint32 i = 0; i < (listed == 0 || listed > all ? all : listed); ++i) {
        const qsizetype at = start + static_cast<qsizetype>(i) * PaletteEntry;
        if (at + PaletteEntry > file.size())
            break;
        const auto *entry = reinterpret_cast<const quint8 *>(file.constData()) + at;
        palette.at(i) = Grey(entry[2], entry[1], entry[0]);
    }
    return palette;
}

std::optional<Bmp> BmpLayout(const QByteArray &file, QString &fault)
{
    if (file.size() < HeaderSize || !file.startsWith("BM")) {
        fault = QStringLiteral("das ist keine BMP-Datei");
        return {};
    }
    const auto width = At<qint32>(file, OffsetWidth);
    const auto height = At<qint32>(file, OffsetHeight);
    const int depth = At<quint16>(file, OffsetDepth);
    if (width <= 0 || width > LargestSide || height == 0 || height < -LargestSide || height > LargestSide)
        fault = QStringLiteral("das Bild ist größer als %1 Punkte").arg(LargestSide);
    else if (At<quint32>(file, OffsetCompression) != 0)
        fault = QStringLiteral("die BMP-Datei ist komprimiert");
    else if (depth != 1 && depth != 4 && depth != 8 && depth != 24 && depth != 32)
        fault = QStringLiteral("eine Farbtiefe von %1 Bit wird nicht unterstützt").arg(depth);
    if (!fault.isEmpty())
        return {};
    const qsizetype stride = (static_cast<qsizetype>(width) * depth + 31) / 32 * 4;
    const Bmp bmp{width, qAbs(height), height < 0, depth, static_cast<qsizetype>(At<quint32>(file, OffsetDataOffset)),
        stride, PaletteOf(file, depth)};
    if (bmp.data + stride * bmp.height > file.size()) {
        fault = QStringLiteral("die BMP-Datei ist abgeschnitten");
        return {};
    }
    return bmp;
}

quint8 BmpPixel(const QByteArray &file, const Bmp &bmp, int x, int y)
{
    const int row = bmp.topDown ? y : bmp.height - 1 - y;
    const auto *line = reinterpret_cast<const quint8 *>(file.constData()) + bmp.data + row * bmp.stride;
    if (bmp.depth > BitsPerByte) {
        const auto *pixel = line + static_cast<qsizetype>(x) * (bmp.depth / BitsPerByte);
        return Grey(pixel[2], pixel[1], pixel[0]);
    }
    const int bit = x * bmp.depth;
    const int shift = BitsPerByte - bmp.depth - bit % BitsPerByte;
    return bmp.palette.at(static_cast<size_t>(line[bit / BitsPerByte] >> shift & ((1 << bmp.depth) - 1)));
}

Decoded DecodeBmp(const QByteArray &file)
{
    Decoded decoded;
    const auto bmp = BmpLayout(file, decoded.fault);
    if (!bmp)
        return decoded;
    decoded.image = {bmp->width, bmp->height, {}};
    for (int y = 0; y < bmp->height; ++y) {
        for (int x = 0; x < bmp->width; ++x)
            decoded.image.pixels.push_back(BmpPixel(file, *bmp, x, y));
    }
    return decoded;
}

Decoded DecodePng(const QByteArray &file)
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
    Decoded decoded{{static_cast<int>(image.width), static_cast<int>(image.height), {}}, {}};
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

} // namespace

bool IsImageName(const QString &fileName)
{
    return EndsIn(fileName, QStringLiteral(".bmp")) || EndsIn(fileName, QStringLiteral(".png"));
}

ReadImage ReadImageFile(const QString &fileName, const QByteArray &file, PictureGeometry geometry)
{
    const Decoded decoded = EndsIn(fileName, QStringLiteral(".png")) ? DecodePng(file) : DecodeBmp(file);
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
