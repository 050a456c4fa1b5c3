// The boxes, dialogs and windows of the real program.
//
// No dialog runs an event loop of its own: each is shown and then waited for with the program's one pump, so that
// closing the main window ends every one of them.
#pragma once

#include "platform/frontend.h"

#include <functional>
#include <memory>
#include <vector>

class MainWindow;
class ProgressWindow;
class QDialog;
class QMessageBox;
class QWidget;
class ZentraleForm;

class QtFrontend : public Frontend
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
    QString askText(const QString &prompt, const QString &title) override;
    QString openFileName(const QString &title, const QString &filter) override;
    QString saveFileName(const QString &title, const QString &filter) override;
    void showProgress(const QString &text) override;
    void setProgressText(const QString &text) override;
    void hideProgress() override;
    void showSelectionWindow() override;
    void hideSelectionWindow() override;
    void showMainWindow() override;
    void raiseMainWindow() override;
    void setMainWindowEnabled(bool enabled) override;
    void setMainWindowTitle(const QString &title) override;
    void setLokDataMenuVisible(bool visible) override;
    void raiseWaitingWindow() override;

    /// Opens the selection window from the menu; nobody waits for its answer.
    void openSelectionFromMenu();

    /// Hides every window: the program ends.
    void hideAllWindows();

private:
    QString fileName(const QString &title, const QString &filter, bool forSaving);
    bool fileAccepted(const QString &name, bool forSaving);
    std::unique_ptr<QMessageBox> makeBox(const BoxText &box);
    void waitFor(QDialog &dialog);

    MainWindow *mainWindow = nullptr;
    std::unique_ptr<ProgressWindow> progress;
    std::unique_ptr<ZentraleForm> zentraleForm;
    std::vector<std::unique_ptr<QMessageBox>> postedBoxes;
};

/// Names a window that the running command waits for, so that a second command can bring it forward. Without a
/// named one the progress window is brought forward.
class WaitingWindow
{
public:
    explicit WaitingWindow(QWidget *window);
    ~WaitingWindow();
    WaitingWindow(const WaitingWindow &) = delete;
    WaitingWindow &operator=(const WaitingWindow &) = delete;
};
