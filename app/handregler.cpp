// Puts the terminal program together: platform, link, and the simulated handheld behind the port named "Demo".

#include "cli/output.h"
#include "cli/program.h"
#include "handheld/text_encoding.h"
#include "link/cadence.h"
#include "link/link_driver.h"
#include "platform/files.h"
#include "platform/qt/console.h"
#include "platform/qt/machine_port.h"
#include "platform/qt/qt_events.h"
#include "platform/switched_port.h"
#include "platform/world.h"
#include "program/data_folder.h"
#include "program/preferences.h"
#include "program/run_control.h"
#include "sim/demo_port.h"

#include <QCoreApplication>
#include <QTranslator>

#include <csignal>

namespace
{

constexpr int SignalPollMs = 100; // a program that does something all its life need not sleep deeper
volatile std::sig_atomic_t interrupts = 0;
volatile std::sig_atomic_t endSignalled = 0;

/// Ctrl-C stops what runs in good order; a request to terminate and a closed terminal end it at once. Either way the
/// handheld is sent back. A reader of the output that goes away is noticed when writing fails.
void TakeSignals(Events &events)
{
    std::signal(SIGINT, [](int) { interrupts = interrupts + 1; });
    std::signal(SIGTERM, [](int) { endSignalled = 1; });
#ifdef SIGHUP
    std::signal(SIGHUP, [](int) { endSignalled = 1; });
#endif
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
    events.every(SignalPollMs, [seen = 0]() mutable {
        if (endSignalled != 0)
            RequestEnd();
        for (; seen < interrupts; ++seen)
            TakeInterrupt();
    });
}

Exit Run(const Wish &wish)
{
    const Exit exit = wish.command->run(wish.call);
    return OutputSound() ? exit : Exit::Usage;
}

} // namespace

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
    BuildZeichensatz();

    QCommandLineParser parser;
    Exit exit = Exit::Done;
    const auto wish = UnderstandWords(QCoreApplication::arguments().mid(1), parser, exit);
    if (!wish)
        return static_cast<int>(exit);

    QtEvents events;
    MachinePort machinePort(events);
    sim::DemoPort demoPort(events, DataFolder() + QStringLiteral("/Demo-Handregler.bin"));
    SwitchedPort port(machinePort, demoPort);
    InstallWorld({&events, &port});
    TerminalAsk ask(console, wish->manner);
    InstallAsk(&ask);
    const LinkDriver driver;
    ChooseCadence(wish->call.options.fast || FastPreferred() ? Cadence::Events : Cadence::Ticks);
    TakeSignals(events);
    return static_cast<int>(Run(*wish));
}
