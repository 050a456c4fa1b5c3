// Typing into a cell: the grid's text box lies over the cell until Enter, Escape or a click elsewhere ends it.
#pragma once

#include "platform/rooms.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace hr::ui
{

class Grid;

class CellInput : public QObject
{
    Q_OBJECT

public:
    /// The grid belongs to the caller and lives as long as this object.
    explicit CellInput(Grid *grid);

    /// Opens the text box over a cell with the cell's text and waits. Returns the text after Enter, after a click
    /// elsewhere in the grid or when another current cell was set; nothing after Escape and at the end of the
    /// program. The cell itself is not changed; it is the current cell afterwards. The caller holds the busy scope.
    std::optional<QString> ask(int row, int column);

    /// Ends an open input as Enter does.
    void commit();

    /// Runs a command of the window at once, or, when an input is open, ends that as Enter does and runs the command
    /// when its text has been stored. Of several commands during one input the first one runs.
    void runAfterInput(std::function<void()> command);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool handleKey(int key);
    void takeFocusBack();

    Grid *grid;
    bool editActive = false; // a text is being typed
    bool inputDone = false;  // the text counts
    bool discarded = false;  // Escape
    std::function<void()> waitingCommand;
};

} // namespace hr::ui
