// What the three table windows have in common: one grid, a read, a write and a cancel button; undo and redo, and
// copying, pasting and filling of the marked cells.
//
// The table can be written only after it has been read once since the program started; after a read that was not
// complete the write asks first. Read, write, cancel and the close box during an input end the input first and then do
// their work. Closing hides the window; grid and table keep their content. A read that was not broken off forgets the
// steps that could be undone; a write keeps them.
#pragma once

#include "program/outcome.h"
#include "ui/common/type_search.h"
#include "ui/widgets/leavable_window.h"
#include "ui/widgets/snapshot_history.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

class QAction;
class QLabel;
class QMenuBar;
class QPushButton;

namespace hr::ui
{

class CellInput;
class Command;
class Grid;

/// What a table window is called and how its grid looks.
struct BlockEditorLook {
    QString windowName;
    QString caption;
    QString gridName;
    QStringList headings;
    std::vector<int> columnWidths; // logical pixels
    int rows;                      // column 0 numbers them from 1
    QString readName;
    QString readCaption;
    QString writeName;
    QString writeCaption;
};

/// A table as the window keeps and shows it: what a cell shows may differ from its entry ("ERR!").
struct TableState {
    std::vector<quint8> entries;
    QStringList texts; // of the columns with texts behind the number, row by row
    bool operator==(const TableState &) const = default;
};

class BlockEditor : public LeavableWindow
{
    Q_OBJECT

public:
    /// `loaded` says whether the table has been read; it outlives the window.
    BlockEditor(const BlockEditorLook &look, bool &loaded);

    /// True when the user has changed the table and not written it.
    [[nodiscard]] bool hasUnwrittenChanges() const;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    /// Hiding disturbs nobody else's command; a command of this window keeps it open.
    void leave() override;

    /// Reads the table, with its progress texts, and fills the grid; after a broken-off transfer table and grid are
    /// as before.
    virtual Outcome readTable() = 0;

    /// What writes the table as it is now, with its progress text: taken at the click, run behind the guard.
    [[nodiscard]] virtual std::function<Outcome()> writeOfTable() const = 0;

    /// The table's entries, as many for each row.
    [[nodiscard]] virtual std::vector<quint8> entries() const = 0;

    /// Sets all entries; the grid is not touched.
    virtual void setEntries(const std::vector<quint8> &entries) = 0;

    /// The symbol number behind a row's picture columns; the grid is not touched.
    [[nodiscard]] virtual int symbolOf(int row) const = 0;
    virtual void setSymbol(int row, int symbol) = 0;

    /// Sets a cell to a pasted or filled text and shows it. Returns why the cell does not take it, in German for the
    /// user, and changes nothing then; empty when it does. Never called for the number column.
    virtual QString lay(int row, int column, const QString &text) = 0;

    /// A click, Enter or Space on a cell; F2 on a cell that takes input.
    virtual void actOn(int row, int column) = 0;
    [[nodiscard]] virtual bool takesInput(int column) const = 0;

    /// Shows the two pictures of a row's accessory symbol, the red one in the first column without a heading.
    void showSymbol(int row);

    /// Lays a pasted text as symbol number; what lay() returns.
    QString laySymbol(int row, const QString &text);

    /// Changes the table as one step that can be undone.
    void change(const std::function<void()> &work);

    /// Lets the user pick an accessory symbol; NothingChosen when none was. The present one is shown first.
    int pickAccessorySymbol(int present, const QString &purpose);

    /// Shows that a cell took an input for none, and in its tool tip which ones it takes and what it keeps.
    void showRefused(int row, int column, const QString &allowed, const QString &kept);

    /// A command of the grid that also stands in the menu "Bearbeiten".
    void addEdit(QAction *action);

    /// What is shown differently because of what it says, after every change.
    virtual void showLooks() { }

    Grid *grid;
    CellInput *input;

private:
    void buildGrid(const BlockEditorLook &look);
    void buildLayout();
    void addEdits();
    [[nodiscard]] int redColumn() const;
    [[nodiscard]] QString cellText(int row, int column) const;
    [[nodiscard]] TableState state() const;
    void restore(const TableState &state);
    void travel(void (QUndoStack::*way)());
    void copyCells();
    void pasteCells();
    void fillDown();
    [[nodiscard]] std::vector<int> columnsToLay(qsizetype width) const;
    QString layLines(const std::vector<QStringList> &lines);
    QString layCell(int row, int column, const QString &text);
    void changeWhole(const QString &title, const std::function<QString()> &work);
    void runCommand(void (BlockEditor::*work)(const Command &));
    void read(const Command &command);
    void write(const Command &command);
    void act(int row, int column);
    void type(int row, int column, const QString &firstCharacter);
    void updateMarks();

    TypeSearch search;           // where a character begins no input
    bool working = false;        // a command of this window runs
    std::vector<quint8> written; // the entries that the handheld holds, as far as the window knows
    bool writeFailed = false;    // what the handheld holds is not known
    bool complete = true;        // false after a read with a time-out or a damaged answer

    bool &tableLoaded;
    SnapshotHistory<TableState> history;
    QPushButton *readBut;
    QPushButton *writeBut;
    QPushButton *cancelBut;
    QLabel *doubtLbl;
    QLabel *changedLbl;
    QMenuBar *menus;
    QLabel *unreadLbl; // these marks stand between grid and buttons
};

} // namespace hr::ui
