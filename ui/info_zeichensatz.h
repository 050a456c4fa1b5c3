// Tells the user which characters the handheld can show.
#pragma once

#include <QWidget>

class InfoZeichensatz : public QWidget
{
    Q_OBJECT

public:
    InfoZeichensatz();
    void load();

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
