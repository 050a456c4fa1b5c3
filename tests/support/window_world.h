// The virtual world with the real main window on a simulated handheld that holds the demo content.
#pragma once

#include "tests/support/virtual_world.h"
#include "ui/main_window.h"

#include <memory>

class QAction;
class QLineEdit;
class QPushButton;
class QtFrontend;

class WindowWorld : public VirtualWorld
{
protected:
    WindowWorld();
    ~WindowWorld() override;

    void SetUp() override { restart(); }

    /// A new start of the program with the handheld found.
    void restart();

    MainWindow &window() { return *mainWindow; }
    QLineEdit *field(const char *name);
    QPushButton *button(const char *name);
    QAction *action(const char *name);

    /// Presses a button, or triggers a menu item, and runs events until the command has ended.
    void click(const char *name);
    void trigger(const char *name);

    std::unique_ptr<QtFrontend> frontend; // the real boxes, for tests that install them

private:
    std::unique_ptr<MainWindow> mainWindow;
};
