#include "ui/symbols/pixel_editor.h"

#include "program/ask.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/picture.h"
#include "ui/common/windows.h"
#include "ui/widgets/build_controls.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>

#include <memory>

namespace
{

std::unique_ptr<PixelEditor> theEditor;

constexpr int FirstButtonLeft = 270;
constexpr int ButtonGap = 150;
constexpr int ButtonHeight = 345;
constexpr int RightMargin = 200;
constexpr int CaptionMargin = 8; // logical pixels

int Pixels(int twips)
{
    return (twips + TwipsPerPixel / 2) / TwipsPerPixel;
}

} // namespace

/// All cells in one painted area; it covers the whole client area, as the mouse is followed everywhere in it.
class PixelCanvas : public QWidget
{
public:
    explicit PixelCanvas(QWidget *parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("Pixel"));
        setAccessibleName(QStringLiteral("Bildpunkte"));
        setFocusPolicy(Qt::StrongFocus);
    }

    void restart()
    {
        cursor = 1 + SymbolWidth * (SymbolHeight - 1); // top left
        update();
    }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override
    {
        lastPosition = event->position();
        paintAt(event->position(), event->buttons());
    }
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *) override { update(cellRect(cursor)); }
    void focusOutEvent(QFocusEvent *) override { update(cellRect(cursor)); }

private:
    [[nodiscard]] static QRect cellRect(int number)
    {
        const CellPlace place = PlaceOfCell(ShownGeometry(), number);
        return {Pixels(place.left), Pixels(place.top), Pixels(CellSize), Pixels(CellSize)};
    }

    static constexpr double StrokeStep = 5; // logical pixels, less than a cell

    void paintAt(QPointF position, Qt::MouseButtons mouseButtons);
    void setCell(int number, int colour);
    void moveCursor(int columns, int rows);

    int cursor = 1;       // cell number
    QPointF lastPosition; // of the pointer in a stroke
};

void PixelCanvas::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    for (int number = 1; number <= SymbolWidth * SymbolHeight; ++number) {
        const QRect cell = cellRect(number);
        if (!cell.intersects(event->rect()))
            continue;
        const bool dark = Pixel.at(static_cast<size_t>(number - 1)) == Black;
        painter.fillRect(cell, dark ? Qt::black : Qt::white);
        if (number == cursor && hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRect(cell.adjusted(1, 1, -1, -1));
        }
    }
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
    const QPointF twips = position * TwipsPerPixel;
    const int number = CellAt(ShownGeometry(), twips.x(), twips.y());
    if (number == 0)
        return;
    if (mouseButtons == Qt::LeftButton)
        setCell(number, Black);
    else if (mouseButtons == Qt::RightButton)
        setCell(number, White);
}

void PixelCanvas::setCell(int number, int colour)
{
    Pixel.at(static_cast<size_t>(number - 1)) = colour;
    update(cellRect(number));
}

void PixelCanvas::moveCursor(int columns, int rows)
{
    const int column = qBound(0, (cursor - 1) % SymbolWidth + columns, SymbolWidth - 1);
    const int row = qBound(0, (cursor - 1) / SymbolWidth + rows, SymbolHeight - 1);
    update(cellRect(cursor));
    cursor = SymbolWidth * row + column + 1;
    update(cellRect(cursor));
}

void PixelCanvas::keyPressEvent(QKeyEvent *event)
{
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
        return setCell(cursor, Black);
    case Qt::Key_Backspace:
        return setCell(cursor, White);
    default:
        QWidget::keyPressEvent(event);
    }
}

