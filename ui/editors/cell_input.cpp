#include "ui/editors/cell_input.h"

#include "platform/world.h"
#include "program/run_control.h"
#include "ui/common/desktop.h"
#include "ui/widgets/grid.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <utility>

namespace hr::ui
{

namespace
{
constexpr double SettleSeconds = 0.25;
} // namespace

CellInput::CellInput(Grid *inputGrid) : QObject(inputGrid), grid(inputGrid)
{
    grid->inputBox()->installEventFilter(this);
    connect(grid, &Grid::inputLeft, this, &CellInput::commit);
}

std::optional<QString> CellInput::ask(int row, int column)
{
    const WaitingWindow waiting(grid->window());
    editActive = true;
    inputDone = false;
    discarded = false;
    grid->setCurrentCell(row, column);
    grid->openInput(row, column);
    const bool ended = PumpUntil([this, row, column] {
        return inputDone || discarded || grid->currentRow() != row || grid->currentColumn() != column;
    });
    grid->setCurrentCell(row, column);
    const bool stored = ended && !discarded;
    grid->inputBox()->setReadOnly(true); // what was typed until now counts
    if (stored)
        WaitSeconds(SettleSeconds);
    editActive = false;
    grid->closeInput();
    if (waitingCommand)
        TheEvents().post(std::exchange(waitingCommand, nullptr));
    return stored ? std::optional(grid->inputBox()->text()) : std::nullopt;
}

void CellInput::commit()
{
    if (!discarded)
        inputDone = true;
}

void CellInput::runAfterInput(std::function<void()> command)
{
    if (!editActive) {
        command();
        return;
    }
    commit();
    if (!waitingCommand)
        waitingCommand = std::move(command);
}

bool CellInput::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress)
        return handleKey(static_cast<QKeyEvent *>(event)->key());
    if (event->type() == QEvent::FocusOut && editActive)
        TheEvents().post([this] { takeFocusBack(); });
    return QObject::eventFilter(watched, event);
}

bool CellInput::handleKey(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        commit();
        return true;
    case Qt::Key_Escape:
        discarded = !inputDone;
        return true;
    default:
        return false;
    }
}

void CellInput::takeFocusBack()
{
    // Not from a box, another window or the field's own menu: only within the window that the user works in.
    if (editActive && grid->window()->isActiveWindow() && QApplication::activePopupWidget() == nullptr)
        grid->inputBox()->setFocus();
}

} // namespace hr::ui
