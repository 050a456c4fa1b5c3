// Images of the toolkit, from the clipboard and image files, as cells of the pixel editor.
#pragma once

#include "symbols/pixel_cells.h"

#include <QImage>

namespace hr::ui
{

/// An image of any depth as cells: darker than half is black, what is transparent is white. An image of another size is
/// centred and cut.
PixelCells CellsOfImage(const QImage &image, PictureGeometry geometry);

/// The image made as large as the picture allows without changing its proportions.
QImage FittedImage(const QImage &image, PictureGeometry geometry);

} // namespace hr::ui
