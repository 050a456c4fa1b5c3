// A photo becomes black and white: the user says how dark, and sees at once what becomes of it.
#pragma once

#include "symbols/pixel_cells.h"

#include <QDialog>
#include <QImage>

#include <optional>

class QLabel;
class QSlider;

namespace hr::ui
{

class BrightnessDialog : public QDialog
{
    Q_OBJECT

public:
    /// The image has the size of the picture at most.
    BrightnessDialog(const QImage &photo, PictureGeometry size, QWidget *parent);

    /// As the slider stands.
    [[nodiscard]] PixelCells cells() const;

private:
    void showPreview();

    const QImage image;
    const PictureGeometry geometry;
    QLabel *preview;
    QSlider *slider; // to the right the picture becomes brighter
};

/// Nothing when the user cancels.
std::optional<PixelCells> CellsOfPhoto(const QImage &photo, PictureGeometry geometry, QWidget *parent);

} // namespace hr::ui
