// A framed white area that shows one picture and may be clicked.
#pragma once

#include <QLabel>

class PictureBox : public QLabel
{
    Q_OBJECT

public:
    /// Width and height of the area inside the frame, in logical pixels.
    PictureBox(int width, int height, QWidget *parent);

    /// Makes the box react to a click, and to Enter, Space and F4 when it has the focus.
    void makeClickable();

    void setPicture(const QPixmap &picture);

Q_SIGNALS:
    void clicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool clickable = false;
};
