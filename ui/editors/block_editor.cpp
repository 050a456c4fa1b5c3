#include "ui/editors/block_editor.h"

#include "handheld/discovery.h"
#include "platform/run_control.h"
#include "platform/world.h"
#include "ui/build_controls.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/editors/cell_input.h"
#include "ui/grid.h"
#include "ui/pickers.h"
#include "ui/picture_cache.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace
{
constexpr int RowHeight = 24;
constexpr int RowMargin = 6; // around the text, where the font is larger than usual
constexpr int WindowHeight = 600;
constexpr int ScreenMargin = 80; // room for the window's frame and a task bar
constexpr int LeastRowsShown = 6;
} // namespace

SymbolPictures AccessoryPictures(int symbol)
{
    return {PictureOfFile(PicturePath(SymbolKind::Accessory, symbol, CatalogueHalf(SymbolKind::Accessory, HalfOff))),
        PictureOfFile(PicturePath(SymbolKind::Accessory, symbol, CatalogueHalf(SymbolKind::Accessory, HalfOn)))};
}

BlockEditor::BlockEditor(const BlockEditorLook &look, bool &loaded)
    : grid(new Grid(look.rows, static_cast<int>(look.headings.size()), this))
    , input(new CellInput(grid))
    , tableLoaded(loaded)
    , readBut(NamedButton(look.readName, look.readCaption, this))
    , writeBut(NamedButton(look.writeName, look.writeCaption, this))
    , cancelBut(NamedButton(QStringLiteral("CancelButton"), QStringLiteral("Abbrechen"), this))
{
    setObjectName(look.windowName);
    setWindowTitle(look.caption);
    buildGrid(look);
    buildLayout();
    resize(sizeHint().width(), qMin(WindowHeight, screen()->availableSize().height() - ScreenMargin));
    connect(readBut, &QPushButton::clicked, this, [this] { command([this] { read(); }); });
    connect(writeBut, &QPushButton::clicked, this, [this] { command([this] { write(); }); });
    connect(cancelBut, &QPushButton::clicked, this, &BlockEditor::leave);
    connect(grid, &Grid::cellActed, this, &BlockEditor::act);
    connect(grid, &Grid::inputAsked, this, [this](int row, int column) {
        if (takesInput(column))
            act(row, column);
    });
}

void BlockEditor::buildGrid(const BlockEditorLook &look)
{
    grid->setObjectName(look.gridName);
    grid->setAccessibleName(look.caption);
    grid->setHorizontalHeaderLabels(look.headings);
    grid->verticalHeader()->setDefaultSectionSize(qMax(RowHeight, fontMetrics().height() + RowMargin));
    for (int i = 0; i < grid->columnCount(); ++i) {
        const int width = look.columnWidths.at(static_cast<size_t>(i));
        grid->setColumnWidth(i, qMax(width, grid->horizontalHeader()->sectionSizeHint(i)));
    }
    for (int row = 0; row < look.rows; ++row)
        grid->setText(row, 0, QString::number(row + 1));
    grid->setMinimumHeight(RowHeight * LeastRowsShown);
    grid->fixWidthToColumns();
    grid->setCurrentCell(0, 1);
}

void BlockEditor::buildLayout()
{
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(readBut);
    buttons->addWidget(writeBut);
    buttons->addStretch();
    buttons->addWidget(cancelBut);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(grid, 1, Qt::AlignHCenter);
    layout->addLayout(buttons);
}

void BlockEditor::open()
{
    show();
    raise();
    activateWindow();
}

void BlockEditor::showEvent(QShowEvent *event)
{
    updateWriteButton();
    QWidget::showEvent(event);
}

void BlockEditor::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous()) // minimised windows come back
        input->commit();
    QWidget::hideEvent(event);
}

void BlockEditor::closeEvent(QCloseEvent *event)
{
    event->ignore();
    leave();
}

void BlockEditor::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        leave();
    else
        QWidget::keyPressEvent(event);
}

/// Hiding disturbs nobody else's command; a command of this window keeps it open.
void BlockEditor::leave()
{
    input->runAfterInput([this] {
        if (!working)
            hide();
        else
            TheFrontend().raiseWaitingWindow();
    });
}

void BlockEditor::command(const std::function<void()> &work)
{
    input->runAfterInput([this, work] {
        const BusyScope busy;
        if (!busy.ok())
            return;
        working = true;
        work();
        working = false;
    });
}

void BlockEditor::read()
{
    if (!HandheldConnected())
        return;
    const ReadResult result = readTable();
    if (result == ReadResult::BrokenOff)
        return;
    tableLoaded = result == ReadResult::Complete; // what a time-out left may not be written over months of work
    updateWriteButton();
}

void BlockEditor::write()
{
    if (HandheldConnected())
        writeTable();
}

void BlockEditor::act(int row, int column)
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    working = !takesInput(column); // an input is ended by the wish to leave
    actOn(row, column);
    working = false;
}

void BlockEditor::updateWriteButton()
{
    writeBut->setEnabled(tableLoaded);
}

void BlockEditor::showPictures(int row, int redColumn, const SymbolPictures &pictures)
{
    grid->setPicture(row, redColumn, pictures.red);
    grid->setPicture(row, redColumn + 1, pictures.green);
}

int BlockEditor::pickAccessorySymbol(int present)
{
    const int chosen = PickSymbol(SymbolKind::Accessory, present);
    activateWindow(); // the picker has no owner: without this the main window may come forward
    return chosen;
}
