#include "ui/symbols/pixel_history.h"

#include <utility>

namespace
{

constexpr int MostSteps = 200;

PictureState ShownState()
{
    return {Pixel, ShownRows()};
}

void Restore(const PictureState &state)
{
    Pixel = state.cells;
    LayRows(state.rows);
}

class PictureStep : public QUndoCommand
{
public:
    PictureStep(PictureState stateBefore, PictureState stateAfter)
        : before(std::move(stateBefore)), after(std::move(stateAfter))
    {
    }
    void undo() override { Restore(before); }
    void redo() override { Restore(after); }

private:
    PictureState before;
    PictureState after;
};

} // namespace

PixelHistory::PixelHistory()
{
    stack.setUndoLimit(MostSteps);
    connect(&stack, &QUndoStack::canUndoChanged, this, &PixelHistory::canUndoChanged);
    connect(&stack, &QUndoStack::canRedoChanged, this, &PixelHistory::canRedoChanged);
}

/// The stack announces its end; nobody is left to hear it.
PixelHistory::~PixelHistory()
{
    stack.disconnect(this);
}

void PixelHistory::begin()
{
    if (!before)
        before = ShownState();
}

void PixelHistory::end()
{
    if (!before)
        return;
    PictureState was = *std::exchange(before, std::nullopt);
    PictureState is = ShownState();
    if (was != is)
        stack.push(new PictureStep(std::move(was), std::move(is)));
}

void PixelHistory::undo()
{
    end();
    stack.undo();
    Q_EMIT restored();
}

void PixelHistory::redo()
{
    end();
    stack.redo();
    Q_EMIT restored();
}

void PixelHistory::clear()
{
    before.reset();
    stack.clear();
}
