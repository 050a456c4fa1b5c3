// Undo, redo, copying, pasting and filling of a table window.
#include "platform/text.h"
#include "shown/catalogue.h"
#include "ui/common/command.h"
#include "ui/editors/block_editor.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

namespace hr::ui
{

namespace
{

/// Lines and cells of a text as spreadsheets lay it on the clipboard: the last line is ended, too.
std::vector<QStringList> Cells(const QString &text)
{
    QStringList lines = ScreenLines(text).split(u'\n');
    while (!lines.isEmpty() && lines.constLast().isEmpty())
        lines.removeLast();
    std::vector<QStringList> cells;
    for (const QString &line : lines)
        cells.push_back(line.split(u'\t'));
    return cells;
}

} // namespace

void BlockEditor::addEdits()
{
    grid->setContextMenuPolicy(Qt::ActionsContextMenu);
    AddUndoActions(
        grid, [this] { travel(&QUndoStack::undo); }, [this] { travel(&QUndoStack::redo); });
    const auto add = [this](const char *name, const QString &caption, const QKeySequence &key, auto work) {
        QAction *action = NamedAction(QLatin1String(name), caption, key, grid, [this, work] { (this->*work)(); });
        action->setShortcutContext(Qt::WidgetShortcut); // in the text box the keys mean its own text
    };
    add("CopyAction", QStringLiteral("Markierte Zellen kopieren"), QKeySequence::Copy, &BlockEditor::copyCells);
    add("PasteAction", QStringLiteral("Einfügen"), QKeySequence::Paste, &BlockEditor::pasteCells);
    add("FillAction", QStringLiteral("Nach unten ausfüllen"), Qt::CTRL | Qt::Key_D, &BlockEditor::fillDown);
}

bool BlockEditor::hasUnwrittenChanges() const
{
    return writeFailed || (!written.empty() && entries() != written);
}

/// The first column without a heading; one behind the last where there are no pictures.
int BlockEditor::redColumn() const
{
    int column = 0;
    while (column < grid->columnCount() && !grid->horizontalHeaderItem(column)->text().isEmpty())
        ++column;
    return column;
}

/// What a cell holds as a text: pictures as the number of their symbol.
QString BlockEditor::cellText(int row, int column) const
{
    return column < redColumn() ? grid->text(row, column) : QString::number(symbolOf(row));
}

TableState BlockEditor::state() const
{
    TableState now{entries(), {}};
    for (int row = 0; row < grid->rowCount(); ++row) {
        for (int column = 1; column < redColumn(); ++column)
            now.texts += grid->text(row, column);
    }
    return now;
}

/// Brings a state back and shows the first row that it changes.
void BlockEditor::restore(const TableState &state)
{
    const TableState present = this->state();
    const int textColumns = redColumn() - 1;
    const auto perRow = static_cast<int>(state.entries.size()) / grid->rowCount();
    setEntries(state.entries);
    int first = -1;
    for (int row = 0; row < grid->rowCount(); ++row) {
        const auto differs = [row](const auto &one, const auto &other, int count) {
            return !std::equal(
                one.begin() + row * count, one.begin() + (row + 1) * count, other.begin() + row * count);
        };
        if (!differs(present.entries, state.entries, perRow) && !differs(present.texts, state.texts, textColumns))
            continue;
        first = first < 0 ? row : first;
        for (int column = 1; column <= textColumns; ++column)
            grid->setText(row, column, state.texts.at(row * textColumns + column - 1));
        if (redColumn() < grid->columnCount())
            showSymbol(row);
    }
    if (first >= 0)
        grid->setCurrentCell(first, qMax(1, grid->currentColumn()));
}

void BlockEditor::change(const std::function<void()> &work)
{
    TableState before = state();
    work();
    history.note(std::move(before));
    updateMarks();
}

void BlockEditor::travel(void (QUndoStack::*way)())
{
    const Command command;
    if (!command.ok())
        return;
    (history.stack().*way)();
    updateMarks();
}

void BlockEditor::copyCells()
{
    QStringList lines;
    for (const int row : grid->markedRows()) {
        QStringList cells;
        for (const int column : grid->markedColumns()) {
            if (column <= redColumn() || cells.isEmpty()) // both pictures are one symbol
                cells += cellText(row, column);
        }
        lines += cells.join(u'\t');
    }
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

/// The columns that so many pasted cells go to; none when there are not enough. The number column takes nothing: a
/// single value goes beside it.
std::vector<int> BlockEditor::columnsToLay(qsizetype width) const
{
    const int marked = grid->markedColumns().front();
    const int first = marked == 0 && width == 1 ? 1 : marked;
    std::vector<int> columns;
    for (int column = first; column < grid->columnCount() && std::ssize(columns) < width; ++column)
        columns.push_back(column);
    return std::ssize(columns) < width ? std::vector<int>() : columns;
}

/// What stands in a cell already is no fault, whatever it is: empty places may be pasted over empty ones.
QString BlockEditor::layCell(int row, int column, const QString &text)
{
    const QString reason = column == 0 ? QString() : lay(row, column, text);
    if (reason.isEmpty() || text == cellText(row, column))
        return {};
    const QString heading =
        column < redColumn() ? grid->horizontalHeaderItem(column)->text() : QStringLiteral("Symbol");
    return QStringLiteral("%1 %2, %3: \"%4\" geht nicht, %5.")
        .arg(grid->horizontalHeaderItem(0)->text(), grid->text(row, 0), heading, text, reason);
}

QString BlockEditor::laySymbol(int row, const QString &text)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    if (!isNumber || number < 0 || number >= NothingChosen)
        return QStringLiteral("erlaubt sind Symbolnummern von 0 bis %1").arg(NothingChosen - 1);
    setSymbol(row, number);
    showSymbol(row);
    return {};
}

/// A single line goes to every marked row.
QString BlockEditor::layLines(const std::vector<QStringList> &lines)
{
    const std::vector<int> marked = grid->markedRows();
    const size_t count = lines.size() == 1 ? marked.size() : lines.size();
    for (size_t i = 0; i < count; ++i) {
        const QStringList &cells = lines.at(lines.size() == 1 ? 0 : i);
        const int row = lines.size() == 1 ? marked.at(i) : marked.front() + static_cast<int>(i);
        const std::vector<int> columns = columnsToLay(cells.size());
        if (row >= grid->rowCount() || columns.empty())
            return QStringLiteral(
                "Der Text hat mehr Zeilen oder Spalten, als von der markierten Zelle an Platz haben.");
        for (size_t c = 0; c < columns.size(); ++c) {
            if (QString fault = layCell(row, columns.at(c), cells.at(static_cast<qsizetype>(c))); !fault.isEmpty())
                return fault;
        }
    }
    return {};
}

/// All or nothing: after a fault the table is as before, and the user is told.
void BlockEditor::changeWhole(const QString &title, const std::function<QString()> &work)
{
    const Command command;
    if (!command.ok() || grid->currentRow() < 0)
        return;
    const TableState before = state();
    QString fault;
    change([&] {
        fault = work();
        if (!fault.isEmpty())
            restore(before);
    });
    if (!fault.isEmpty())
        TheAsk().showBox({fault + QStringLiteral("\rEs wurde nichts geändert."), title, BoxIcon::Critical});
}

void BlockEditor::pasteCells()
{
    changeWhole(QStringLiteral("Einfügen"), [this] {
        const std::vector<QStringList> lines = Cells(QGuiApplication::clipboard()->text());
        return lines.empty() ? QStringLiteral("Die Zwischenablage enthält keinen Text.") : layLines(lines);
    });
}

void BlockEditor::fillDown()
{
    changeWhole(QStringLiteral("Nach unten ausfüllen"), [this]() -> QString {
        const std::vector<int> rows = grid->markedRows();
        for (const int column : grid->markedColumns()) {
            const QString value = cellText(rows.front(), column);
            for (const int row : rows) {
                if (QString fault = layCell(row, column, value); !fault.isEmpty())
                    return fault;
            }
        }
        return {};
    });
}

} // namespace hr::ui
