// The steps of the pixel editor that can be taken back: each holds the cells and the buffer's pixel rows before and
// after it, because a loaded file changes both.
#pragma once

#include "shown/picture.h"

#include <QUndoStack>

#include <optional>
#include <vector>

struct PictureState {
    PixelCells cells{};
    std::vector<quint8> rows;
    bool operator==(const PictureState &) const = default;
};

class PixelHistory : public QObject
{
    Q_OBJECT

public:
    PixelHistory();
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
    QUndoStack stack;
    std::optional<PictureState> before; // of the open step
};
