// Words beside the rows of a grid, each in the height of its row and scrolling with it.
#pragma once

#include "platform/rooms.h"

#include <QStringList>
#include <QWidget>

namespace hr::ui
{

class Grid;

class RowNames : public QWidget
{
    Q_OBJECT

public:
    /// Stands to the right of the grid, with its top edge at the grid's.
    RowNames(const Grid *grid, QWidget *parent);

    void setName(int row, const QString &name);
    [[nodiscard]] QString name(int row) const { return names.value(row); }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    /// A turn of the mouse wheel scrolls both.
    void wheelEvent(QWheelEvent *event) override;

private:
    const Grid *grid;
    QStringList names;
};

} // namespace hr::ui
