#include "ui/widgets/row_names.h"

#include "ui/widgets/grid.h"

#include <QCoreApplication>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

namespace hr::ui
{

namespace
{
constexpr int WantedCharacters = 22;
} // namespace

RowNames::RowNames(const Grid *besideGrid, QWidget *parent)
    : QWidget(parent), grid(besideGrid), names(besideGrid->rowCount())
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    connect(grid->verticalScrollBar(), &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
}

void RowNames::setName(int row, const QString &name)
{
    names[row] = name;
    update();
}

QSize RowNames::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * WantedCharacters, 0};
}

void RowNames::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setFont(grid->font());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.setClipRect(0, grid->frameWidth(), width(), grid->viewport()->height());
    for (int row = 0; row < grid->rowCount(); ++row) {
        const QRect place(0, grid->frameWidth() + grid->rowViewportPosition(row), width(), grid->rowHeight(row));
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
            painter.fontMetrics().elidedText(names.at(row), Qt::ElideRight, width()));
    }
}

void RowNames::wheelEvent(QWheelEvent *event)
{
    QCoreApplication::sendEvent(grid->verticalScrollBar(), event);
}

} // namespace hr::ui
