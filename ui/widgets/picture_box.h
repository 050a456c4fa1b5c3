// A framed white area that shows one picture and may be clicked.
#pragma once

#include "platform/rooms.h"

#include <QLabel>
#include <QPixmap>

namespace hr::ui
{

class PictureBox : public QLabel
{
    Q_OBJECT

public:
    /// Width and height of the area inside the frame in pixels of the picture: logical ones, and more at broken scales,
    /// so that the picture has room.
    PictureBox(int width, int height, QWidget *parent);

    /// Makes the box react to a click, and to Enter, Space and F4 when it has the focus.
    void makeClickable();

    /// Shows a picture in the middle; a null picture clears the box.
    void setPicture(const QPixmap &picture);

Q_SIGNALS:
    void clicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void fitScale();

    QSize inside; // as given
    QPixmap picture;
    bool clickable = false;
};

} // namespace hr::ui
