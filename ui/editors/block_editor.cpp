#include "ui/editors/block_editor.h"

#include "platform/world.h"
#include "shown/catalogue.h"
#include "ui/common/command.h"
#include "ui/common/deeds.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/editors/cell_input.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/window_keys.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{
constexpr int RowHeight = 24;
constexpr int WindowHeight = 600;
constexpr int ScreenMargin = 80; // room for the window's frame and a task bar
constexpr int LeastRowsShown = 6;
} // namespace

BlockEditor::BlockEditor(const BlockEditorLook &look, bool &loaded)
    : grid(new Grid(look.rows, static_cast<int>(look.headings.size()), this))
    , input(new CellInput(grid))
    , search(grid)
    , tableLoaded(loaded)
    , history([this] { return state(); }, [this](const TableState &kept) { restore(kept); })
    , readBut(NamedButton(look.readName, look.readCaption, this))
    , writeBut(NamedButton(look.writeName, look.writeCaption, this))
    , cancelBut(NamedButton(QStringLiteral("CancelButton"), QStringLiteral("Abbrechen"), this))
    , doubtLbl(NamedDoubtLabel(QStringLiteral("UnvollstaendigLbl"), this))
    , changedLbl(NamedChangedLabel(QStringLiteral("GeaendertLbl"), this))
    , menus(new QMenuBar(this))
    , unreadLbl(NamedLabel(QStringLiteral("NichtGelesenLbl"),
          QStringLiteral("Was vor dem Lesen geändert wird, geht beim Lesen verloren"), this))
{
    setObjectName(look.windowName);
    setWindowTitle(look.caption);
    buildGrid(look);
    buildLayout();
    addEdits();
    QMenu *edits = menus->addMenu(QStringLiteral("Bearbeiten"));
    edits->addActions(grid->actions()); // the same as under the right mouse button
    AltKey(edits, Qt::Key_B);
    resize(sizeHint().width(), qMin(WindowHeight, screen()->availableSize().height() - ScreenMargin));
    connect(readBut, &QPushButton::clicked, this, [this] { runCommand(&BlockEditor::read); });
    connect(writeBut, &QPushButton::clicked, this, [this] { runCommand(&BlockEditor::write); });
    connect(cancelBut, &QPushButton::clicked, this, &BlockEditor::leave);
    AltKey(readBut, Qt::Key_L);
    AltKey(writeBut, Qt::Key_S);
    AltKey(cancelBut, Qt::Key_A);
    AltKey(grid, Qt::Key_T);
    connect(grid, &Grid::cellActed, this, &BlockEditor::act);
    connect(grid, &Grid::inputAsked, this, [this](int row, int column) {
        if (takesInput(column))
            act(row, column);
    });
    connect(grid, &Grid::inputTyped, this, &BlockEditor::type);
}

void BlockEditor::buildGrid(const BlockEditorLook &look)
{
    grid->setObjectName(look.gridName);
    grid->setAccessibleName(look.caption);
    grid->setHorizontalHeaderLabels(look.headings);
    grid->measure(look.columnWidths, RowHeight);
    for (int row = 0; row < look.rows; ++row)
        grid->setText(row, 0, QString::number(row + 1));
    grid->setMinimumHeight(RowHeight * LeastRowsShown);
    grid->fixWidthToColumns();
    grid->setCurrentCell(0, 1);
}

void BlockEditor::buildLayout()
{
    auto *buttons = new QHBoxLayout;
    SameWidth({readBut, writeBut});
    buttons->addWidget(readBut);
    buttons->addWidget(writeBut);
    buttons->addStretch();
    buttons->addWidget(cancelBut);
    auto *marks = new QHBoxLayout; // keeps its place, so that the grid never moves below the pointer
    marks->addStrut(unreadLbl->sizeHint().height());
    for (QLabel *mark : {unreadLbl, doubtLbl, changedLbl})
        marks->addWidget(mark);
    marks->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(menus);
    layout->addWidget(grid, 1, Qt::AlignHCenter);
    layout->addLayout(marks);
    layout->addLayout(buttons);
}

