// handregler-sim: the simulated handheld behind a pseudo-terminal, for the program's real serial code.

#include "platform/qt/qt_events.h"
#include "sim/demo_content.h"
#include "sim/pty/pty_bus.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace hr::sim
{

namespace
{

using sim::Fault;
using sim::Faults;

struct FaultOption {
    const char *name;
    Fault Faults::*fault;
    const char *help;
};

const std::array FaultOptions{
    FaultOption{"lose-byte", &Faults::lostByte, "Byte zum PC verlieren."},
    FaultOption{"change-byte", &Faults::changedByte, "Bit eines Bytes zum PC ändern."},
    FaultOption{"double-byte", &Faults::doubledByte, "Byte zum PC verdoppeln."},
    FaultOption{"late-byte", &Faults::lateByte, "Byte zum PC verspätet liefern."},
    FaultOption{"lose-echo", &Faults::lostEcho, "Echo verlieren."},
    FaultOption{"flip-echo", &Faults::changedEcho, "Bit des Echos ändern."},
    FaultOption{"tear-echo", &Faults::tornEcho, "Echo mit Pause in der Mitte liefern."},
    FaultOption{"foreign", &Faults::foreignBeforeEcho, "fremde Meldungen vor dem Echo."},
    FaultOption{"foreign-after", &Faults::foreignAfterEcho, "fremde Meldungen zwischen Echo und Antwort."},
    FaultOption{"hangup-after", &Faults::hangUp, "Port bei dieser Meldung trennen."},
    FaultOption{"miss-request", &Faults::missedRequest, "Handregler überhört eine Anforderung."},
    FaultOption{"lose-ack", &Faults::lostAck, "Quittung verlieren."},
    FaultOption{"other-ack", &Faults::otherAck, "Quittung mit Code 0."},
    FaultOption{"double-answer", &Faults::doubledAnswer, "Antwort des Handreglers kommt zweimal."},
    FaultOption{"late-answer", &Faults::lateAnswer, "Antwort des Handreglers kommt 3 s zu spät."},
    FaultOption{"foreign-answer", &Faults::foreignPeerAfter, "Antwort eines fremden Geräts vor der eigenen."},
    FaultOption{"damage-answer", &Faults::damagedAnswer, "Bit einer Antwort des Handreglers ändern."},
    FaultOption{"skip-program", &Faults::skippedProgram, "Seite quittieren und nicht programmieren."},
    FaultOption{"skip-load", &Faults::skippedLoad, "Laden einer Seite quittieren und nicht tun."},
    FaultOption{"power-cut", &Faults::powerCut, "Stromausfall beim Programmieren einer Seite."},
};

constexpr int HelpColumn = 24;

struct Option {
    const char *name;
    const char *help;
    const char *value; // name of the value; null = switch
    const char *standard;
};

const std::array Options{
    Option{"link", "Verweis auf den Port unter diesem Pfad anlegen.", "Pfad", ""},
    Option{"flash", "Speicherabbild des Handreglers in dieser Datei halten.", "Datei", ""},
    Option{"kind", "Interface: 1 (mit Textbefehlen) oder 3 (direkt).", "Nummer", "3"},
    Option{"type", "Typnummer des Handreglers.", "Nummer", "51201"},
    Option{"ack-code", "Code aller Quittungen, hexadezimal.", "Code", "7F"},
    Option{"seed", "Startwert der Zufallsfehler.", "Zahl", "1"},
    Option{"no-station", "Keine Zentrale am Bus.", nullptr, ""},
    Option{"second", "Ein zweiter Handregler antwortet auf alles.", nullptr, ""},
    Option{"lbserver", "Den Bus auch im Netz anbieten (LocoNet over TCP).", "Port", ""},
    Option{"lb-version", "... in dieser Version der Sprache: 0, 1 oder 2.", "Nummer", "2"},
    Option{"lb-no-echo", "... ohne dem Absender seine Meldung zurückzugeben.", nullptr, ""},
    Option{"lb-early", "... mit SENT OK sofort, vor der Meldung auf dem Bus.", nullptr, ""},
    Option{"lb-silent", "... ohne SENT.", nullptr, ""},
    Option{"lb-bytes", "... jedes Byte einzeln.", nullptr, ""},
    Option{"lb-refuse", "... und jedes SEND mit SENT ERROR ablehnen.", "Text", ""},
    Option{"replay", "Die fremden Meldungen eines Mitschnitts (.lntrace) auf den Bus geben.", "Datei", ""},
    Option{"help", "Diese Hilfe anzeigen.", nullptr, ""},
    Option{"version", "Version des Programms.", nullptr, ""},
    Option{"log", "Alle Meldungen auf dem Bus ausgeben.", nullptr, ""},
};

void AddOptions(QCommandLineParser &parser)
{
    for (const Option &option : Options) {
        const QString valueName = QString::fromUtf8(option.value);
        const QString standard = QString::fromUtf8(option.standard);
        parser.addOption({QString::fromUtf8(option.name), QString::fromUtf8(option.help), valueName, standard});
    }
    for (const FaultOption &option : FaultOptions)
        parser.addOption({QString::fromUtf8(option.name), QString::fromUtf8(option.help), QStringLiteral("N|P%")});
}

void PrintOption(const char *name, const char *value, const char *help)
{
    const QString left =
        QStringLiteral("  --") + QString::fromUtf8(name) + QLatin1Char(' ') + QString::fromUtf8(value);
    sim::Print(left.leftJustified(HelpColumn) + QString::fromUtf8(help));
}

// The parser's own help speaks English where Qt's translations are not installed.
void PrintHelp()
{
    sim::Print(QStringLiteral("handregler-sim: simulierter Handregler am LocoNet hinter einem Pseudo-Terminal"));
    sim::Print(QStringLiteral("\nOptionen:"));
    for (const Option &option : Options)
        PrintOption(option.name, option.value, option.help);
    sim::Print(QStringLiteral("\nFehler (N = beim N-ten Mal, P% = mit dieser Wahrscheinlichkeit):"));
    for (const FaultOption &option : FaultOptions)
        PrintOption(option.name, "N|P%", option.help);
    sim::Print(QStringLiteral("\nBefehle über die Standardeingabe:\n  ") + sim::PtyBus::commandHelp());
}

Fault ParseFault(const QString &text)
{
    Fault fault;
    if (text.endsWith(QLatin1Char('%')))
        fault.probability = text.chopped(1).toDouble() / 100;
    else
        fault.nth = text.toInt();
    return fault;
}

Faults ParseFaults(const QCommandLineParser &parser)
{
    Faults faults;
    faults.seed = parser.value(QStringLiteral("seed")).toUInt();
    for (const FaultOption &option : FaultOptions)
        faults.*option.fault = ParseFault(parser.value(QString::fromUtf8(option.name)));
    return faults;
}

// False when the image file cannot be used.
bool SetUp(sim::Layout &layout, const QCommandLineParser &parser)
{
    const bool textPrompt = parser.value(QStringLiteral("kind")).toInt() == 1;
    layout.adapter.setKind(textPrompt ? sim::InterfaceKind::TextPrompt : sim::InterfaceKind::Direct);
    layout.handheld.settings.type = parser.value(QStringLiteral("type")).toLatin1();
    const uint code = parser.value(QStringLiteral("ack-code")).toUInt(nullptr, 16);
    layout.handheld.settings.ackCode = static_cast<quint8>(code & 0x7F);
    layout.station.settings.present = !parser.isSet(QStringLiteral("no-station"));
    layout.station.locos = sim::DemoStationLocos();
    layout.faults.set(ParseFaults(parser));
    sim::FillDemoContent(layout.handheld.flash);
    if (parser.isSet(QStringLiteral("second")))
        layout.plugSecond();
    const QString image = parser.value(QStringLiteral("flash"));
    return image.isEmpty() || layout.handheld.flash.keepIn(image);
}

// True also when nobody wants it.
bool Serve(sim::PtyBus &bus, const QCommandLineParser &parser)
{
    const auto set = [&parser](const char *name) { return parser.isSet(QString::fromLatin1(name)); };
    const auto value = [&parser](const char *name) { return parser.value(QString::fromLatin1(name)); };
    if (!set("lbserver"))
        return true;
    return bus.serve(value("lbserver").toUShort(),
        {value("lb-version").toInt(), !set("lb-no-echo"), !set("lb-early"), value("lb-refuse"), !set("lb-silent"),
            set("lb-bytes")});
}

// Signals arrive through this pipe, so that the end of the program is an event like any other.
std::array<int, 2> SignalPipe{-1, -1};

void OnSignal(int)
{
    const char mark = 0;
    [[maybe_unused]] const auto count = ::write(SignalPipe.back(), &mark, 1);
}

bool CatchSignals()
{
    if (::pipe(SignalPipe.data()) != 0)
        return false;
    struct sigaction action {
    };
    action.sa_handler = OnSignal;
    return sigaction(SIGINT, &action, nullptr) == 0 && sigaction(SIGTERM, &action, nullptr) == 0;
}

// The end of the standard input ends the reading, not the program: it may run in the background.
void ReadCommands(QSocketNotifier &input, QByteArray &pending, sim::PtyBus &bus)
{
    std::array<char, 256> block{};
    const auto count = ::read(STDIN_FILENO, block.data(), block.size());
    if (count <= 0) {
        input.setEnabled(false);
        return;
    }
    pending.append(block.data(), count);
    for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
        if (!bus.runCommand(QString::fromUtf8(pending.left(end)).trimmed()))
            QtEvents::quit();
        pending.remove(0, end + 1);
    }
}

int Run(sim::PtyBus &bus)
{
    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] { ReadCommands(input, pending, bus); });
    QSocketNotifier signal(SignalPipe.front(), QSocketNotifier::Read);
    QObject::connect(&signal, &QSocketNotifier::activated, [] { QtEvents::quit(); });
    return QtEvents::run();
}

