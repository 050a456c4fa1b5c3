#include "ui/main_window.h"

#include "link/branding.h"
#include "link/message_layer.h"
#include "link/open_port.h"
#include "link/settings_file.h"
#include "platform/run_control.h"
#include "platform/world.h"
#include "symbols/editor/pixel_editor.h"
#include "ui/backup/backup_commands.h"
#include "ui/build_controls.h"
#include "ui/editors/editor_windows.h"
#include "ui/help_win.h"
#include "ui/import/import_window.h"
#include "ui/info_zeichensatz.h"
#include "ui/loco_editor.h"
#include "ui/option_commands.h"
#include "ui/pickers.h"
#include "ui/qt_frontend.h"
#include "ui/symbol_editor.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QScreen>
#include <QVBoxLayout>

namespace
{
constexpr int MainTimerMs = 50;       // sends one message, dispatches one message
constexpr int Timer1Ms = 100;         // looks for received bytes
constexpr QSize ScreenMargin(40, 80); // room for the window's frame and a task bar
} // namespace

MainWindow::MainWindow(QtFrontend &qtFrontend)
    : frontend(qtFrontend), helpWin(std::make_unique<HelpWin>()), infoZeichensatz(std::make_unique<InfoZeichensatz>())
{
    setObjectName(QStringLiteral("VeskaWin"));
    setWindowTitle(QStringLiteral("V E S K A  II  T O O L"));
    auto *area = new QWidget(this);
    locoEditor = new LocoEditor(area);
    auto *symbols = new QVBoxLayout;
    for (const SymbolEditorLook *look : {&LokSymbolLook(), &FktSymbolLook(), &MagSymbolLook()})
        symbols->addWidget(new SymbolEditor(*look, area));
    symbols->insertWidget(1, NamedLine(QStringLiteral("Line3"), area));
    symbols->insertWidget(3, NamedLine(QStringLiteral("Line4"), area));
    symbols->addStretch();
    auto *layout = new QHBoxLayout(area);
    layout->addWidget(locoEditor);
    layout->addLayout(symbols);
    setCentralWidget(area);
    BuildMenuBar(this, menuActions());
    findChild<QAction *>(QStringLiteral("StartBildMenu"))->setVisible(false);
    connect(locoEditor, &LocoEditor::startImageUnlocked, this,
        [this] { findChild<QAction *>(QStringLiteral("StartBildMenu"))->setVisible(true); });
    const QSize room = screen()->availableSize() - ScreenMargin;
    resize(sizeHint().boundedTo(room));
    driveLink();
}

MainWindow::~MainWindow()
{
    ResetEditors();
    ResetPickers();     // before the application object goes
    ResetPixelEditor(); // while the application lives
    ResetBackupWindows();
    ResetImportWindow();
    TheEvents().stop(mainTimer);
    TheEvents().stop(timer1);
    Comm().onReceive = nullptr;
    Comm().onHangUp = nullptr;
}

void MainWindow::driveLink()
{
    Comm().onReceive = ReceiveBytes;
    Comm().onHangUp = HandlePortLoss;
    mainTimer = TheEvents().every(MainTimerMs, [] {
        SendTask();
        DispatchTask();
    });
    timer1 = TheEvents().every(Timer1Ms, ReceiveBytes);
}

void MainWindow::command(const std::function<void()> &action)
{
    const BusyScope busy;
    if (busy.ok())
        action();
}

MenuActions MainWindow::menuActions()
{
    return {
        {QStringLiteral("datenlesen_menu"), SaveHandheldData},
        {QStringLiteral("datenanzeigen_menu"), ShowBackupFile},
        {QStringLiteral("datenschreiben_menu"), RestoreHandheldData},
        {QStringLiteral("ende_menu"), RequestEnd},
        {QStringLiteral("Opt_VeskaNormalModus"), ReturnToOperatingMode},
        {QStringLiteral("Opt_clear_all_loco"), AskAndClearAllLocoRecords},
        {QStringLiteral("Opt_abschalt"), AskAndClearSwitchOffTime},
        {QStringLiteral("Opt_Fktsym"), AskAndResetFktSymbols},
        {QStringLiteral("MagSymMenu"), [this] { command(OpenAssignmentEditor); }},
        {QStringLiteral("MagListeMenu"), [this] { command(OpenAccessoryListEditor); }},
        {QStringLiteral("FSMenu"), [this] { command(OpenRouteEditor); }},
        {QStringLiteral("StartBildMenu"), EditStartImage},
        {QStringLiteral("ZentraleMenu"), [this] { command([this] { frontend.openSelectionFromMenu(); }); }},
        {QStringLiteral("LokDataMenu"), FetchStationLocos},
        {QStringLiteral("zeichen_menu"), [this] { command([this] { infoZeichensatz->load(); }); }},
        {QStringLiteral("help_menu"), [this] { command([this] { helpWin->load(); }); }},
        {QStringLiteral("proginfo_menu"), ShowProgramInfo},
    };
}

void MainWindow::setLokDataMenuVisible(bool visible)
{
    findChild<QAction *>(QStringLiteral("LokDataMenu"))->setVisible(visible);
}

void MainWindow::updateLokDataMenu()
{
    setLokDataMenuVisible(InterfaceType == InterfaceDirect);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    RequestEnd();
}
