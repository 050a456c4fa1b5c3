// The steps of the pixel editor that can be taken back: each holds the picture, cells and bytes, before and after it,
// because a loaded file changes both.
#pragma once

#include "symbols/edited_picture.h"

#include <QUndoStack>

#include <optional>

namespace hr::ui
{

class PixelHistory : public QObject
{
    Q_OBJECT

public:
    /// `edited` lives as long as this object.
    explicit PixelHistory(EditedPicture &edited);
    ~PixelHistory() override;

    /// Opens a step before a change; no effect while one is open.
    void begin();

    /// Closes the open step; where nothing has changed it is none.
    void end();

    /// An open step is closed first: it is the one that is taken back.
    void undo();
    void redo();

    /// Another picture is shown from now on.
    void clear();

Q_SIGNALS:
    /// Cells were restored.
    void restored();
    void canUndoChanged(bool can);
    void canRedoChanged(bool can);

private:
    EditedPicture &picture;
    QUndoStack stack;
    std::optional<EditedPicture> before; // of the open step
};

} // namespace hr::ui
