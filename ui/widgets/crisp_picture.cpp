#include "ui/widgets/crisp_picture.h"

#include <QColor>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace hr::ui
{

namespace
{

/// The picture in one colour, the more transparent the lighter it was.
QImage InColour(const QImage &picture, const QColor &ink)
{
    QImage coloured(picture.size(), QImage::Format_ARGB32);
    constexpr int White = 255;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int darkness = White - qGray(picture.pixel(x, y));
            coloured.setPixel(x, y, qRgba(ink.red(), ink.green(), ink.blue(), darkness));
        }
    }
    return coloured;
}

int FactorIn(QSize room, QSize picture, double scale)
{
    const int fits = std::min(room.width() / picture.width(), room.height() / picture.height());
    return std::max(1, std::min(CrispFactor(scale), fits));
}

} // namespace

int CrispFactor(double scale)
{
    return std::max(1, static_cast<int>(std::floor(scale + 0.5)));
}

QSize CrispRoom(QSize pixels, double scale)
{
    const double grown = std::max(1.0, CrispFactor(scale) / scale);
    return {
        static_cast<int>(std::ceil(pixels.width() * grown)), static_cast<int>(std::ceil(pixels.height() * grown))};
}

void DrawCrisp(QPainter &painter, const QRect &area, const QPixmap &picture, const QColor &ink)
{
    const double scale = painter.device()->devicePixelRatioF();
    // Everything is placed in device pixels: at a broken scale logical ones lie between them.
    const QTransform toDevice = painter.deviceTransform();
    const QRect room = toDevice.mapRect(QRectF(area)).toAlignedRect();
    const QSize natural = picture.size();
    const int factor = FactorIn(room.size(), natural, scale);
    QRect place(QPoint(), natural * factor);
    place.moveTopLeft(room.center() - place.center());
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(
        toDevice.inverted().mapRect(QRectF(place)), InColour(picture.toImage(), ink).scaled(natural * factor));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

} // namespace hr::ui
