// Pictures of one bit a pixel on screens of every scale: each pixel of the picture is a whole number of the screen's, so
// that nothing is blurred and no line is thicker than its neighbour.
#pragma once

#include "platform/rooms.h"

#include <QSize>

class QPainter;
class QPalette;
class QPixmap;
class QRect;

namespace hr::ui
{

/// How many device pixels a pixel of a picture takes at a scale (1.0 and more): the nearest whole number, at least 1.
int CrispFactor(double scale);

/// The area in logical pixels that a picture with its surroundings (both counted in the picture's pixels) needs at a
/// scale; at least the same number of logical pixels.
QSize CrispRoom(QSize pixels, double scale);

/// Paints a picture in the middle of an area (logical pixels), smaller where it has no room otherwise. In a dark palette
/// it gets a white margin of two of its pixels, as far as the area reaches, and an empty picture is not painted at all:
/// as on a light one nothing is seen of it.
void DrawCrisp(QPainter &painter, const QRect &area, const QPixmap &picture, const QPalette &palette);

} // namespace hr::ui
