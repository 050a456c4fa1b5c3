#include "ui/widgets/picture_delegate.h"

#include "ui/widgets/crisp_picture.h"

#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <utility>

namespace hr::ui
{

namespace
{
constexpr int MarkMargin = 4;
} // namespace

void PictureDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const auto picture = index.data(PictureRole).value<QPixmap>();
    if (picture.isNull()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString mark = std::exchange(cell.text, QString());
    cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    const int markWidth = mark.isEmpty() ? 0 : cell.fontMetrics.horizontalAdvance(mark) + MarkMargin;
    DrawCrisp(*painter, cell.rect.adjusted(0, 0, -markWidth, 0), picture, cell.palette);
    const bool selected = (cell.state & QStyle::State_Selected) != 0;
    painter->setPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(cell.rect.adjusted(0, 0, -MarkMargin, 0), Qt::AlignVCenter | Qt::AlignRight, mark);
}

} // namespace hr::ui
