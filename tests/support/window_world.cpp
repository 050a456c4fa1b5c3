#include "tests/support/window_world.h"

#include "link/open_port.h"
#include "link/settings_file.h"
#include "platform/run_control.h"
#include "platform/world.h"
#include "sim/demo_content.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/qt_frontend.h"

#include <QAction>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>

namespace
{

/// The symbol pictures as delivered, in the test's own program folder.
void CopyFolder(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    for (const QString &name : QDir(from).entryList(QDir::Files))
        QFile::copy(from + u'/' + name, to + u'/' + name);
}

} // namespace

WindowWorld::WindowWorld()
{
    const QString konf = qEnvironmentVariable("HR_KONF");
    for (const char *part : {"", "/LokSymbole", "/LokfktSymbole", "/MagSymbole"})
        CopyFolder(konf + QLatin1String(part), folder.path() + QStringLiteral("/konf") + QLatin1String(part));
    QFile::remove(folder.path() + QStringLiteral("/konf/ComPort.inf"));
    sim::FillDemoContent(flash());
    frontend = std::make_unique<QtFrontend>();
}

WindowWorld::~WindowWorld() = default;

void WindowWorld::restart()
{
    mainWindow.reset();
    ResetAllModules();
    port.close();
    ScanCatalogues();
    PortNumber = {QStringLiteral("3"), true};
    InterfaceType = InterfaceDirect;
    mainWindow = std::make_unique<MainWindow>(*frontend);
    frontend->setMainWindow(mainWindow.get());
    int status = 1;
    SetupDirectInterface(status);
    ASSERT_EQ(status, 0);
    HandreglerGefunden = true;
}

QLineEdit *WindowWorld::field(const char *name)
{
    auto *found = window().findChild<QLineEdit *>(QLatin1String(name));
    Q_ASSERT(found != nullptr);
    return found;
}

QPushButton *WindowWorld::button(const char *name)
{
    auto *found = window().findChild<QPushButton *>(QLatin1String(name));
    Q_ASSERT(found != nullptr);
    return found;
}

QAction *WindowWorld::action(const char *name)
{
    auto *found = window().findChild<QAction *>(QLatin1String(name));
    Q_ASSERT(found != nullptr);
    return found;
}

void WindowWorld::click(const char *name)
{
    button(name)->click();
}

void WindowWorld::trigger(const char *name)
{
    action(name)->trigger();
}
