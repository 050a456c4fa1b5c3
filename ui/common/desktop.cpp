#include "ui/common/desktop.h"

#include "platform/world.h"
#include "program/run_control.h"

#include <QDialog>

namespace hr::ui
{

namespace
{
Desktop *installed = nullptr;
std::vector<QWidget *> waitingWindows; // innermost last
} // namespace

void InstallDesktop(Desktop *desktop)
{
    installed = desktop;
}

Desktop &TheDesktop()
{
    Q_ASSERT(installed != nullptr);
    return *installed;
}

WaitingWindow::WaitingWindow(QWidget *window)
{
    waitingWindows.push_back(window);
}

WaitingWindow::~WaitingWindow()
{
    waitingWindows.pop_back();
}

QString DatedName(const QString &what)
{
    return what + u' ' + TheEvents().today().toString(Qt::ISODate) + QStringLiteral(".dds");
}

void WaitForDialog(QDialog &dialog)
{
    const WaitingWindow waiting(&dialog);
    dialog.show(); // where the system brings its own dialog, this waits until it is answered
    static_cast<void>(PumpUntilAnswered([&dialog] { return !dialog.isVisible(); }));
    dialog.hide();
}

QWidget *WaitedFor()
{
    return waitingWindows.empty() ? nullptr : waitingWindows.back();
}

} // namespace hr::ui
