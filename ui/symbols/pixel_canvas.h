// The painted part of the pixel editor: all cells in one area, and the picture beside the buttons in true size.
#pragma once

#include "symbols/edited_picture.h"

#include <QPointF>
#include <QWidget>

namespace hr::ui
{

class PixelHistory;

/// Lengths of the pixel editor are given in twips.
int PixelsOfTwips(int twips);

/// The cells as the picture that the handheld shows, one pixel of the screen a cell (more on a fine screen).
class PixelPreview : public QWidget
{
    Q_OBJECT

public:
    /// `edited` lives as long as this object.
    PixelPreview(const EditedPicture &edited, QWidget *parent);

    /// Takes the size that the present geometry needs.
    void fitPicture();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const EditedPicture &picture;
};

/// All cells in one painted area; it covers the whole client area, as the mouse is followed everywhere in it.
class PixelCanvas : public QWidget
{
    Q_OBJECT

public:
    /// A stroke, from press to release, becomes one step of the history; the preview follows each cell.
    PixelCanvas(EditedPicture &edited, PixelHistory &pixelHistory, PixelPreview &pixelPreview, QWidget *parent);

    /// Shows all cells anew with the keyboard's cursor at the top left.
    void restart();

Q_SIGNALS:
    /// The keyboard's cursor has come to a cell (its rectangle in the canvas).
    void cursorMoved(const QRect &cell);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    [[nodiscard]] QRect cellRect(int number) const;
    void paintAt(QPointF position, Qt::MouseButtons mouseButtons);
    void setCell(int number, int colour);
    void setCursorCell(int colour);
    void tellCell();
    void moveCursor(int columns, int rows);

    EditedPicture &picture;
    PixelHistory &history;
    PixelPreview &preview;
    int cursor = 1;       // cell number
    QPointF lastPosition; // of the pointer in a stroke
};

} // namespace hr::ui
