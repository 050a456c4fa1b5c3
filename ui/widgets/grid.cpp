#include "ui/widgets/grid.h"

#include "ui/widgets/crisp_picture.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <utility>

namespace hr::ui
{

namespace
{

constexpr int TextMargin = 1; // narrow columns need all their width for the text

/// Paints pictures in the middle of the cell, and centred texts without Qt's wide margins.
class CentredPictures : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        paintCell(painter, option, index);
        const auto picture = index.data(Grid::PictureRole).value<QPixmap>();
        if (picture.isNull())
            return;
        DrawCrisp(*painter, option.rect, picture, option.palette);
    }

private:
    void paintCell(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
    {
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        const bool centred = (cell.displayAlignment & Qt::AlignHCenter) != 0;
        const QString text = centred ? std::exchange(cell.text, QString()) : QString();
        cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
        if (text.isEmpty())
            return;
        const bool selected = (cell.state & QStyle::State_Selected) != 0;
        painter->setPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        const QRect area = cell.rect.adjusted(TextMargin, 0, -TextMargin, 0);
        painter->drawText(area, Qt::AlignCenter, cell.fontMetrics.elidedText(text, Qt::ElideRight, area.width()));
    }
};

} // namespace

Grid::Grid(int rows, int columns, QWidget *parent)
    : QTableWidget(rows, columns, parent), input(new QLineEdit(viewport()))
{
    setItemDelegate(new CentredPictures(this));
    setEditTriggers(NoEditTriggers);
    setSelectionMode(ContiguousSelection);
    setTabKeyNavigation(false);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    setVerticalScrollMode(ScrollPerPixel);
    input->setObjectName(QStringLiteral("inptxt"));
    input->setAlignment(Qt::AlignCenter);
    input->hide();
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &Grid::placeInput);
}

void Grid::hugColumns()
{
    hugsColumns = true;
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    updateGeometries();
}

void Grid::updateGeometries()
{
    QTableWidget::updateGeometries();
    if (!hugsColumns)
        return;
    const int bar = verticalScrollBar()->maximum() > 0 ? verticalScrollBar()->sizeHint().width() : 0;
    setFixedWidth(horizontalHeader()->length() + 2 * frameWidth() + bar);
}

void Grid::selectRows()
{
    severalRows = true;
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
}

QSize Grid::sizeHint() const
{
    const int heading = horizontalHeader()->isHidden() ? 0 : horizontalHeader()->sizeHint().height();
    return {QTableWidget::sizeHint().width(), heading + verticalHeader()->length() + 2 * frameWidth()};
}

QTableWidgetItem *Grid::cellItem(int row, int column)
{
    if (item(row, column) == nullptr) {
        auto *created = new QTableWidgetItem;
        created->setTextAlignment(Qt::AlignCenter);
        created->setFlags(created->flags() & ~Qt::ItemIsEditable); // or Tab would open an editor in the next cell
        setItem(row, column, created);
    }
    return item(row, column);
}

void Grid::setText(int row, int column, const QString &text)
{
    cellItem(row, column)->setText(text);
}

QString Grid::text(int row, int column) const
{
    const QTableWidgetItem *cell = item(row, column);
    return cell != nullptr ? cell->text() : QString();
}

void Grid::setPicture(int row, int column, const QPixmap &picture)
{
    cellItem(row, column)->setData(PictureRole, picture.isNull() ? QVariant() : QVariant(picture));
}

void Grid::setWords(int row, int column, const QString &toolTip, const QString &spoken)
{
    cellItem(row, column)->setToolTip(toolTip);
    cellItem(row, column)->setData(Qt::AccessibleTextRole, spoken);
}