PixelEditor::PixelEditor() : canvas(new PixelCanvas(this))
{
    setObjectName(QStringLiteral("Pixeledit"));
    const auto makeButton = [this](const char *name, const char *caption, void (PixelEditor::*action)()) {
        auto *button = NamedButton(QLatin1String(name), QLatin1String(caption), this);
        connect(button, &QPushButton::clicked, this, action);
        return button;
    };
    buttons = {makeButton("SaveBMPBut", "Save BMP", &PixelEditor::saveBmp),
        makeButton("LoadBMPBut", "Load BMP", &PixelEditor::loadBmp),
        makeButton("ClrBut", "Clr all", &PixelEditor::clearAll), makeButton("OK_but", "OK", &PixelEditor::leave)};
}

PixelEditor::~PixelEditor() = default;

/// Puts the buttons below the cells; returns the right edge of the last one in logical pixels.
int PixelEditor::placeButtons()
{
    constexpr std::array<int, 4> widths{1005, 1005, 1095, 1095};
    const int top = Pixels(SymbolHeight * CellPitch + 2 * GridOrigin);
    int left = Pixels(FirstButtonLeft);
    for (size_t i = 0; i < buttons.size(); ++i) {
        // The given sizes are the least: captions must never be cut.
        const QSize needed = buttons.at(i)->sizeHint();
        const int caption = buttons.at(i)->fontMetrics().horizontalAdvance(buttons.at(i)->text());
        const int width = qMax(Pixels(widths.at(i)), caption + CaptionMargin);
        const int height = qMin(qMax(Pixels(ButtonHeight), needed.height()), Pixels(ButtonBand) - 4);
        buttons.at(i)->setGeometry(left, top, width, height);
        left += width + Pixels(ButtonGap);
    }
    return left - Pixels(ButtonGap);
}

void PixelEditor::setUp()
{
    setWindowTitle(QStringLiteral("PixelEdit"));
    const int buttonsEnd = placeButtons() + Pixels(RightMargin);
    const int width = qMax(Pixels(SymbolWidth * CellPitch + 2 * GridOrigin), buttonsEnd);
    const int height = Pixels(SymbolHeight * CellPitch + 2 * GridOrigin + ButtonBand);
    setFixedSize(width, height);
    canvas->setGeometry(rect());
    canvas->lower();
    LoadCellsFromBuffer();
    buttons.at(0)->setEnabled(SymbolWidth == LokSymbolGeometry.width || SymbolWidth == HalfSymbolGeometry.width);
    canvas->restart();
}

void PixelEditor::edit()
{
    setUp();
    PixelEditDone = 0;
    present();
    canvas->setFocus();
    if (!PumpUntil([] { return PixelEditDone == 1; }))
        leave();
}

void PixelEditor::clearAll()
{
    ClearCells();
    canvas->update();
}

void PixelEditor::loadBmp()
{
    const QString name = TheWindows().openFileName(QStringLiteral("Öffne BMP File"), QStringLiteral("*.bmp"));
    if (name.isEmpty() || PixelEditDone == 1)
        return;
    int result = 0;
    LoadBmpToSpibuf(name, result);
    LaySizeBytes(); // also after a refused file
    if (result == 0 && PixelEditDone == 0)
        setUp();
}

void PixelEditor::saveBmp()
{
    const QString name =
        TheWindows().saveFileName(QStringLiteral("BMP File speichern"), QStringLiteral("*.bmp"), QString());
    if (name.isEmpty())
        return;
    int result = 0;
    SaveSpibufToBmp(name, result);
    if (const auto kind = KindOfFolder(name))
        TellPicturesChanged(*kind);
}

void PixelEditor::leave()
{
    if (PixelEditDone == 1)
        return;
    StoreCellsInBuffer();
    LaySizeBytes();
    hide();
    PixelEditDone = 1;
}

Picture EditPicture(const Picture &picture)
{
    if (!theEditor)
        theEditor = std::make_unique<PixelEditor>();
    const WaitingWindow waiting(theEditor.get());
    ShowPicture(picture);
    theEditor->edit();
    return TakePicture(picture.bytes.size());
}

void ResetPixelEditor()
{
    theEditor.reset();
    PixelEditDone = 1;
}
