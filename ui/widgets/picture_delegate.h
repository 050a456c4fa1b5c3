// Cells of tables that show a picture.
#pragma once

#include "platform/rooms.h"

#include <QStyledItemDelegate>

namespace hr::ui
{

class PictureDelegate : public QStyledItemDelegate
{
public:
    /// Where a cell keeps its picture (a QPixmap).
    static constexpr int PictureRole = Qt::UserRole + 1;

    using QStyledItemDelegate::QStyledItemDelegate;

    /// Paints a cell's picture crisp in the middle, and its text right of it; a cell without a picture as usual.
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace hr::ui
