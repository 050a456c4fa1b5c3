// Puts the program together: platform, link, windows, and the simulated handheld behind the port named "Demo".

#include "handheld/discovery.h"
#include "link/cadence.h"
#include "link/link_driver.h"
#include "platform/files.h"
#include "platform/qt/machine_disk.h"
#include "platform/qt/machine_port.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/tcp_port.h"
#include "platform/switched_port.h"
#include "platform/world.h"
#include "program/data_folder.h"
#include "program/preferences.h"
#include "program/run_control.h"
#include "sim/demo_port.h"
#include "ui/common/start_up.h"
#include "ui/main_window.h"
#include "ui/qt_frontend.h"
#include "ui/widgets/window_place.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QTranslator>

#include <algorithm>
#include <csignal>

namespace hr::app
{

namespace
{

constexpr int SignalPollMs = 1000; // the only thing that wakes up an idle program
volatile std::sig_atomic_t endSignalled = 0;

/// Ctrl-C and a request to terminate end the program like its menu item does, so that the handheld is sent back.
void TakeEndSignals(Events &events)
{
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int) { endSignalled = 1; });
#ifdef SIGHUP
    std::signal(SIGHUP, [](int) { endSignalled = 1; }); // the terminal was closed
#endif
    events.every(SignalPollMs, [] {
        if (endSignalled != 0)
            RequestEnd();
    });
}

/// The same drawing in the sizes that window systems ask for.
QIcon ProgramIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icons/%1.png").arg(size), QSize(size, size));
    return icon;
}

struct Arguments {
    bool fast = false;
    QString fileName; // a backup to be shown
};

/// Help, version and unknown options end the program.
Arguments ReadArguments()
{
    QCommandLineParser parser;
    const QCommandLineOption fast(QStringLiteral("schnell"), QStringLiteral("schnelle Übertragung für diesen Lauf"));
    parser.addOption(fast);
    parser.addPositionalArgument(QStringLiteral("datei"), QStringLiteral("Datensicherung (.dds), die gezeigt wird"),
        QStringLiteral("[datei]"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(*QCoreApplication::instance());
    return {parser.isSet(fast), parser.positionalArguments().value(0)};
}

void SpeakGerman(QTranslator &german)
{
    if (german.load(QStringLiteral(":/translations/qtbase_de.qm")))
        QCoreApplication::installTranslator(&german);
}

bool IsQuestion(const char *word)
{
    static const QStringList questions{QStringLiteral("-v"), QStringLiteral("--version"), QStringLiteral("-h"),
        QStringLiteral("--help"), QStringLiteral("--help-all")};
    return questions.contains(QString::fromLocal8Bit(word));
}

/// Version and options are told also where there is no display.
void AnswerWithoutDisplay(int argc, char *argv[])
{
    if (std::none_of(argv, argv + argc, IsQuestion))
        return;
    const QCoreApplication application(argc, argv);
    QTranslator german;
    SpeakGerman(german);
    static_cast<void>(ReadArguments()); // ends the program
}

/// Sends the handheld back and ends; runs once, when no command runs any more.
void EndProgram(QtFrontend &frontend)
{
    SetRunState(RunState::Leaving);
    frontend.hideAllWindows();
    static_cast<void>(SendHandheldBack()); // a silent one needs nothing more
    Comm().close();
    SetRunState(RunState::Ended);
    QtEvents::quit();
}

} // namespace

} // namespace hr::app

using namespace hr;
using namespace hr::app;

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationVersion(QStringLiteral(HR_VERSION));
    AnswerWithoutDisplay(argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(ProgramIcon());
    QTranslator german;
    SpeakGerman(german);
    const Arguments arguments = ReadArguments();
    UseDataFolder(QApplication::applicationDirPath());

    QtEvents events;
    MachinePort machinePort(events);
    sim::DemoPort demoPort(events, DataFolder() + QStringLiteral("/Demo-Handregler.bin"));
    TcpPort networkPort(events);
    SwitchedPort port(machinePort, networkPort, demoPort);
    KeepWindowSizesIn(PreferencesPath());
    InstallWorld({&events, &port});
    MachineDisk disk;
    InstallDisk(&disk);
    QtFrontend frontend;
    InstallAsk(&frontend);
    InstallDesktop(&frontend);
    MainWindow mainWindow;
    frontend.setMainWindow(&mainWindow);
    QObject::connect(&mainWindow, &MainWindow::portWindowAsked, [&frontend] { frontend.openSelectionFromMenu(); });
    QObject::connect(&mainWindow, &MainWindow::endAsked, [&frontend] { frontend.endProgram(); });
    const LinkDriver driver;
    ChooseCadence(arguments.fast || FastPreferred() ? Cadence::Events : Cadence::Ticks);

    OnEndReady([&frontend] { EndProgram(frontend); });
    TakeEndSignals(events);
    events.post([&mainWindow, &arguments] {
        Main();
        mainWindow.openGivenFile(arguments.fileName);
    });
    return QtEvents::run();
}
