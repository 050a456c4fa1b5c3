#include "ui/symbols/pixel_canvas.h"

#include "ui/common/symbol_pictures.h"
#include "ui/symbols/pixel_history.h"
#include "ui/widgets/crisp_picture.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace hr::ui
{

namespace
{
constexpr double StrokeStep = 5; // logical pixels, less than a cell
constexpr int PreviewMargin = 2; // white, so that the picture's edge shows on dark windows
} // namespace

int PixelsOfTwips(int twips)
{
    return (twips + TwipsPerPixel / 2) / TwipsPerPixel;
}

PixelPreview::PixelPreview(const EditedPicture &edited, QWidget *parent) : QWidget(parent), picture(edited)
{
    setObjectName(QStringLiteral("VorschauPic"));
    setAccessibleName(QStringLiteral("Vorschau"));
    setAttribute(Qt::WA_TransparentForMouseEvents); // the cells' area follows the mouse everywhere
}

void PixelPreview::fitPicture()
{
    const QSize pixels(picture.SymbolWidth + 2 * PreviewMargin, picture.SymbolHeight + 2 * PreviewMargin);
    resize(CrispRoom(pixels, devicePixelRatioF()));
    update();
}

void PixelPreview::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    DrawCrisp(painter, rect(), QPixmap::fromImage(ImageOf(picture.painted())), Qt::black);
}

PixelCanvas::PixelCanvas(
    EditedPicture &edited, PixelHistory &pixelHistory, PixelPreview &pixelPreview, QWidget *parent)
    : QWidget(parent), picture(edited), history(pixelHistory), preview(pixelPreview)
{
    setObjectName(QStringLiteral("Pixel"));
    setAccessibleName(QStringLiteral("Bildpunkte"));
    setFocusPolicy(Qt::StrongFocus);
}

void PixelCanvas::restart()
{
    cursor = 1 + picture.SymbolWidth * (picture.SymbolHeight - 1); // top left
    tellCell();
    update();
}

void PixelCanvas::focusInEvent(QFocusEvent *)
{
    update(cellRect(cursor));
}

void PixelCanvas::focusOutEvent(QFocusEvent *)
{
    update(cellRect(cursor));
}

QRect PixelCanvas::cellRect(int number) const
{
    const CellPlace place = PlaceOfCell(picture.geometry(), number);
    return {PixelsOfTwips(place.left), PixelsOfTwips(place.top), PixelsOfTwips(CellSize), PixelsOfTwips(CellSize)};
}

void PixelCanvas::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    for (int number = 1; number <= picture.SymbolWidth * picture.SymbolHeight; ++number) {
        const QRect cell = cellRect(number);
        if (!cell.intersects(event->rect()))
            continue;
        const bool dark = picture.Pixel.at(static_cast<size_t>(number - 1)) == Black;
        painter.fillRect(cell, dark ? Qt::black : Qt::white);
        if (number == cursor && hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRect(cell.adjusted(1, 1, -1, -1));
        }
    }
}

void PixelCanvas::mousePressEvent(QMouseEvent *event)
{
    lastPosition = event->position();
    paintAt(event->position(), event->buttons());
}

void PixelCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->buttons() == Qt::NoButton) // until the last one is released it is one stroke
        history.end();
}

/// A fast stroke comes as a few distant positions; the cells between them are painted too.
void PixelCanvas::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF way = event->position() - lastPosition;
    const int steps = 1 + static_cast<int>(way.manhattanLength() / StrokeStep);
    for (int i = 1; i <= steps; ++i)
        paintAt(lastPosition + way * i / steps, event->buttons());
    lastPosition = event->position();
}

void PixelCanvas::paintAt(QPointF position, Qt::MouseButtons mouseButtons)
{
    if (!rect().contains(position.toPoint())) // dragged out of the window
        return;
    const QPointF twips = position * TwipsPerPixel;
    const int number = CellAt(picture.geometry(), twips.x(), twips.y());
    if (number == 0)
        return;
    if (mouseButtons == Qt::LeftButton)
        setCell(number, Black);
    else if (mouseButtons == Qt::RightButton)
        setCell(number, White);
}

void PixelCanvas::setCell(int number, int colour)
{
    history.begin();
    picture.Pixel.at(static_cast<size_t>(number - 1)) = colour;
    update(cellRect(number));
    preview.update();
}

/// For those who cannot see the cells; rows are counted from the top.
void PixelCanvas::tellCell()
{
    const bool dark = picture.Pixel.at(static_cast<size_t>(cursor - 1)) == Black;
    setAccessibleDescription(QStringLiteral("Zeile %1, Spalte %2: %3")
                                 .arg(picture.SymbolHeight - (cursor - 1) / picture.SymbolWidth)
                                 .arg((cursor - 1) % picture.SymbolWidth + 1)
                                 .arg(dark ? QStringLiteral("schwarz") : QStringLiteral("weiß")));
}

/// By keyboard: each cell is a step of its own.
void PixelCanvas::setCursorCell(int colour)
{
    history.end();
    setCell(cursor, colour);
    history.end();
    tellCell();
}

void PixelCanvas::moveCursor(int columns, int rows)
{
    const int column = qBound(0, (cursor - 1) % picture.SymbolWidth + columns, picture.SymbolWidth - 1);
    const int row = qBound(0, (cursor - 1) / picture.SymbolWidth + rows, picture.SymbolHeight - 1);
    update(cellRect(cursor));
    cursor = picture.SymbolWidth * row + column + 1;
    tellCell();
    update(cellRect(cursor));
    Q_EMIT cursorMoved(cellRect(cursor));
}

void PixelCanvas::keyPressEvent(QKeyEvent *event)
{
    if (event->modifiers().testFlag(Qt::ControlModifier)) // the window's commands
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
        return moveCursor(-1, 0);
    case Qt::Key_Right:
        return moveCursor(1, 0);
    case Qt::Key_Up:
        return moveCursor(0, 1);
    case Qt::Key_Down:
        return moveCursor(0, -1);
    case Qt::Key_Space:
        return setCursorCell(Black);
    case Qt::Key_Backspace:
        return setCursorCell(White);
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace hr::ui
