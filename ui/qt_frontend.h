// The boxes, dialogs and windows of the real program.
//
// No dialog runs an event loop of its own: each is shown and then waited for with the program's one pump, so that
// closing the main window ends every one of them.
#pragma once

#include "program/ask.h"
#include "ui/common/desktop.h"

#include <QMap>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

class QDialog;
class QMessageBox;
class QWidget;

namespace hr::ui
{

class MainWindow;
class ProgressWindow;
class ZentraleForm;

class QtFrontend : public Ask, public Desktop
{
public:
    QtFrontend();
    ~QtFrontend() override;
    QtFrontend(const QtFrontend &) = delete;
    QtFrontend &operator=(const QtFrontend &) = delete;

    /// The main window, created by main() after the world is installed; not owned.
    void setMainWindow(MainWindow *window);

    void showBox(const BoxText &box) override;
    void postBox(const BoxText &box) override;
    bool askYesNo(const BoxText &box, bool defaultYes) override;
    QString askText(const QString &prompt, const QString &title, const QString &proposal) override;
    QString openFileName(const QString &title, const QString &filter) override;
    QString saveFileName(const QString &title, const QString &filter, const QString &proposal) override;
    void showProgress(const QString &text) override;
    void showAmount(const Amount &amount) override;
    void hideProgress() override;
    void showSelectionWindow() override;
    void hideSelectionWindow() override;
    void showMainWindow() override;
    void raiseMainWindow() override;
    void setMainWindowEnabled(bool enabled) override;
    void setMainWindowTitle(const QString &title) override;
    void setLokDataMenuVisible(bool visible) override;
    void compareWithHandheld(const QString &fileName) override;
    void compareLocos(const std::vector<RosterLoco> &locos) override;
    void showInEditor(int address, const LocoRecord &record) override;

    /// Opens the selection window from the menu; nobody waits for its answer.
    void openSelectionFromMenu();

    /// Ends the program, as the main window's close box and the menu item do: while a stoppable job runs the user is
    /// asked first.
    void endProgram();

    /// Brings the window forward that the running command waits for, or the progress window.
    void raiseWaitingWindow();

    /// Hides every window: the program ends.
    void hideAllWindows();

private:
    /// For saving a name may be proposed; without one (null) a file is opened.
    QString fileName(const QString &title, const QString &filter, const QString *proposal);
    bool fileAccepted(const QString &name, bool forSaving);
    std::unique_ptr<QMessageBox> makeBox(const BoxText &box);
    [[nodiscard]] QWidget *front();
    void askToStop(bool andEnd);

    MainWindow *mainWindow = nullptr;
    QPointer<QWidget> worksIn; // the last active window that is neither box nor progress
    std::unique_ptr<ProgressWindow> progress;
    std::unique_ptr<ZentraleForm> zentraleForm;
    std::vector<std::unique_ptr<QMessageBox>> postedBoxes;
    QMap<QString, QString>
        lastFolders; // by filter: pictures and backups lie apart; none = where the program was started
    QMap<QString, QString> lastFiles; // by filter: proposed when a file is opened
    bool askingToStop = false;
    int hints = 0; // counts the "still running" hints, so that an older one does not take a newer away
};

} // namespace hr::ui
