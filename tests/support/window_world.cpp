#include "tests/support/window_world.h"

#include "link/open_link.h"
#include "platform/world.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/connection.h"
#include "shown/record.h"
#include "shown/tables.h"
#include "sim/demo_content.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/compare/compare_commands.h"
#include "ui/editors/editor_windows.h"
#include "ui/qt_frontend.h"
#include "ui/symbols/pixel_editor.h"
#include "ui/widgets/grid.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>

namespace hr::tests
{

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

void Mouse(QEvent::Type type, QWidget *widget, QPoint at, Qt::KeyboardModifiers held)
{
    const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, widget->mapToGlobal(at), Qt::LeftButton, buttons, held);
    QApplication::sendEvent(widget, &event);
}

QWidget *WindowNamed(QStringView name)
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == name)
            return widget;
    }
    return nullptr;
}

void ClickCell(Grid *grid, int row, int column, Qt::KeyboardModifiers held)
{
    const QPoint centre = grid->visualItemRect(grid->item(row, column)).center();
    Mouse(QEvent::MouseButtonPress, grid->viewport(), centre, held);
    Mouse(QEvent::MouseButtonRelease, grid->viewport(), centre, held);
}

QString ScriptedUser::openFileName(const QString &boxTitle, const QString &filter)
{
    return answerTo(filter, boxTitle);
}

QString ScriptedUser::saveFileName(const QString &boxTitle, const QString &filter, const QString &proposed)
{
    proposal = proposed;
    return answerTo(filter, boxTitle);
}

void ScriptedUser::compareLocos(const std::vector<RosterLoco> &locos)
{
    CompareLocosWithHandheld(locos);
}

void ScriptedUser::showInEditor(int address, const LocoRecord &record)
{
    onEditor(address, record);
}

void ScriptedUser::compareWithHandheld(const QString &fileName)
{
    CompareBackupWithHandheld(fileName);
}

void ScriptedUser::showSelectionWindow()
{
    ++selections;
    ASSERT_TRUE(onSelection) << "unexpected selection window";
    TheEvents().post([this] { onSelection(); });
}

void ResetAllModules()
{
    ResetCore();
    ResetShownRecord();
    ResetShownTables();
    ResetShownConnection();
    ResetEditors();
    ResetPickers();
    ResetPixelEditor();
    ResetSymbolPictures();
    ResetCatalogues();
}

DesktopWorld::DesktopWorld()
{
    InstallAsk(&user);
    InstallDesktop(&user);
    ResetAllModules();
    OnBusyAgain([this] { ++user.raised; });
}

DesktopWorld::~DesktopWorld()
{
    ResetAllModules();
    InstallDesktop(nullptr);
}

void DesktopWorld::TearDown()
{
    VirtualWorld::TearDown();
    user.checkAllUsed();
}

WindowWorld::WindowWorld()
{
    const QString konf = qEnvironmentVariable("HR_KONF");
    for (const char *part : {"", "/LokSymbole", "/LokfktSymbole", "/MagSymbole"})
        CopyFolder(konf + QLatin1String(part), folder.path() + QStringLiteral("/konf") + QLatin1String(part));
    QFile::remove(folder.path() + QStringLiteral("/konf/ComPort.inf"));
    sim::FillDemoContent(flash());
    frontend = std::make_unique<QtFrontend>();
    OnBusyAgain([this] { ++user.raised; });
}

WindowWorld::~WindowWorld() = default;

void WindowWorld::restart()
{
    mainWindow.reset();
    ResetAllModules();
    port.close();
    ScanCatalogues();
    OnBusyAgain([this] { ++user.raised; });
    mainWindow = std::make_unique<MainWindow>();
    frontend->setMainWindow(mainWindow.get());
    QObject::connect(mainWindow.get(), &MainWindow::portWindowAsked, [this] { frontend->openSelectionFromMenu(); });
    QObject::connect(mainWindow.get(), &MainWindow::endAsked, [this] { frontend->endProgram(); });
    connectDirectly();
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

} // namespace hr::tests
