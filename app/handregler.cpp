// Puts the terminal program together: platform, link, and the simulated handheld behind the port named "Demo".

#include "cli/output.h"
#include "cli/program.h"
#include "handheld/text_encoding.h"
#include "link/cadence.h"
#include "link/link_driver.h"
#include "platform/files.h"
#include "platform/qt/console.h"
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

#include <QCoreApplication>
#include <QTranslator>

namespace hr::app
{

namespace
{

constexpr int SignalPollMs = 100; // a program that does something all its life need not sleep deeper

/// Ctrl-C stops what runs in good order; a request to terminate and a closed terminal end it at once. Either way the
/// handheld is sent back.
void TakeSignals(Events &events)
{
    WatchEndSignals();
    events.every(SignalPollMs, [seen = 0]() mutable {
        const EndSignals signals = SeenEndSignals();
        if (signals.end)
            RequestEnd();
        for (; seen < signals.interrupts; ++seen)
            TakeInterrupt();
    });
}

Exit Run(const Wish &wish)
{
    const Exit exit = wish.command->run(wish.call);
    return OutputSound() ? exit : Exit::Usage;
}

} // namespace

} // namespace hr::app

using namespace hr;
using namespace hr::app;

int main(int argc, char *argv[])
{
    OccupyClosedStreams();
    QCoreApplication application(argc, argv);
    Console console;
    QCoreApplication::setApplicationName(QStringLiteral("handregler"));
    QCoreApplication::setApplicationVersion(QStringLiteral(HR_VERSION));
    QTranslator german;
    if (german.load(QStringLiteral(":/translations/qtbase_de.qm")))
        QCoreApplication::installTranslator(&german);
    UseDataFolder(QCoreApplication::applicationDirPath());

    QCommandLineParser parser;
    Exit exit = Exit::Done;
    const auto wish = UnderstandWords(QCoreApplication::arguments().mid(1), parser, exit);
    if (!wish)
        return static_cast<int>(exit);

    QtEvents events;
    MachinePort machinePort(events);
    sim::DemoPort demoPort(events, DataFolder() + QStringLiteral("/Demo-Handregler.bin"));
    TcpPort networkPort(events);
    SwitchedPort port(machinePort, networkPort, demoPort);
    InstallWorld({&events, &port});
    MachineDisk disk;
    InstallDisk(&disk);
    TerminalAsk ask(console, wish->manner);
    InstallAsk(&ask);
    const LinkDriver driver;
    ChooseCadence(wish->call.options.fast || FastPreferred() ? Cadence::Events : Cadence::Ticks);
    TakeSignals(events);
    exit = Run(*wish);
    EndIsDone();
    return static_cast<int>(exit);
}