int Fail(const QString &text)
{
    sim::Print(text);
    return 1;
}

} // namespace

} // namespace hr::sim

using namespace hr;
using namespace hr::sim;

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    AddOptions(parser);
    if (!parser.parse(application.arguments()))
        return Fail(QStringLiteral("Unbekannte Option oder fehlender Wert; Hilfe: handregler-sim --help"));
    if (parser.isSet(QStringLiteral("help"))) {
        PrintHelp();
        return 0;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        sim::Print(QStringLiteral("handregler-sim " HR_VERSION));
        return 0;
    }
    QtEvents events;
    sim::PtyBus bus(events, parser.value(QStringLiteral("link")));
    if (!SetUp(bus.layout(), parser))
        return Fail(QStringLiteral("Speicherabbild nicht benutzbar"));
    if (parser.isSet(QStringLiteral("log")))
        bus.logMessages();
    if (!CatchSignals() || !bus.plug())
        return Fail(QStringLiteral("Port oder Verweis nicht möglich"));
    const QString trace = parser.value(QStringLiteral("replay"));
    if (!trace.isEmpty() && !bus.replay(trace))
        return Fail(QStringLiteral("Mitschnitt nicht lesbar"));
    if (!Serve(bus, parser))
        return Fail(QStringLiteral("Port im Netz nicht möglich"));
    return Run(bus);
}