void Grid::fixWidthToColumns()
{
    const int bar = verticalScrollBar()->sizeHint().width();
    setFixedWidth(horizontalHeader()->length() + 2 * frameWidth() + bar);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void Grid::openInput(int row, int column)
{
    inputCell = model()->index(row, column);
    scrollTo(inputCell);
    input->setReadOnly(false);
    input->setText(text(row, column));
    input->setAccessibleName(model()->headerData(column, Qt::Horizontal).toString());
    placeInput();
    input->show();
    input->raise();
    input->selectAll();
    input->setFocus();
}

void Grid::closeInput()
{
    // Hiding a focused field on a table makes Qt move the table's current cell on; the caller's cell must stay.
    const QModelIndex current = currentIndex();
    if (window()->focusWidget() == input)
        setFocus();
    input->hide();
    setCurrentIndex(current);
}

bool Grid::inputIsOpen() const
{
    return !input->isHidden();
}

void Grid::placeInput()
{
    input->setGeometry(visualRect(inputCell));
}

/// A range of cells shrinks to one; false when there was no range.
bool Grid::collapseSelection(const QModelIndex &to)
{
    if (severalRows)
        return false;
    const bool wholeRows = selectionBehavior() == SelectRows;
    const qsizetype selected = wholeRows ? selectionModel()->selectedRows().size() : selectedIndexes().size();
    if (selected <= 1)
        return false;
    setCurrentCell(to.row(), to.column(), QItemSelectionModel::ClearAndSelect);
    return true;
}

std::vector<int> Grid::markedRows() const
{
    std::vector<int> rows;
    for (int row = 0; row < rowCount(); ++row) {
        if (selectionModel()->rowIntersectsSelection(row))
            rows.push_back(row);
    }
    return rows.empty() && currentRow() >= 0 ? std::vector<int>{currentRow()} : rows;
}

std::vector<int> Grid::markedColumns() const
{
    std::vector<int> columns;
    for (int column = 0; column < columnCount(); ++column) {
        if (selectionModel()->columnIntersectsSelection(column))
            columns.push_back(column);
    }
    return columns.empty() && currentColumn() >= 0 ? std::vector<int>{currentColumn()} : columns;
}

bool Grid::leavesInput()
{
    pressLeftInput = inputIsOpen();
    if (pressLeftInput)
        Q_EMIT inputLeft();
    return pressLeftInput;
}

void Grid::mousePressEvent(QMouseEvent *event)
{
    if (leavesInput())
        return;
    pressed = indexAt(event->position().toPoint());
    QTableWidget::mousePressEvent(event);
}

void Grid::mouseMoveEvent(QMouseEvent *event)
{
    if (!pressLeftInput)
        QTableWidget::mouseMoveEvent(event);
}

void Grid::mouseReleaseEvent(QMouseEvent *event)
{
    // A click that left the text box is used up, even when the button is held until the box has closed.
    if (std::exchange(pressLeftInput, false))
        return;
    QTableWidget::mouseReleaseEvent(event);
    const QModelIndex under = indexAt(event->position().toPoint());
    const QModelIndex began = std::exchange(pressed, QPersistentModelIndex());
    const bool marks = (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) != 0;
    if (event->button() != Qt::LeftButton || !began.isValid() || marks || collapseSelection(began))
        return;
    if (under == began) // a press that was dragged away means nothing
        Q_EMIT cellActed(under.row(), under.column());
}

void Grid::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (leavesInput())
        return;
    QTableWidget::mouseDoubleClickEvent(event);
    const QModelIndex under = indexAt(event->position().toPoint());
    pressed = under; // its release is a second click
    if (event->button() == Qt::LeftButton && under.isValid())
        Q_EMIT cellDoubleActed(under.row(), under.column());
}

void Grid::keyPressEvent(QKeyEvent *event)
{
    if (inputIsOpen()) // a key that the text box has no use for, such as an arrow
        return;
    const QModelIndex current = currentIndex();
    if (!current.isValid()) {
        QTableWidget::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!collapseSelection(current))
            Q_EMIT cellActed(current.row(), current.column());
        return;
    case Qt::Key_F2:
        Q_EMIT inputAsked(current.row(), current.column());
        return;
    case Qt::Key_F4:
        Q_EMIT cellDoubleActed(current.row(), current.column());
        return;
    default:
        const bool command = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
        if (!command && !event->text().isEmpty() && event->text().at(0).isLetterOrNumber())
            Q_EMIT inputTyped(current.row(), current.column(), event->text());
        else
            QTableWidget::keyPressEvent(event);
    }
}

} // namespace hr::ui
