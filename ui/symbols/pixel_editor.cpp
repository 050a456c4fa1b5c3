#include "ui/symbols/pixel_editor.h"

#include "platform/files.h"
#include "program/ask.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/record.h"
#include "ui/common/desktop.h"
#include "ui/common/symbol_pictures.h"
#include "ui/symbols/brightness_dialog.h"
#include "ui/symbols/cell_image.h"
#include "ui/symbols/pixel_canvas.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"
#include "ui/widgets/window_place.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <memory>

namespace hr::ui
{

namespace
{

std::unique_ptr<PixelEditor> theEditor;

constexpr int FirstButtonLeft = 270;
constexpr int ButtonGap = 150;
constexpr int ButtonHeight = 345;
constexpr int RightMargin = 200;
constexpr int CaptionMargin = 8; // logical pixels

constexpr int ExtraGap = 2; // logical pixels around what stands beside or under the buttons

int Pixels(int twips)
{
    return PixelsOfTwips(twips);
}

/// The image of a PNG file, told by its content; nothing for every other file.
std::optional<QByteArray> PngContent(const QString &fileName)
{
    std::optional<QByteArray> content = ReadWholeFile(fileName);
    if (!content || !content->startsWith("\x89PNG\r\n\x1A\n"))
        return {};
    return content;
}

} // namespace

PixelEditor::PixelEditor()
    : history(picture)
    , scroller(new QScrollArea(this))
    , area(new QWidget(scroller))
    , preview(new PixelPreview(picture, area))
    , canvas(new PixelCanvas(picture, history, *preview, area))
    , editMenu(new QMenu(this))
    , editButton(new QToolButton(area))
{
    setObjectName(QStringLiteral("Pixeledit"));
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setFocusPolicy(Qt::NoFocus); // its arrow keys are the cells'
    scroller->setWidget(area);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroller);
    connect(canvas, &PixelCanvas::cursorMoved, this, &PixelEditor::showCell);
    const auto makeButton = [this](const char *name, const char *caption, void (PixelEditor::*action)()) {
        auto *button = NamedButton(QLatin1String(name), QLatin1String(caption), area);
        connect(button, &QPushButton::clicked, this, action);
        return button;
    };
    buttons = {makeButton("SaveBMPBut", "Save BMP", &PixelEditor::saveBmp),
        makeButton("LoadBMPBut", "Load BMP", &PixelEditor::loadBmp),
        makeButton("ClrBut", "Clr all", &PixelEditor::clearAll), makeButton("OK_but", "OK", &PixelEditor::leave)};
    constexpr std::array keys{Qt::Key_S, Qt::Key_L, Qt::Key_C, Qt::Key_O};
    for (size_t i = 0; i < keys.size(); ++i)
        AltKey(buttons.at(i), keys.at(i));
    connect(&history, &PixelHistory::restored, this, &PixelEditor::showCells);
    buildMenu();
}

PixelEditor::~PixelEditor() = default;

