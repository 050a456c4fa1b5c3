#include "ui/symbols/cell_image.h"

#include <QPainter>

#include <climits>

namespace hr::ui
{

namespace
{

QImage OnWhite(QImage image)
{
    image.setDevicePixelRatio(1); // pixels count, not lengths on a screen
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter(&flat).drawImage(QPoint(0, 0), image);
    return flat;
}

size_t CellIndex(PictureGeometry geometry, int x, int line)
{
    return static_cast<size_t>(geometry.width * (geometry.height - 1 - line) + x); // the bottom row comes first
}

} // namespace

PixelCells CellsOfImage(const QImage &image, PictureGeometry geometry, int threshold)
{
    const QImage flat = OnWhite(image);
    const QPoint shift((geometry.width - flat.width()) / 2, (geometry.height - flat.height()) / 2);
    PixelCells cells;
    cells.fill(White);
    for (int line = 0; line < geometry.height; ++line) {
        for (int x = 0; x < geometry.width; ++x) {
            const QPoint from = QPoint(x, line) - shift;
            if (flat.valid(from) && qGray(flat.pixel(from)) < threshold)
                cells.at(CellIndex(geometry, x, line)) = Black;
        }
    }
    return cells;
}

bool IsBlackAndWhite(const QImage &image)
{
    const QImage flat = OnWhite(image);
    for (int y = 0; y < flat.height(); ++y) {
        for (int x = 0; x < flat.width(); ++x) {
            const int grey = qGray(flat.pixel(x, y));
            if (grey != qGray(qRgb(0, 0, 0)) && grey != qGray(qRgb(UCHAR_MAX, UCHAR_MAX, UCHAR_MAX)))
                return false;
        }
    }
    return true;
}

QImage ImageOfCells(const PixelCells &cells, PictureGeometry geometry)
{
    QImage image(geometry.width, geometry.height, QImage::Format_RGB32);
    for (int line = 0; line < geometry.height; ++line) {
        for (int x = 0; x < geometry.width; ++x)
            image.setPixelColor(x, line, cells.at(CellIndex(geometry, x, line)) == Black ? Qt::black : Qt::white);
    }
    return image;
}

QImage FittedImage(const QImage &image, PictureGeometry geometry)
{
    return OnWhite(image).scaled(geometry.width, geometry.height, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace hr::ui
