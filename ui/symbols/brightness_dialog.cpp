#include "ui/symbols/brightness_dialog.h"

#include "ui/common/desktop.h"
#include "ui/symbols/cell_image.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{

constexpr int Brightest = 2 * HalfGrey - 1;
constexpr int Step = 8;
constexpr int PreviewWidth = 240; // logical pixels, about
constexpr int SliderWidth = 220;

} // namespace

BrightnessDialog::BrightnessDialog(const QImage &photo, PictureGeometry size, QWidget *parent)
    : QDialog(parent)
    , image(photo)
    , geometry(size)
    , preview(NamedLabel(QStringLiteral("VorschauLbl"), QString(), this))
    , slider(new QSlider(Qt::Horizontal, this))
{
    setObjectName(QStringLiteral("HelligkeitWin"));
    setWindowTitle(QStringLiteral("Heller oder dunkler"));
    slider->setObjectName(QStringLiteral("HelligkeitSld"));
    slider->setAccessibleName(QStringLiteral("heller/dunkler"));
    slider->setRange(1, Brightest);
    slider->setSingleStep(Step);
    slider->setValue(HalfGrey);
    slider->setMinimumWidth(SliderWidth);
    preview->setAccessibleName(QStringLiteral("Vorschau"));
    auto *ok = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    auto *cancel = NamedButton(QStringLiteral("CancelButton"), QStringLiteral("Abbrechen"), this);
    auto *slides = new QHBoxLayout;
    slides->addWidget(NamedLabel(QStringLiteral("DunklerLbl"), QStringLiteral("dunkler"), this));
    slides->addWidget(slider, 1);
    slides->addWidget(NamedLabel(QStringLiteral("HellerLbl"), QStringLiteral("heller"), this));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(preview, 0, Qt::AlignHCenter);
    layout->addLayout(slides);
    layout->addLayout(buttons);
    ok->setDefault(true);
    AltKey(ok, Qt::Key_O);
    AltKey(cancel, Qt::Key_A);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(slider, &QSlider::valueChanged, this, &BrightnessDialog::showPreview);
    slider->setFocus();
    showPreview();
}

PixelCells BrightnessDialog::cells() const
{
    return CellsOfImage(image, geometry, 2 * HalfGrey - slider->value());
}

void BrightnessDialog::showPreview()
{
    const QImage shown = ImageOfCells(cells(), geometry);
    preview->setPixmap(QPixmap::fromImage(shown.scaled(shown.size() * (PreviewWidth / geometry.width))));
}

std::optional<PixelCells> CellsOfPhoto(const QImage &photo, PictureGeometry geometry, QWidget *parent)
{
    BrightnessDialog dialog(photo, geometry, parent);
    dialog.setWindowModality(Qt::ApplicationModal);
    WaitForDialog(dialog);
    return dialog.result() == QDialog::Accepted ? std::optional(dialog.cells()) : std::nullopt;
}

} // namespace hr::ui
