#include "ui/widgets/frozen_table.h"

#include "ui/widgets/picture_delegate.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

namespace hr::ui
{

/// The frozen columns: what is edited in them is edited here, not behind them.
class FrozenFront : public QTableView
{
public:
    using QTableView::QTableView;
    bool editIt(const QModelIndex &index, EditTrigger trigger, QEvent *event) { return edit(index, trigger, event); }

private:
    using QTableView::edit;
};

FrozenTable::FrozenTable(int frozenColumns, QWidget *parent)
    : QTableView(parent), frozen(frozenColumns), front(new FrozenFront(this))
{
    front->setFocusPolicy(Qt::NoFocus);
    front->setFocusProxy(this);
    front->verticalHeader()->hide();
    front->horizontalHeader()->setHighlightSections(false);
    front->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    front->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    front->setFrameShape(QFrame::NoFrame);
    front->setWordWrap(false);
    for (QTableView *view : {static_cast<QTableView *>(this), static_cast<QTableView *>(front)}) {
        view->setVerticalScrollMode(ScrollPerPixel);
        view->setHorizontalScrollMode(ScrollPerPixel);
    }
    viewport()->stackUnder(front);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
        [this](int column, int, int width) { follow(column, width); });
    connect(front->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (column < frozen)
            setColumnWidth(column, width);
    });
    connect(front->verticalScrollBar(), &QScrollBar::valueChanged, verticalScrollBar(), &QScrollBar::setValue);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, front->verticalScrollBar(), &QScrollBar::setValue);
    connect(front, &QTableView::doubleClicked, this, &QTableView::doubleClicked);
}

void FrozenTable::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    front->setModel(model);
    front->setSelectionModel(selectionModel());
    auto *delegate = new PictureDelegate(front);
    front->setItemDelegate(delegate);
    // The keyboard stays with the whole table.
    connect(
        delegate, &QAbstractItemDelegate::closeEditor, this, [this] { setFocus(); }, Qt::QueuedConnection);
    front->setSelectionBehavior(selectionBehavior());
    front->setSelectionMode(selectionMode());
    front->setEditTriggers(editTriggers());
    front->verticalHeader()->setDefaultSectionSize(verticalHeader()->defaultSectionSize());
    front->setSortingEnabled(isSortingEnabled());
    for (int column = frozen; column < model->columnCount(); ++column)
        front->setColumnHidden(column, true);
    for (int column = 0; column < frozen; ++column)
        front->setColumnWidth(column, columnWidth(column));
    place();
}

int FrozenTable::frozenWidth() const
{
    int width = 0;
    for (int column = 0; column < frozen; ++column)
        width += columnWidth(column);
    return width;
}

void FrozenTable::follow(int column, int width)
{
    if (column < frozen)
        front->setColumnWidth(column, width);
    place();
}

void FrozenTable::place()
{
    front->horizontalHeader()->setFixedHeight(horizontalHeader()->height());
    front->setGeometry(
        frameWidth(), frameWidth(), frozenWidth(), viewport()->height() + horizontalHeader()->height());
}

void FrozenTable::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space)
        Q_EMIT spacePressed();
    else
        QTableView::keyPressEvent(event);
}

bool FrozenTable::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    return index.column() < frozen ? front->editIt(index, trigger, event) : QTableView::edit(index, trigger, event);
}

void FrozenTable::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    place();
}

void FrozenTable::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        place();
}

/// A cell must not end up behind the frozen columns.
QModelIndex FrozenTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex current = QTableView::moveCursor(action, modifiers);
    const int left = visualRect(current).left();
    if (action == MoveLeft && current.column() >= frozen && left < frozenWidth())
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + left - frozenWidth());
    return current;
}

void FrozenTable::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (index.column() >= frozen)
        QTableView::scrollTo(index, hint);
    else
        QTableView::scrollTo(index.siblingAtColumn(columnAt(frozenWidth() + 1)), hint);
}

} // namespace hr::ui
