#include "ui/main_window.h"
#include "jobs/problem_report.h"
#include "ui/busmonitor/bus_monitor_window.h"

#include "link/open_link.h"
#include "platform/world.h"
#include "program/run_control.h"
#include "ui/backup/backup_commands.h"
#include "ui/backup/backup_viewer.h"
#include "ui/common/click_guard.h"
#include "ui/common/command.h"
#include "ui/common/connection.h"
#include "ui/common/deeds.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/compare/compare_commands.h"
#include "ui/editors/editor_windows.h"
#include "ui/guide_win.h"
#include "ui/help_win.h"
#include "ui/import/import_window.h"
#include "ui/info_zeichensatz.h"
#include "ui/loco/loco_editor.h"
#include "ui/lokliste/lok_list_commands.h"
#include "ui/lokliste/lok_panel.h"
#include "ui/option_commands.h"
#include "ui/status_line.h"
#include "ui/symbols/pixel_editor.h"
#include "ui/symbols/start_image.h"
#include "ui/symbols/symbol_editor.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/roomy_scroll_area.h"
#include "ui/widgets/window_place.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>
#include <QVBoxLayout>

#include <utility>

namespace hr::ui
{

namespace
{

constexpr int LeastWidthForPanel = 1200; // logical pixels of the screen

/// A menu command that opens a window: it only needs that no other command runs.
std::function<void()> Opening(std::function<void()> open)
{
    return [open = std::move(open)] {
        const Command command;
        if (command.ok())
            open();
    };
}

/// The backup file that is dragged; empty for all other things.
QString DroppedBackup(const QDropEvent &event)
{
    for (const QUrl &url : event.mimeData()->urls()) {
        if (url.toLocalFile().endsWith(QStringLiteral(".dds"), Qt::CaseInsensitive))
            return url.toLocalFile();
    }
    return {};
}

/// What shows a number's pictures is told that they changed.
void FollowCatalogue()
{
    OnCatalogueChange([](SymbolKind kind, int number) {
        DropSymbolPictures(kind, number);
        RefreshPickerRow(kind, number);
    });
}

} // namespace

MainWindow::MainWindow()
    : helpWin(std::make_unique<HelpWin>())
    , guideWin(std::make_unique<GuideWin>())
    , infoZeichensatz(std::make_unique<InfoZeichensatz>())
    , lastMessages(ReportedMessages)
    , status(new StatusLine(this))
{
    setObjectName(QStringLiteral("VeskaWin"));
    setWindowTitle(QStringLiteral("V E S K A  II  T O O L"));
    buildContents();
    buildLokPanel();
    setStatusBar(status);
    menuItems = BuildMenuBar(this, menuActions());
    lokDock->toggleViewAction()->setObjectName(QStringLiteral("loksanzeigen_menu"));
    lokDock->toggleViewAction()->setText(QStringLiteral("Loks anzeigen"));
    menuBar()->actions().constLast()->menu()->addAction(lokDock->toggleViewAction());
    menuBar()->actions().constLast()->menu()->addSeparator();
    menuBar()->actions().constLast()->menu()->addActions(locoEditor->actions());
    QAction *startImage = menuItems.at(QStringLiteral("StartBildMenu"));
    startImage->setVisible(false);
    connect(locoEditor, &LocoEditor::startImageUnlocked, startImage, [startImage] { startImage->setVisible(true); });
    resize(sizeHint().boundedTo(RoomForWindow(*screen())));
    connect(helpWin.get(), &HelpWin::guideAsked, guideWin.get(), [this] { guideWin->open(QString()); });
    new ClickGuard(this);
    FollowCatalogue();
    FollowKnownLocos([this](int address) { lokPanel->hear(address); });
    OnDeed([this](const QString &what) { status->showDeed(what); });
    OnConnectionChange([this] {
        status->showConnection();
        lokPanel->showConnection();
    });
    setAcceptDrops(true);
}

/// On a small screen the right column scrolls by itself, then the whole.
void MainWindow::buildContents()
{
    auto *area = new QWidget;
    locoEditor = new LocoEditor(area);
    auto *column = new QWidget;
    auto *symbols = new QVBoxLayout(column);
    symbols->setContentsMargins(0, 0, 0, 0);
    for (const SymbolEditorLook *look : {&LokSymbolLook(), &FktSymbolLook(), &MagSymbolLook()}) {
        symbolEditors += new SymbolEditor(*look, column);
        symbols->addWidget(symbolEditors.constLast());
    }
    SymbolEditor::AlignButtons(symbolEditors);
    symbols->insertWidget(1, NamedLine(QStringLiteral("Line3"), column));
    symbols->insertWidget(3, NamedLine(QStringLiteral("Line4"), column));
    symbols->addStretch();
    auto *scroller = new RoomyScrollArea(column, area);
    scroller->keepWidth();
    auto *layout = new QHBoxLayout(area);
    // A larger window has blank space beside and below: all keeps its size and place.
    layout->addWidget(locoEditor, 0, Qt::AlignTop);
    layout->addWidget(scroller);
    layout->addStretch(1);
    setCentralWidget(new RoomyScrollArea(area, this));
}

/// Beside the editor; where the screen has no room for it, it is hidden until it is wanted.
void MainWindow::buildLokPanel()
{
    lokDock = new QDockWidget(QStringLiteral("Loks"), this);
    lokDock->setObjectName(QStringLiteral("LoksDock"));
    lokDock->setFeatures(QDockWidget::DockWidgetClosable);
    lokPanel = new LokPanel(lokDock);
    lokDock->setWidget(lokPanel);
    addDockWidget(Qt::LeftDockWidgetArea, lokDock);
    lokDock->setVisible(screen()->availableGeometry().width() >= LeastWidthForPanel);
    connect(lokPanel, &LokPanel::locoChosen, locoEditor, &LocoEditor::readLoco);
}

MainWindow::~MainWindow()
{
    // Windows and pictures go before the application object does.
    OnCatalogueChange(nullptr);
    OnDeed(nullptr);
    OnConnectionChange(nullptr);
    ResetEditors();
    ResetPickers();
    ResetPixelEditor();
    ResetCompareWindow();
    ResetLokListe();
    ResetBusMonitor();
    ResetBackupWindows();
    ResetImportWindow();
    ResetSymbolPictures();
}

MenuActions MainWindow::menuActions()
{
    return {
        {QStringLiteral("datenlesen_menu"), SaveHandheldData},
        {QStringLiteral("datenanzeigen_menu"), ShowBackupFile},
        {QStringLiteral("datenschreiben_menu"), RestoreHandheldData},
        {QStringLiteral("ende_menu"), [this] { end(); }},
        {QStringLiteral("Opt_VeskaNormalModus"), ReturnToOperatingMode},
        {QStringLiteral("Opt_clear_all_loco"), AskAndClearAllLocoRecords},
        {QStringLiteral("Opt_abschalt"), AskAndClearSwitchOffTime},
        {QStringLiteral("Opt_Fktsym"), AskAndResetFktSymbols},
        {QStringLiteral("MagSymMenu"), Opening(OpenAssignmentEditor)},
        {QStringLiteral("MagListeMenu"), Opening(OpenAccessoryListEditor)},
        {QStringLiteral("FSMenu"), Opening(OpenRouteEditor)},
        {QStringLiteral("StartBildMenu"), EditStartImage},
        {QStringLiteral("ZentraleMenu"), Opening([this] { Q_EMIT portWindowAsked(); })},
        {QStringLiteral("LokDataMenu"), FetchStationLocos},
        {QStringLiteral("zeichen_menu"), [this] { infoZeichensatz->present(); }},
        {QStringLiteral("help_menu"), [this] { helpWin->load(); }},
        {QStringLiteral("proginfo_menu"), ShowProgramInfo},
        {QStringLiteral("lokliste_menu"), OpenLokListe},
        {QStringLiteral("vergleichen_menu"), CompareBackup},
        {QStringLiteral("zuruecknehmen_menu"), TakeBackLastChange},
        {QStringLiteral("busmonitor_menu"), OpenBusMonitor},
        {QStringLiteral("problembericht_menu"), [this] { SaveProblemReport(lastMessages); }},
    };
}

void MainWindow::setLokDataMenuVisible(bool visible)
{
    menuItems.at(QStringLiteral("LokDataMenu"))->setVisible(visible);
}

void MainWindow::updateLokDataMenu()
{
    setLokDataMenuVisible(TheLink().InterfaceType == InterfaceDirect);
    status->showConnection();
}

void MainWindow::openGivenFile(const QString &fileName)
{
    const Command command;
    if (!fileName.isEmpty() && command.ok())
        OpenBackupViewer(fileName);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!DroppedBackup(*event).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    // From the event loop: a file that cannot be read is told by a box, and the drop must be over by then.
    TheEvents().post([this, fileName = DroppedBackup(*event)] { openGivenFile(fileName); });
}

void MainWindow::showLoco(int address, const LocoRecord &record)
{
    locoEditor->showLoco(address, record);
}

void MainWindow::enable(bool enabled)
{
    setEnabled(enabled);
    // A window that the window system activates while it is disabled has no field with the focus afterwards.
    if (enabled && focusWidget() == nullptr)
        locoEditor->focusAddress();
}

/// What has been changed and not written, by name.
QStringList MainWindow::unwritten() const
{
    QStringList names{locoEditor->unwritten()};
    for (const SymbolEditor *editor : symbolEditors)
        names += editor->unwritten();
    if (LokListeUnsaved())
        names += QStringLiteral("Lokliste");
    names.removeAll(QString());
    return names + UnwrittenTables();
}

/// Close box and menu item: what has been changed and not written is asked about first.
void MainWindow::end()
{
    const QStringList unwritten = Busy() ? QStringList() : this->unwritten();
    if (unwritten.isEmpty()) {
        Q_EMIT endAsked();
        return;
    }
    if (std::exchange(askingToEnd, true))
        return;
    TheEvents().post([this, unwritten] { // a question may not wait inside the window system's close handling
        const BoxText question{QStringLiteral("Diese Änderungen sind nicht in den Handregler geschrieben:\r%1\r"
                                              "Soll das Programm trotzdem beendet werden?")
                                   .arg(unwritten.join(u'\r')),
            QStringLiteral("Beenden?"), BoxIcon::None};
        const bool ends = TheAsk().askYesNo(question, false);
        askingToEnd = false;
        if (ends)
            Q_EMIT endAsked();
    });
}

/// In the middle of the screen: boxes that come at once know where it is.
void MainWindow::appear()
{
    if (isVisible())
        return;
    RestoreSize(*this);
    ensurePolished();
    resize(size().expandedTo(minimumSizeHint())); // on a small screen the contents may want more than it has
    appearedSize = size();
    move(PositionInMiddle(size(), screen()->availableGeometry()));
    show();
}

void MainWindow::hideEvent(QHideEvent *event)
{
    if (size() != appearedSize)
        KeepSize(*this);
    QMainWindow::hideEvent(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    end();
}

} // namespace hr::ui
