// The pixel editor's cells as an image of the toolkit, for the clipboard, image files and the preview.
#pragma once

#include "symbols/pixel_cells.h"

#include <QImage>

/// The picture upright, 1 bit a pixel.
QImage ImageOfCells(const PixelCells &cells, PictureGeometry geometry);

/// An image of any depth as cells: darker than half is black, what is transparent is white. An image of another size is
/// centred and cut.
PixelCells CellsOfImage(const QImage &image, PictureGeometry geometry);

/// The image made as large as the picture allows without changing its proportions.
QImage FittedImage(const QImage &image, PictureGeometry geometry);
