// What the windows need from each other without knowing each other: file dialogs, the selection window, the main
// window, and which window a running command waits for.
#pragma once

#include "roster/loco_csv.h"

#include <QString>

#include <vector>

class QDialog;
class QWidget;

namespace hr::ui
{

class Desktop
{
public:
    virtual ~Desktop() = default;

    /// File dialogs; the filter is a wildcard such as "*.bmp". Empty text when cancelled.
    [[nodiscard]] virtual QString openFileName(const QString &title, const QString &filter) = 0;
    /// `proposal` is the name that the dialog proposes; empty for none.
    [[nodiscard]] virtual QString saveFileName(
        const QString &title, const QString &filter, const QString &proposal) = 0;

    /// The selection window for port and interface, opened for someone who waits on SelectionAnswer.
    virtual void showSelectionWindow() = 0;
    virtual void hideSelectionWindow() = 0;

    virtual void showMainWindow() = 0;
    virtual void raiseMainWindow() = 0;
    virtual void setMainWindowEnabled(bool enabled) = 0;
    virtual void setMainWindowTitle(const QString &title) = 0;

    /// Opens the comparison of a backup file with the handheld.
    virtual void compareWithHandheld(const QString &fileName) = 0;

    /// Opens the comparison of a list's locos with the handheld.
    virtual void compareLocos(const std::vector<RosterLoco> &locos) = 0;

    /// Shows a loco in the main window, as what the user has changed and not written.
    virtual void showInEditor(int address, const LocoRecord &record) = 0;

    /// Shows or hides the menu item of the command-station download (offered with interface kind 3 only).
    virtual void setLokDataMenuVisible(bool visible) = 0;
};

/// Installs the desktop; it stays owned by the caller and must outlive all use.
void InstallDesktop(Desktop *desktop);
Desktop &TheDesktop();

/// Names a window that the running command waits for, so that a second command can bring it forward.
class WaitingWindow
{
public:
    explicit WaitingWindow(QWidget *window);
    ~WaitingWindow();
    WaitingWindow(const WaitingWindow &) = delete;
    WaitingWindow &operator=(const WaitingWindow &) = delete;
};

/// A name for a new backup file: "Handregler 2026-11-23.dds".
QString DatedName(const QString &what);

/// Shows a dialog and waits until it is answered or the program ends, also inside a page sequence.
void WaitForDialog(QDialog &dialog);

/// The innermost window that is waited for; null when there is none.
QWidget *WaitedFor();

} // namespace hr::ui
