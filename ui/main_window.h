// The one main window: loco editor, symbol editors, menus, and the timers that drive the LocoNet link.
#pragma once

#include "platform/events.h"
#include "ui/menu_bar.h"

#include <QMainWindow>

#include <memory>

class HelpWin;
class InfoZeichensatz;
class LocoEditor;
class QtFrontend;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Starts the link's timers and takes the port's receive and hang-up events. The frontend outlives the window.
    explicit MainWindow(QtFrontend &frontend);
    ~MainWindow() override;

    void setLokDataMenuVisible(bool visible);
    /// Shows or hides the download's menu item as the interface kind says.
    void updateLokDataMenu();

protected:
    /// Never closes at once: the program ends when the running command has come to its end and the handheld has
    /// been sent back.
    void closeEvent(QCloseEvent *event) override;

private:
    [[nodiscard]] MenuActions menuActions();
    void driveLink();
    void command(const std::function<void()> &action);

    QtFrontend &frontend;
    LocoEditor *locoEditor;
    std::unique_ptr<HelpWin> helpWin;
    std::unique_ptr<InfoZeichensatz> infoZeichensatz;
    Events::TimerId mainTimer = 0;
    Events::TimerId timer1 = 0;
};
