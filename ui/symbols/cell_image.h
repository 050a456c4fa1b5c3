// Images of the toolkit, from the clipboard and image files, as cells of the pixel editor.
#pragma once

#include "symbols/pixel_cells.h"

#include <QImage>

namespace hr::ui
{

constexpr int HalfGrey = 128;

/// An image of any depth as cells: what is darker than the threshold (1 to 255) is black, what is transparent is white. An
/// image of another size is centred and cut.
PixelCells CellsOfImage(const QImage &image, PictureGeometry geometry, int threshold = HalfGrey);

/// False for a photo, or whatever else has tones between black and white.
bool IsBlackAndWhite(const QImage &image);

/// Cells as an image, upright.
QImage ImageOfCells(const PixelCells &cells, PictureGeometry geometry);

/// The image made as large as the picture allows without changing its proportions.
QImage FittedImage(const QImage &image, PictureGeometry geometry);

} // namespace hr::ui
