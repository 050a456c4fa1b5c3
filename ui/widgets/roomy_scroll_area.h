// Scrolls its contents where the screen has too little room for them, and wants as much room as they do.
#pragma once

#include "platform/rooms.h"

#include <QScrollArea>

namespace hr::ui
{

class RoomyScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    /// Takes the contents, which fill it where there is more room than they need.
    RoomyScrollArea(QWidget *contents, QWidget *parent);

    [[nodiscard]] QSize sizeHint() const override;

    /// Contents that only scroll up and down keep their width.
    void keepWidth();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitWidth();

    bool keepsWidth = false;
};

} // namespace hr::ui
