// The virtual world with windows: a scripted desktop, and the real main window on a simulated handheld that holds the
// demo content.
#pragma once

#include "tests/support/virtual_world.h"
#include "ui/common/desktop.h"
#include "ui/main_window.h"

#include <QEvent>
#include <QPoint>

#include <memory>

class QAction;
class QLineEdit;
class QPushButton;

namespace hr::ui
{
class Grid;
class QtFrontend;
} // namespace hr::ui

namespace hr::tests
{

/// A real mouse event at a place of a widget.
void Mouse(QEvent::Type type, QWidget *widget, QPoint at, Qt::KeyboardModifiers held = Qt::NoModifier);

/// A window of the program, seen or not; null when there is none of this name.
QWidget *WindowNamed(QStringView name);

/// A click on a cell that is to be seen.
void ClickCell(Grid *grid, int row, int column, Qt::KeyboardModifiers held = Qt::NoModifier);

/// The scripted user in front of windows: file dialogs, selection window, main window.
class ScriptedUser : public ScriptedAsk, public Desktop
{
public:
    QString openFileName(const QString &boxTitle, const QString &filter) override;
    QString saveFileName(const QString &boxTitle, const QString &filter, const QString &proposed) override;
    void showSelectionWindow() override;
    void hideSelectionWindow() override { }
    void showMainWindow() override { mainShown = true; }
    void raiseMainWindow() override { }
    void setMainWindowEnabled(bool enabled) override { mainEnabled = enabled; }
    void setMainWindowTitle(const QString &text) override { title = text; }
    void setLokDataMenuVisible(bool visible) override { lokDataVisible = visible; }
    void compareWithHandheld(const QString &fileName) override;
    void compareLocos(const std::vector<RosterLoco> &locos) override;
    void showInEditor(int address, const LocoRecord &record) override;

    QString title;
    QString proposal;                  // of the last save dialog
    std::function<void()> onSelection; // the user at the selection window
    std::function<void(int, const LocoRecord &)> onEditor;
    bool mainShown = false;
    bool mainEnabled = true;
    bool lokDataVisible = true;
    int selections = 0;
};

/// A desktop without a main window.
class DesktopWorld : public VirtualWorld
{
protected:
    DesktopWorld();
    ~DesktopWorld() override;
    void TearDown() override;

    ScriptedUser user; // in place of the core's
};

/// Restores the start-up state of every module that windows use.
void ResetAllModules();

class WindowWorld : public DesktopWorld
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

} // namespace hr::tests
