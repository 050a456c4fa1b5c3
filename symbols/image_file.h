// Picture files for the terminal program: 1-bit pictures from and to BMP and PNG, without a window system.
//
// Read: BMP with 1, 4, 8, 24 or 32 bits a pixel, not compressed, either way up; PNG of every kind (transparent is white).
// A pixel darker than half is set. Written: 1-bit BMP and black-and-white PNG. The file's ending says which.
#pragma once

#include "symbols/bmp_file.h"

#include <QByteArray>
#include <QString>

namespace hr::symbols
{

/// What reading a file brought: the rows (see PictureRows in bmp_file.h), or why it cannot be used (German, without a
/// full stop; a wrong size names both sizes).
struct ReadImage {
    PictureRows rows;
    QString fault;
};

/// True for names that end in .bmp or .png.
bool IsImageName(const QString &fileName);

/// The rows of a picture of any size, dark where it is darker than half.
PictureRows RowsOfGrey(const GreyImage &image);

ReadImage ReadImageFile(const QString &fileName, const QByteArray &file, PictureGeometry geometry);

/// The file of a picture; empty when it could not be made.
QByteArray ImageFileOf(const QString &fileName, const PictureRows &rows, PictureGeometry geometry);

} // namespace hr::symbols
