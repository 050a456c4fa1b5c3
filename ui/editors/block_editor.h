// What the three table windows have in common: one grid, a read, a write and a cancel button.
//
// The table can be written only after it has been read once since the program started; after a read that was not
// complete the write asks first. Read, write, cancel and the
// close box during an input end the input first and then do their work. Closing hides the window; grid and table
// keep their content.
#pragma once

#include "program/outcome.h"
#include "ui/widgets/leavable_window.h"

#include <QStringList>

#include <functional>
#include <vector>

class CellInput;
class Command;
class Grid;
class QLabel;
class QPushButton;

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

class BlockEditor : public LeavableWindow
{
    Q_OBJECT

public:
    /// `loaded` says whether the table has been read; it outlives the window.
    BlockEditor(const BlockEditorLook &look, bool &loaded);

    /// True when the user has changed the table and not written it.
    [[nodiscard]] bool hasUnwrittenChanges() const { return changed; }

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

    /// The table's entries, to see whether an act has changed it.
    [[nodiscard]] virtual std::vector<int> entries() const = 0;

    /// A click, Enter or Space on a cell; F2 on a cell that takes input.
    virtual void actOn(int row, int column) = 0;
    [[nodiscard]] virtual bool takesInput(int column) const = 0;

    /// Shows the two pictures of an accessory symbol, the red one first.
    void showSymbol(int row, int redColumn, int symbol);

    /// Lets the user pick an accessory symbol; NothingChosen when none was. The present one is shown first.
    int pickAccessorySymbol(int present);

    Grid *grid;
    CellInput *input;

private:
    void buildGrid(const BlockEditorLook &look);
    void buildLayout();
    void runCommand(void (BlockEditor::*work)(const Command &));
    void read(const Command &command);
    void write(const Command &command);
    void act(int row, int column);
    void type(int row, int column, const QString &firstCharacter);
    void updateMarks();

    bool working = false; // a command of this window runs
    bool changed = false; // by the user, and not written
    bool complete = true; // false after a read with a time-out or a damaged answer

    bool &tableLoaded;
    QPushButton *readBut;
    QPushButton *writeBut;
    QPushButton *cancelBut;
    QLabel *doubtLbl;
    QLabel *changedLbl; // beside the write button
    QLabel *unreadLbl;  // above the grid
};