template <typename Act>
QAction *PixelEditor::addCommand(const char *name, const QString &text, QKeyCombination key, Act act)
{
    auto *action = new QAction(text, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(QKeySequence(key));
    connect(action, &QAction::triggered, this, act);
    editMenu->addAction(action);
    addAction(action); // its shortcut works in the window, not in the menu alone
    return action;
}

/// The right mouse button erases, so these commands have a button instead of a context menu.
void PixelEditor::buildMenu()
{
    editButton->setObjectName(QStringLiteral("BearbeitenBut"));
    editButton->setText(QStringLiteral("Bearbeiten"));
    editButton->setShortcut(QKeySequence(Qt::ALT | Qt::Key_B));
    editButton->setFocusPolicy(Qt::StrongFocus);
    connect(editButton, &QToolButton::clicked, this, &PixelEditor::openMenu);
    auto *undo =
        addCommand("UndoAction", QStringLiteral("Rückgängig"), Qt::CTRL | Qt::Key_Z, [this] { history.undo(); });
    auto *redo =
        addCommand("RedoAction", QStringLiteral("Wiederholen"), Qt::CTRL | Qt::Key_Y, [this] { history.redo(); });
    redo->setShortcuts({redo->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    for (QAction *action : {undo, redo})
        action->setEnabled(false);
    connect(&history, &PixelHistory::canUndoChanged, undo, &QAction::setEnabled);
    connect(&history, &PixelHistory::canRedoChanged, redo, &QAction::setEnabled);
    editMenu->addSeparator();
    addCommand("CopyAction", QStringLiteral("Kopieren"), Qt::CTRL | Qt::Key_C, &PixelEditor::copy);
    addCommand("PasteAction", QStringLiteral("Einfügen"), Qt::CTRL | Qt::Key_V, &PixelEditor::paste);
    buildPictureCommands();
}

void PixelEditor::buildPictureCommands()
{
    const auto shift = [this](int right, int up) {
        return [this, right, up] { change(ShiftedCells(picture.Pixel, picture.geometry(), right, up)); };
    };
    const auto mirror = [this](bool leftRight) {
        return [this, leftRight] { change(MirroredCells(picture.Pixel, picture.geometry(), leftRight)); };
    };
    editMenu->addSeparator();
    addCommand("LeftAction", QStringLiteral("Nach links schieben"), Qt::CTRL | Qt::Key_Left, shift(-1, 0));
    addCommand("RightAction", QStringLiteral("Nach rechts schieben"), Qt::CTRL | Qt::Key_Right, shift(1, 0));
    addCommand("UpAction", QStringLiteral("Nach oben schieben"), Qt::CTRL | Qt::Key_Up, shift(0, 1));
    addCommand("DownAction", QStringLiteral("Nach unten schieben"), Qt::CTRL | Qt::Key_Down, shift(0, -1));
    editMenu->addSeparator();
    addCommand("MirrorHAction", QStringLiteral("Waagrecht spiegeln"), Qt::CTRL | Qt::Key_H, mirror(true));
    addCommand("MirrorVAction", QStringLiteral("Senkrecht spiegeln"), Qt::CTRL | Qt::Key_J, mirror(false));
    addCommand("InvertAction", QStringLiteral("Invertieren"), Qt::CTRL | Qt::Key_I,
        [this] { change(InvertedCells(picture.Pixel, picture.geometry())); });
}

/// Popped up, not set as the button's menu: that would wait in a loop of its own.
void PixelEditor::openMenu()
{
    editMenu->popup(editButton->mapToGlobal(QPoint(0, editButton->height())));
}

/// Beside the buttons where there is room, else below them; nothing prescribed moves or grows.
void PixelEditor::placeExtras(int buttonsEnd)
{
    preview->fitPicture();
    const int gap = Pixels(ButtonGap);
    const QSize wanted = editButton->sizeHint();
    const bool beside =
        buttonsEnd + gap + wanted.width() + gap + preview->width() + Pixels(RightMargin) <= area->width();
    const QRect buttonRow = buttons.at(0)->geometry();
    const int left = beside ? buttonsEnd + gap : Pixels(FirstButtonLeft);
    const int top = beside ? buttonRow.top() : buttonRow.bottom() + 1 + ExtraGap;
    const int buttonHeight = beside ? buttonRow.height() : qMin(wanted.height(), area->height() - top - ExtraGap);
    editButton->setGeometry(left, top, wanted.width(), buttonHeight);
    // Never higher than that: the topmost line of the band still belongs to the cells.
    const int previewTop = top + qMax(ExtraGap, (buttonHeight - preview->height()) / 2);
    preview->move(left + wanted.width() + gap, previewTop);
}

/// Puts the buttons below the cells; returns the right edge of the last one in logical pixels.
int PixelEditor::placeButtons()
{
    constexpr std::array<int, 4> widths{1005, 1005, 1095, 1095};
    const int top = Pixels(picture.SymbolHeight * CellPitch + 2 * GridOrigin);
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
    const int width = qMax(Pixels(picture.SymbolWidth * CellPitch + 2 * GridOrigin), buttonsEnd);
    const int height = Pixels(picture.SymbolHeight * CellPitch + 2 * GridOrigin + ButtonBand);
    area->resize(width, height);
    fitScreen();
    canvas->setGeometry(area->rect());
    canvas->lower();
    placeExtras(buttonsEnd - Pixels(RightMargin));
    picture.LoadCellsFromBuffer();
    buttons.at(0)->setEnabled(
        picture.SymbolWidth == LokSymbolGeometry.width || picture.SymbolWidth == HalfSymbolGeometry.width);
    canvas->restart();
}

/// The window has the size of its contents; a screen with less room gets scroll bars.
void PixelEditor::fitScreen()
{
    const QSize whole = area->size();
    const QSize room = RoomForWindow(*screen());
    const QSize bars(
        scroller->verticalScrollBar()->sizeHint().width(), scroller->horizontalScrollBar()->sizeHint().height());
    const bool across = whole.width() > room.width();
    const bool down = whole.height() > room.height();
    const QSize wanted = whole + QSize(down ? bars.width() : 0, across ? bars.height() : 0);
    if (across || down) {
        setMinimumSize(0, 0);
        setMaximumSize(wanted);
        resize(wanted.boundedTo(room));
    } else {
        setFixedSize(whole);
    }
}

/// The cell that the keys have reached stays in sight.
void PixelEditor::showCell(const QRect &cell)
{
    scroller->ensureVisible(cell.center().x(), cell.center().y(), cell.width(), cell.height());
}

Picture PixelEditor::edit(const Picture &wanted)
{
    picture = EditedPicture(wanted);
    setUp();
    history.clear();
    PixelEditDone = 0;
    present();
    canvas->setFocus();
    if (!PumpUntil([this] { return PixelEditDone == 1; }))
        leave();
    return picture.picture();
}

void PixelEditor::showCells()
{
    canvas->update();
    preview->update();
}

void PixelEditor::change(const PixelCells &cells)
{
    history.end(); // a stroke under way is a step of its own
    history.begin();
    picture.Pixel = cells;
    history.end();
    showCells();
}

void PixelEditor::clearAll()
{
    history.end();
    history.begin();
    picture.ClearCells();
    history.end();
    showCells();
}

void PixelEditor::copy()
{
    QGuiApplication::clipboard()->setImage(ImageOf(picture.painted()));
}

void PixelEditor::paste()
{
    const QImage image = QGuiApplication::clipboard()->image();
    if (image.isNull())
        TheAsk().showBox({QStringLiteral("In der Zwischenablage ist kein Bild."), QStringLiteral("Einfügen"),
            BoxIcon::Information});
    else
        change(CellsOfImage(image, picture.geometry()));
}

void PixelEditor::loadBmp()
{
    const QString name = TheDesktop().openFileName(QStringLiteral("Öffne BMP File"), QStringLiteral("*.bmp"));
    if (name.isEmpty() || PixelEditDone == 1)
        return;
    const std::optional<QByteArray> png = PngContent(name);
    const std::optional<PixelCells> cells = png ? cellsOfPng(*png, name) : std::nullopt;
    if (PixelEditDone == 1) // left while a question was open
        return;
    history.end();
    history.begin();
    int result = 1;
    if (cells) {
        picture.Pixel = *cells;
        picture.StoreCellsInBuffer();
        result = 0;
    } else if (!png) {
        picture.LoadBmpToSpibuf(name, result);
    }
    picture.LaySizeBytes(); // also after a refused file
    if (result == 0 && PixelEditDone == 0)
        setUp();
    history.end();
}

/// Nothing when the file is damaged, after its box, or when the user does not want a picture of another size, or cancels.
std::optional<PixelCells> PixelEditor::cellsOfPng(const QByteArray &content, const QString &name)
{
    const PictureGeometry geometry = picture.geometry();
    QImage image = QImage::fromData(content, "PNG");
    if (image.isNull()) {
        TheAsk().showBox({QStringLiteral("Die Datei \"%1\" kann nicht gelesen werden!").arg(name),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return {};
    }
    const bool photo = !IsBlackAndWhite(image);
    if (image.size() != QSize(geometry.width, geometry.height)) {
        const QString question =
            QStringLiteral("Das Bild hat %1 × %2 statt %3 × %4 Bildpunkte. Soll es eingepasst werden?")
                .arg(image.width())
                .arg(image.height())
                .arg(geometry.width)
                .arg(geometry.height);
        if (!TheAsk().askYesNo({question, QStringLiteral("Bild einpassen?"), BoxIcon::None}, false))
            return {};
        image = FittedImage(image, geometry);
    }
    if (!photo)
        return CellsOfImage(image, geometry);
    return PixelEditDone == 0 ? CellsOfPhoto(image, geometry, this) : std::nullopt;
}

void PixelEditor::saveBmp()
{
    const QString name =
        TheDesktop().saveFileName(QStringLiteral("BMP File speichern"), QStringLiteral("*.bmp"), QString());
    if (name.isEmpty())
        return;
    int result = 0;
    picture.SaveSpibufToBmp(name, result);
    if (const auto kind = KindOfFolder(name))
        TellPicturesChanged(*kind);
}

void PixelEditor::leave()
{
    if (PixelEditDone == 1)
        return;
    picture.StoreCellsInBuffer();
    picture.LaySizeBytes();
    editMenu->hide();
    hide();
    PixelEditDone = 1;
}

/// Enter presses the button that has the focus, as everywhere.
void PixelEditor::keyPressEvent(QKeyEvent *event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && editButton->hasFocus())
        editButton->click();
    else
        LeavableWindow::keyPressEvent(event);
}

Picture EditPicture(const Picture &picture)
{
    if (!theEditor)
        theEditor = std::make_unique<PixelEditor>();
    const WaitingWindow waiting(theEditor.get());
    Picture edited = theEditor->edit(picture);
    ShowPicture(edited);
    return edited;
}

void ResetPixelEditor()
{
    theEditor.reset();
}

} // namespace hr::ui
