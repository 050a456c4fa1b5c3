// BMP files: the one place that knows their bytes.
//
// The agreed 1-bit files: from a file into the rows of a picture, and back. Only these bytes of a file's header are consulted:
//   10      offset of the pixel rows (below 256)
//   18, 22  width and height, low bytes; must fit the picture
//   28      bits a pixel, must be 1
//   30      compression, must be 0
//   34, 35  size of the pixel data; divided by the height it gives the stored length of a row
// A file bit 0 is a set (dark) pixel whatever the palette says. Rows stand bottom row first, padded to the stored
// length. Saving overwrites the pixel rows of a template with the right header (konf\temp_loksym.bmp for pictures
// 48 pixels wide, konf\temp_lokfkt.bmp for 14) and copies the template to the target; a missing template is made.
//
// Every refusal is a box "Fehler!" (critical) that says what is wrong; all files stay as they were then.
#pragma once

#include "handheld/picture.h"

#include <QString>

#include <optional>
#include <vector>

namespace hr::symbols
{

/// The pixel rows of a picture, RowBytesOf(width) bytes each, bottom row first.
using PictureRows = std::vector<quint8>;

/// The rows of a file that fits the geometry; nothing when it was refused.
std::optional<PictureRows> LoadBmp(const QString &fileName, PictureGeometry geometry);

/// Writes the rows into the template of their width and, unless fileName is empty, copies the template to fileName.
/// False when it failed; without a box for widths other than 48 and 14, which have no template.
[[nodiscard]] bool SaveBmp(const PictureRows &rows, PictureGeometry geometry, const QString &fileName);

constexpr int LargestSide = 4096; // of a picture file that is read: nothing huge is unpacked only to be refused

/// Grey values, 0 = black, top row first.
struct GreyImage {
    int width = 0;
    int height = 0;
    std::vector<quint8> pixels;
};

/// What a file shows, or why it cannot be used (German, without a full stop).
struct DecodedImage {
    GreyImage image;
    QString fault;
};

/// Any picture in a BMP file that is not compressed: 1, 4, 8, 24 or 32 bits a pixel, either way up. With 1 bit a pixel
/// 0 is black whatever the palette says, as everywhere with the handheld's pictures.
DecodedImage DecodeBmp(const QByteArray &file);

/// A file of its own for the rows, without any template.
QByteArray BmpBytes(const PictureRows &rows, PictureGeometry geometry);

/// The rows of a picture value, without its size bytes.
PictureRows RowsOf(const Picture &picture);

/// Path of the template for pictures of this width (48 or 14); it shows the picture saved last.
QString TemplatePath(int width);

} // namespace hr::symbols
