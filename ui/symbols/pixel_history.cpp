#include "ui/symbols/pixel_history.h"

#include <utility>

namespace hr::ui
{

namespace
{

constexpr int MostSteps = 200;

class PictureStep : public QUndoCommand
{
public:
    PictureStep(EditedPicture &edited, EditedPicture stateBefore)
        : picture(edited), before(std::move(stateBefore)), after(edited)
    {
    }
    void undo() override { picture = before; }
    void redo() override { picture = after; }

private:
    EditedPicture &picture;
    EditedPicture before;
    EditedPicture after;
};

} // namespace

PixelHistory::PixelHistory(EditedPicture &edited) : picture(edited)
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
        before = picture;
}

void PixelHistory::end()
{
    if (!before)
        return;
    EditedPicture was = *std::exchange(before, std::nullopt);
    if (was != picture)
        stack.push(new PictureStep(picture, std::move(was)));
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

} // namespace hr::ui
