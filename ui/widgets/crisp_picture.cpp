#include "ui/widgets/crisp_picture.h"

#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace hr::ui
{

namespace
{

constexpr int DarkMargin = 2; // pixels of the picture
constexpr int HalfLight = 128;

bool IsDark(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < HalfLight;
}

bool IsEmpty(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < HalfLight)
                return false;
        }
    }
    return true;
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

void DrawCrisp(QPainter &painter, const QRect &area, const QPixmap &picture, const QPalette &palette)
{
    const QImage image = picture.toImage();
    const bool dark = IsDark(palette);
    if (dark && IsEmpty(image))
        return;
    const double scale = painter.device()->devicePixelRatioF();
    // Everything is placed in device pixels: at a broken scale logical ones lie between them.
    const QTransform toDevice = painter.deviceTransform();
    const QRect room = toDevice.mapRect(QRectF(area)).toAlignedRect();
    const QSize natural = picture.size();
    const int factor = FactorIn(room.size(), natural, scale);
    QRect place(QPoint(), natural * factor);
    place.moveTopLeft(room.center() - place.center());
    const QTransform toLogical = toDevice.inverted();
    if (dark) {
        const int margin = DarkMargin * factor;
        const QRect white = place.adjusted(-margin, -margin, margin, margin).intersected(room);
        painter.fillRect(toLogical.mapRect(QRectF(white)), Qt::white);
    }
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(toLogical.mapRect(QRectF(place)), image.scaled(natural * factor));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

} // namespace hr::ui