void BlockEditor::showEvent(QShowEvent *event)
{
    if (written.empty())
        written = entries();
    updateMarks();
    QWidget::showEvent(event);
    if (!tableLoaded)
        readBut->setFocus();
}

void BlockEditor::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous()) // minimised windows come back
        input->commit();
    LeavableWindow::hideEvent(event);
}

void BlockEditor::leave()
{
    input->runAfterInput([this] {
        if (!working)
            hide();
        else
            TellBusyAgain();
    });
}

void BlockEditor::runCommand(void (BlockEditor::*work)(const Command &))
{
    input->runAfterInput([this, work] {
        const Command command;
        if (!command.ok())
            return;
        working = true;
        (this->*work)(command);
        working = false;
    });
}

void BlockEditor::read(const Command &command)
{
    if (!command.connected())
        return;
    const Outcome outcome = readTable();
    if (outcome.brokenOff())
        return;
    if (!tableLoaded && readBut->hasFocus())
        grid->setFocus();
    tableLoaded = true;
    history.stack().clear();
    written = entries();
    writeFailed = false;
    complete = outcome.ok();
    if (complete)
        NoteDeed(windowTitle() + QStringLiteral(": gelesen"));
    updateMarks();
}

void BlockEditor::write(const Command &command)
{
    const std::function<Outcome()> write = writeOfTable();
    if (!command.mayWrite() || !(complete || command.mayWriteDoubtful(QStringLiteral("die Tabelle"))))
        return;
    writeFailed = !write().ok(); // every failure has been told by then
    if (!writeFailed) {
        written = entries();
        NoteDeed(windowTitle() + QStringLiteral(": geschrieben"));
    }
    updateMarks();
}

void BlockEditor::act(int row, int column)
{
    const Command command;
    if (!command.ok())
        return;
    working = !takesInput(column); // an input is ended by the wish to leave
    change([this, row, column] { actOn(row, column); });
    working = false;
}

/// A character typed on a cell begins its input, as in a spreadsheet; on others it goes to a row.
void BlockEditor::type(int row, int column, const QString &firstCharacter)
{
    if (!takesInput(column)) {
        search.type(firstCharacter);
        return;
    }
    TheEvents().post([this, firstCharacter] { // once the input is open and waits
        if (grid->inputIsOpen())
            grid->inputBox()->setText(firstCharacter);
    });
    act(row, column);
}

void BlockEditor::updateMarks()
{
    writeBut->setEnabled(tableLoaded);
    unreadLbl->setVisible(!tableLoaded);
    grid->veil(tableLoaded ? QString() : QStringLiteral("Noch nicht gelesen"));
    setDefaultButton(tableLoaded ? nullptr : readBut);
    showLooks();
    changedLbl->setVisible(hasUnwrittenChanges());
    doubtLbl->setVisible(!complete);
}

void BlockEditor::showSymbol(int row)
{
    ShowSymbol(grid, row, redColumn(), SymbolKind::Accessory, symbolOf(row), HalfOff);
    ShowSymbol(grid, row, redColumn() + 1, SymbolKind::Accessory, symbolOf(row), HalfOn);
}

void BlockEditor::addEdit(QAction *action)
{
    menus->actions().constFirst()->menu()->addAction(action);
}

void BlockEditor::showRefused(int row, int column, const QString &allowed, const QString &kept)
{
    grid->setText(row, column, QStringLiteral("ERR!"));
    const QString words = QStringLiteral("erlaubt sind %1, gespeichert bleibt %2").arg(allowed, kept);
    grid->setWords(row, column, words, QStringLiteral("ERR!, ") + words);
}

int BlockEditor::pickAccessorySymbol(int present, const QString &purpose)
{
    const int chosen = PickSymbol(SymbolKind::Accessory, present, purpose);
    activateWindow(); // the picker has no owner: without this the main window may come forward
    return chosen;
}

} // namespace hr::ui
