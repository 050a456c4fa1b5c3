#include "ui/common/windows.h"

#include <QtGlobal>

namespace
{
Windows *installed = nullptr;
std::vector<QWidget *> waitingWindows; // innermost last
} // namespace

void InstallWindows(Windows *windows)
{
    installed = windows;
}

Windows &TheWindows()
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

QWidget *WaitedFor()
{
    return waitingWindows.empty() ? nullptr : waitingWindows.back();
}
