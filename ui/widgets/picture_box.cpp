#include "ui/widgets/picture_box.h"

#include "ui/widgets/crisp_picture.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace hr::ui
{

PictureBox::PictureBox(int width, int height, QWidget *parent) : QLabel(parent), inside(width, height)
{
    setFrameShape(QFrame::StyledPanel);
    setAlignment(Qt::AlignCenter);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    fitScale();
}

void PictureBox::fitScale()
{
    const int frame = 2 * frameWidth();
    setFixedSize(CrispRoom(inside, devicePixelRatioF()) + QSize(frame, frame));
}

/// The screen may be another one than before.
void PictureBox::showEvent(QShowEvent *event)
{
    fitScale();
    QLabel::showEvent(event);
}

void PictureBox::makeClickable()
{
    clickable = true;
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void PictureBox::setPicture(const QPixmap &shown)
{
    clear(); // a text may stand there
    picture = shown;
    update();
}

void PictureBox::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    QPainter painter(this);
    if (!picture.isNull())
        DrawCrisp(painter, contentsRect(), picture, palette());
    if (!hasFocus())
        return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void PictureBox::mouseReleaseEvent(QMouseEvent *event)
{
    if (clickable && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT clicked();
    else
        QLabel::mouseReleaseEvent(event);
}

void PictureBox::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    const bool acts = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space || key == Qt::Key_F4;
    if (clickable && acts)
        Q_EMIT clicked();
    else
        QLabel::keyPressEvent(event);
}

} // namespace hr::ui
