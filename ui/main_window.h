// The one main window: loco editor, symbol editors, menus. It opens all other windows.
#pragma once

#include "handheld/bus_trace.h"
#include "handheld/loco_record.h"
#include "ui/menu_bar.h"

#include <QList>
#include <QMainWindow>

#include <memory>

namespace hr::ui
{

class GuideWin;
class HelpWin;
class InfoZeichensatz;
class LocoEditor;
class LokPanel;
class StatusLine;
class SymbolEditor;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    void setLokDataMenuVisible(bool visible);
    /// Shows or hides the download's menu item as the interface kind says.
    void updateLokDataMenu();

    /// Opens the viewer on a backup file that was given to the program or dropped on the window; nothing for an empty
    /// name.
    void openGivenFile(const QString &fileName);

    /// Shows the window in the size that the user gave it last, in the middle of its screen.
    void appear();

    /// Lets the user work in the window; the address field has the focus unless another field got it.
    void enable(bool enabled);

    /// Shows a loco in the editor, as changed and not written.
    void showLoco(int address, const LocoRecord &record);

    [[nodiscard]] StatusLine &statusLine() { return *status; }

Q_SIGNALS:
    /// The user wants to choose port and interface kind.
    void portWindowAsked();

    /// The user wants to end the program and has nothing unwritten any more.
    void endAsked();

protected:
    /// Never closes at once: the program ends when the running command has come to its end and the handheld has
    /// been sent back.
    void closeEvent(QCloseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    /// Backup files may be dropped on the window.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    [[nodiscard]] MenuActions menuActions();
    void buildContents();
    void buildLokPanel();
    [[nodiscard]] QStringList unwritten() const;
    void end();

    QSize appearedSize; // a size that the user did not choose is not kept
    bool askingToEnd = false;
    LocoEditor *locoEditor = nullptr;
    QList<SymbolEditor *> symbolEditors;
    MenuItems menuItems;
    std::unique_ptr<HelpWin> helpWin;
    std::unique_ptr<GuideWin> guideWin;
    std::unique_ptr<InfoZeichensatz> infoZeichensatz;
    BusTrace lastMessages; // for a problem report
    StatusLine *status;
    LokPanel *lokPanel = nullptr;
    QDockWidget *lokDock = nullptr;
};

} // namespace hr::ui
