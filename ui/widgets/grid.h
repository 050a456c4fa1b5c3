// The one grid of the program: a table with texts, centred pictures, a current cell and a text box over a cell.
#pragma once

#include "platform/rooms.h"

#include <QPersistentModelIndex>
#include <QPixmap>
#include <QTableWidget>

#include <vector>

class QLineEdit;

namespace hr::ui
{

class Grid : public QTableWidget
{
    Q_OBJECT

public:
    /// Where a cell keeps its picture.
    static constexpr int PictureRole = Qt::UserRole + 1;

    Grid(int rows, int columns, QWidget *parent);

    void setText(int row, int column, const QString &text);
    [[nodiscard]] QString text(int row, int column) const;

    /// Shows a picture centred in the cell; a null picture clears it.
    void setPicture(int row, int column, const QPixmap &picture);

    /// Says in words what a cell's picture shows: to those who point at it, and to screen readers.
    void setWords(int row, int column, const QString &toolTip, const QString &spoken);

    /// Makes the grid so wide that all columns and the vertical scroll bar fit.
    void fixWidthToColumns();

    /// As fixWidthToColumns, but with room for the scroll bar only while it is there.
    void hugColumns();

    /// Whole rows may be selected, also several; otherwise a selection of several cells collapses to the current one.
    void selectRows();

    /// The rows with a marked cell, ascending, and the columns from the first to the last one; without a mark the
    /// current cell.
    [[nodiscard]] std::vector<int> markedRows() const;
    [[nodiscard]] std::vector<int> markedColumns() const;

    /// Room for all rows; a window with less scrolls.
    [[nodiscard]] QSize sizeHint() const override;

    /// The text box over cells, hidden until it is opened. Its objectName is inptxt.
    [[nodiscard]] QLineEdit *inputBox() const { return input; }

    /// Places the box exactly over a cell with the cell's text selected, and gives it the focus. While it is open it
    /// follows its cell when the grid is scrolled, and the grid acts on no key and on no click.
    void openInput(int row, int column);
    void closeInput();
    [[nodiscard]] bool inputIsOpen() const;

Q_SIGNALS:
    /// The user acted on a cell: a click without Shift and Ctrl (these only mark cells), or Enter or Space on the
    /// current cell.
    void cellActed(int row, int column);
    /// F2 on the current cell.
    void inputAsked(int row, int column);
    /// A digit or letter on the current cell.
    void inputTyped(int row, int column, const QString &character);
    /// Double-click or F4 on a cell; only grids that distinguish it from a click listen.
    void cellDoubleActed(int row, int column);
    /// A click into the grid beside the open text box; it does nothing else.
    void inputLeft();

protected:
    void updateGeometries() override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QTableWidgetItem *cellItem(int row, int column);
    bool collapseSelection(const QModelIndex &to);
    bool leavesInput();
    void placeInput();

    QLineEdit *input;
    QPersistentModelIndex inputCell;
    bool severalRows = false;
    bool hugsColumns = false;
    bool pressLeftInput = false;   // until the button is released
    QPersistentModelIndex pressed; // the cell on which the mouse button went down
};

} // namespace hr::ui
