// A table whose first columns stay in view while it is scrolled sideways.
#pragma once

#include "platform/rooms.h"

#include <QTableView>

namespace hr::ui
{

class FrozenFront;

class FrozenTable : public QTableView
{
    Q_OBJECT

public:
    FrozenTable(int frozenColumns, QWidget *parent);

    using QTableView::edit;
    void setModel(QAbstractItemModel *model) override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

Q_SIGNALS:
    void spacePressed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void changeEvent(QEvent *event) override;

private:
    void follow(int column, int width);
    void place();
    [[nodiscard]] int frozenWidth() const;

    int frozen;
    FrozenFront *front; // the frozen columns, laid over the same ones of this table
};

} // namespace hr::ui
