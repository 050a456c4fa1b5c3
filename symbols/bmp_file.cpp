#include "symbols/bmp_file.h"

#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"
#include "symbols/symbol_catalogue.h"

#include <QDir>
#include <QFileInfo>
#include <QtEndian>

#include <optional>

namespace hr::symbols
{

namespace
{

constexpr int OffsetDataOffset = 10;
constexpr int OffsetWidth = 18;
constexpr int OffsetHeight = 22;
constexpr int OffsetHeightTopByte = 25;
constexpr int OffsetBitDepth = 28;
constexpr int OffsetCompression = 30;
constexpr int OffsetDataSize = 34;
constexpr int NewDataOffset = 62; // file header, info header, palette of two colours
constexpr int ByteMask = 0xFF;
constexpr int OffsetInfoSize = 14;
constexpr int OffsetPaletteSize = 46;
constexpr int HeaderSize = 54;
constexpr int FileHeaderSize = 14;
constexpr int PaletteEntry = 4;
constexpr int BitsPerByte = 8;
constexpr int White = 255;

struct BmpLayout {
    int dataOffset;
    int rowBytes;
    int padding; // bytes after each row
};

void ShowError(const QString &text)
{
    TheAsk().showBox({text, QStringLiteral("Fehler!"), BoxIcon::Critical});
}

/// A byte of the file; bytes past its end count as zero.
int ByteAt(const QByteArray &file, int offset)
{
    return offset < file.size() ? static_cast<quint8>(file.at(offset)) : 0;
}

QString SizeError(int expected, int found)
{
    return QStringLiteral("Fehler Bildbreite nicht richtig:") + NumberText(expected) + QStringLiteral(" <>")
        + NumberText(found);
}

/// What is wrong with the header; empty when the file fits. The order of the checks is the order of the messages.
QString HeaderError(const QByteArray &file, PictureGeometry geometry)
{
    if (const int depth = ByteAt(file, OffsetBitDepth); depth != 1)
        return QStringLiteral("Farbtiefe des BMP Files muss 1 sein! Hier:") + NumberText(depth);
    if (ByteAt(file, OffsetCompression) != 0)
        return QStringLiteral("Das BMP-File darf nicht komprimiert sein!");
    const int width = ByteAt(file, OffsetWidth);
    if (width != geometry.width && !(geometry.width == 6 && width == 8))
        return SizeError(geometry.width, width);
    const int height = ByteAt(file, OffsetHeight);
    const bool topDown = ByteAt(file, OffsetHeightTopByte) > 0x7F;
    if (topDown) {
        return SizeError(geometry.height, height)
            + QStringLiteral("\rDie Datei ist von oben nach unten gespeichert; das wird nicht unterstützt.");
    }
    return height != geometry.height ? SizeError(geometry.height, height) : QString();
}

BmpLayout LayoutOf(const QByteArray &file, PictureGeometry geometry)
{
    const int rowBytes = RowBytesOf(ByteAt(file, OffsetWidth));
    const int dataSize = ByteAt(file, OffsetDataSize) + 256 * ByteAt(file, OffsetDataSize + 1);
    // The stored row length may be no whole number; whole bytes of the difference are skipped.
    const int surplus = dataSize - rowBytes * geometry.height;
    return {ByteAt(file, OffsetDataOffset), rowBytes, surplus > 0 ? surplus / geometry.height : 0};
}

/// End of the last row's pixel bytes.
int EndOfPixels(const BmpLayout &layout, int height)
{
    return layout.dataOffset + height * layout.rowBytes + (height - 1) * layout.padding;
}

void PutLittleEndian(QByteArray &bytes, int offset, int value)
{
    for (int i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(value >> (8 * i) & ByteMask);
}

/// An all white picture.
QByteArray NewTemplate(PictureGeometry geometry)
{
    const int stride = (geometry.width + 31) / 32 * 4;
    const int dataSize = stride * geometry.height;
    QByteArray file(NewDataOffset, '\0');
    file.append(QByteArray(dataSize, '\xFF'));
    file[0] = 'B';
    file[1] = 'M';
    PutLittleEndian(file, 2, NewDataOffset + dataSize);
    PutLittleEndian(file, OffsetDataOffset, NewDataOffset);
    PutLittleEndian(file, OffsetInfoSize, 40); // size of the info header
    PutLittleEndian(file, OffsetWidth, geometry.width);
    PutLittleEndian(file, OffsetHeight, geometry.height);
    file[26] = 1; // planes
    file[OffsetBitDepth] = 1;
    PutLittleEndian(file, OffsetDataSize, dataSize);
    PutLittleEndian(file, 58, 0xFFFFFF); // second palette colour: white
    return file;
}

/// Overwrites the pixel rows; the padding repeats the last byte of each row.
void PutPixels(QByteArray &file, const BmpLayout &layout, const PictureRows &rows, int height)
{
    size_t index = 0;
    int position = layout.dataOffset;
    const qsizetype end = position + height * (layout.rowBytes + layout.padding);
    if (file.size() < end)
        file.resize(end, '\xFF');
    for (int row = 0; row < height; ++row) {
        for (int i = 0; i < layout.rowBytes; ++i)
            file[position++] = static_cast<char>(255 - rows.at(index++));
        for (int i = 0; i < layout.padding; ++i, ++position)
            file[position] = file.at(position - 1);
    }
}

PictureRows GetPixels(const QByteArray &file, const BmpLayout &layout, int height)
{
    PictureRows rows;
    int position = layout.dataOffset;
    for (int row = 0; row < height; ++row, position += layout.padding) {
        for (int i = 0; i < layout.rowBytes; ++i)
            rows.push_back(255 - ByteAt(file, position++));
    }
    return rows;
}

bool SaveFile(const QString &path, const QByteArray &content)
{
    const bool scanned = IsInSymbolFolder(path);
    if (scanned ? ReplaceFileInScannedFolder(path, content) : ReplaceFile(path, content))
        return true;
    ShowError(QStringLiteral("Die Datei \"%1\" kann nicht geschrieben werden!").arg(path));
    return false;
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
struct GeneralBmp {
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
    const auto listed = At<quint32>(file, OffsetPaletteSize);
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

std::optional<GeneralBmp> GeneralLayout(const QByteArray &file, QString &fault)
{
    if (file.size() < HeaderSize || !file.startsWith("BM")) {
        fault = QStringLiteral("das ist keine BMP-Datei");
        return {};
    }
    const auto width = At<qint32>(file, OffsetWidth);
    const auto height = At<qint32>(file, OffsetHeight);
    const int depth = At<quint16>(file, OffsetBitDepth);
    if (width <= 0 || width > LargestSide || height == 0 || height < -LargestSide || height > LargestSide)
        fault = QStringLiteral("das Bild ist größer als %1 Punkte").arg(LargestSide);
    else if (At<quint32>(file, OffsetCompression) != 0)
        fault = QStringLiteral("die BMP-Datei ist komprimiert");
    else if (depth != 1 && depth != 4 && depth != 8 && depth != 24 && depth != 32)
        fault = QStringLiteral("eine Farbtiefe von %1 Bit wird nicht unterstützt").arg(depth);
    if (!fault.isEmpty())
        return {};
    const qsizetype stride = (static_cast<qsizetype>(width) * depth + 31) / 32 * 4;
    const GeneralBmp bmp{width, qAbs(height), height < 0, depth,
        static_cast<qsizetype>(At<quint32>(file, OffsetDataOffset)), stride, PaletteOf(file, depth)};
    const qsizetype lastRow =
        (static_cast<qsizetype>(width) * depth + BitsPerByte - 1) / BitsPerByte; // without padding
    if (bmp.data + stride * (bmp.height - 1) + lastRow > file.size()) {
        fault = QStringLiteral("die BMP-Datei ist abgeschnitten");
        return {};
    }
    return bmp;
}

quint8 BmpPixel(const QByteArray &file, const GeneralBmp &bmp, int x, int y)
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

} // namespace

QString TemplatePath(int width)
{
    return KonfPath(width == LokSymbolGeometry.width ? QStringLiteral("\\konf\\temp_loksym.bmp")
                                                     : QStringLiteral("\\konf\\temp_lokfkt.bmp"));
}

QByteArray BmpBytes(const PictureRows &rows, PictureGeometry geometry)
{
    QByteArray file = NewTemplate(geometry);
    PutPixels(file, LayoutOf(file, geometry), rows, geometry.height);
    return file;
}

DecodedImage DecodeBmp(const QByteArray &file)
{
    DecodedImage decoded;
    const auto bmp = GeneralLayout(file, decoded.fault);
    if (!bmp)
        return decoded;
    decoded.image = {bmp->width, bmp->height, {}};
    for (int y = 0; y < bmp->height; ++y) {
        for (int x = 0; x < bmp->width; ++x)
            decoded.image.pixels.push_back(BmpPixel(file, *bmp, x, y));
    }
    return decoded;
}

PictureRows RowsOf(const Picture &picture)
{
    const auto first = picture.bytes.begin() + SizeBytes;
    return {first, picture.bytes.begin() + FlashBytesOf(picture.geometry)};
}

std::optional<PictureRows> LoadBmp(const QString &fileName, PictureGeometry geometry)
{
    const std::optional<QByteArray> file = ReadWholeFile(fileName);
    if (!file) {
        ShowError(QStringLiteral("Die Datei \"%1\" kann nicht gelesen werden!").arg(fileName));
        return {};
    }
    if (const QString error = HeaderError(*file, geometry); !error.isEmpty()) {
        ShowError(error);
        return {};
    }
    const BmpLayout layout = LayoutOf(*file, geometry);
    const int end = EndOfPixels(layout, geometry.height);
    if (end > file->size()) {
        ShowError(QStringLiteral("Die BMP-Datei ist unvollständig: %1 Bytes statt %2!").arg(file->size()).arg(end));
        return {};
    }
    return GetPixels(*file, layout, geometry.height);
}

bool SaveBmp(const PictureRows &rows, PictureGeometry geometry, const QString &fileName)
{
    if (geometry.width != LokSymbolGeometry.width && geometry.width != HalfSymbolGeometry.width)
        return false;
    const QString templatePath = TemplatePath(geometry.width);
    QByteArray file = ReadWholeFile(templatePath).value_or(NewTemplate(geometry));
    if (const QString error = HeaderError(file, geometry); !error.isEmpty()) {
        ShowError(error);
        return false;
    }
    PutPixels(file, LayoutOf(file, geometry), rows, geometry.height);
    const bool templateWritten = ReplaceFile(templatePath, file);
    if (!templateWritten)
        ReportUnwritable(QDir::toNativeSeparators(QStringLiteral("konf/") + QFileInfo(templatePath).fileName()));
    if (fileName.isEmpty() || IsSameFile(fileName, templatePath))
        return templateWritten;
    return SaveFile(fileName, file); // also where the template can't be written: the user's file counts
}

} // namespace hr::symbols
