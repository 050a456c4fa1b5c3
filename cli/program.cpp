#include "cli/program.h"

#include "cli/output.h"
#include "cli/results.h"
#include "program/run_control.h"
#include "program/settings_file.h"

#include <QCoreApplication>

#include <algorithm>

namespace hr::cli
{

namespace
{

bool interrupted = false;

const auto PortOption = QStringLiteral("anschluss");
const auto InterfaceOption = QStringLiteral("interface");
const auto FastOption = QStringLiteral("schnell");
const auto JsonOption = QStringLiteral("json");
const auto YesOption = QStringLiteral("ja");
const auto QuietOption = QStringLiteral("leise");
const auto HelpOption = QStringLiteral("help");
const auto VersionOption = QStringLiteral("version");

void AddGlobalOptions(QCommandLineParser &parser)
{
    parser.addOptions({{{QStringLiteral("a"), PortOption},
                           QStringLiteral("Anschluss, zum Beispiel ttyUSB0, COM3, RECHNER:1234 oder Demo (sonst "
                                          "HANDREGLER_ANSCHLUSS, sonst wie im Fenster gewählt)"),
                           QStringLiteral("TEXT")},
        {{QStringLiteral("i"), InterfaceOption},
            QStringLiteral("Interface: 1 (Orvanto 1 oder Tessaro) oder 3 (direkt); sonst HANDREGLER_INTERFACE"),
            QStringLiteral("1|3")},
        {{QStringLiteral("s"), FastOption}, QStringLiteral("schnelle Übertragung")},
        {{QStringLiteral("j"), JsonOption}, QStringLiteral("Ergebnis als JSON")},
        {{QStringLiteral("y"), YesOption},
            QStringLiteral("Fragen mit Ja beantworten (nicht, ob ein Auftrag fortgesetzt oder sein Fortschritt "
                           "verworfen wird)")},
        {{QStringLiteral("q"), QuietOption}, QStringLiteral("ohne Fortschritt und Hinweise")},
        {VersionOption, QStringLiteral("Version des Programms")},
        {{QStringLiteral("h"), HelpOption}, QStringLiteral("diese Hilfe, auch nach einem Befehl")}});
}

const Command *CommandNamed(const QString &name)
{
    const auto &commands = AllCommands();
    const auto found = std::ranges::find(commands, name, &Command::name);
    return found == commands.end() ? nullptr : &*found;
}

/// The first word that is no option and no value of one.
QString CommandWord(const QStringList &words)
{
    QCommandLineParser parser;
    AddGlobalOptions(parser);
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    static_cast<void>(
        parser.parse(QStringList{QStringLiteral("handregler")} + words)); // commands have options of their own
    return parser.positionalArguments().value(0);
}

QString Overview()
{
    QString text = QStringLiteral(
        "Aufruf: handregler [Optionen] BEFEHL ...\n"
        "Liest, schreibt, sichert und vergleicht, was ein LocoNet-Handregler speichert.\n\nBefehle:\n");
    for (const Command &command : AllCommands())
        text += QStringLiteral("  ") + command.name.leftJustified(15) + command.summary + u'\n';
    return text
        + QStringLiteral("\nEine LISTE sind Nummern und Bereiche: 1-5,8\n"
                         "Hilfe zu einem Befehl: handregler BEFEHL --help\n\n");
}

QString Introduction(const Command &command)
{
    const QString words = (QStringList(command.name) << command.arguments).join(u' ');
    QString text = QStringLiteral("Aufruf: handregler [Optionen] ") + words + QStringLiteral("\n\n")
        + command.summary.left(1).toUpper() + command.summary.mid(1) + QStringLiteral(".\n");
    if (!command.details.isEmpty())
        text += command.details + u'\n';
    return text + u'\n';
}

/// The help of a command, or the overview with the options that all commands have.
void PrintHelp(QCommandLineParser &parser, const Command *command)
{
    const QString text = parser.helpText(); // its first line names the program by its path
    const QString front = command == nullptr ? Overview() : Introduction(*command);
    PrintLine(front + text.mid(text.indexOf(u'\n') + 1).trimmed());
}

bool IsOptional(const QString &argument)
{
    return argument.startsWith(u'[');
}

/// How many arguments are missing or too many, in words; empty when it fits.
QString ArgumentFault(const Command &command, const QStringList &given)
{
    const auto needed =
        std::ranges::count_if(command.arguments, [](const QString &name) { return !IsOptional(name); });
    if (given.size() < needed)
        return QStringLiteral("Es fehlt etwas: ") + command.name + u' ' + command.arguments.join(u' ');
    if (given.size() > command.arguments.size())
        return QStringLiteral("\"%1\" ist zu viel.").arg(given.constLast());
    return {};
}

Exit Fault(const QString &text, const Command *command)
{
    UsageFault(text);
    const QString name = command == nullptr ? QString() : QString(u' ' + command->name);
    Tell(QStringLiteral("Hilfe: handregler%1 --help").arg(name));
    return Exit::Usage;
}

/// The options, completed by the variables; a fault where one of them cannot be meant.
QString OptionsOf(const QCommandLineParser &parser, Options &options)
{
    options = {parser.value(PortOption), 0, parser.isSet(FastOption), parser.isSet(JsonOption),
        parser.isSet(YesOption), parser.isSet(QuietOption)};
    if (parser.isSet(PortOption) && options.port.trimmed().isEmpty())
        return QStringLiteral("--anschluss: hier muss ein Anschluss stehen.");
    if (!parser.isSet(PortOption))
        options.port = qEnvironmentVariable("HANDREGLER_ANSCHLUSS");
    const bool given = parser.isSet(InterfaceOption);
    const QString kind = given ? parser.value(InterfaceOption) : qEnvironmentVariable("HANDREGLER_INTERFACE");
    if (!given && kind.isEmpty())
        return {};
    if (kind != u"1" && kind != u"3")
        return (given ? QStringLiteral("--interface") : QStringLiteral("HANDREGLER_INTERFACE"))
            + QStringLiteral(": hier muss 1 oder 3 stehen.");
    options.interfaceType = kind == u"1" ? InterfaceOrvanto1 : InterfaceDirect;
    return {};
}

} // namespace

std::optional<Wish> UnderstandWords(const QStringList &words, QCommandLineParser &parser, Exit &exit)
{
    interrupted = false;
    const QString name = CommandWord(words);
    const Command *command = CommandNamed(name);
    if (command != nullptr)
        parser.addOptions(command->options); // before the others, so that the help begins with them
    AddGlobalOptions(parser);
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions); // "-json" is meant as "--json"
    const bool understood = parser.parse(QStringList{QStringLiteral("handregler")} + words);
    exit = Exit::Done;
    if (parser.isSet(VersionOption)) {
        PrintLine(QStringLiteral("handregler ") + QCoreApplication::applicationVersion());
        return {};
    }
    if (parser.isSet(HelpOption) && (command != nullptr || name.isEmpty())) {
        PrintHelp(parser, command);
        return {};
    }
    QString fault = understood ? QString() : parser.errorText();
    if (command == nullptr)
        fault = name.isEmpty() ? QStringLiteral("Es fehlt ein Befehl.")
                               : QStringLiteral("Den Befehl \"%1\" gibt es nicht.").arg(name);
    const QStringList given = parser.positionalArguments().mid(1);
    if (fault.isEmpty())
        fault = ArgumentFault(*command, given);
    Options options;
    const QString optionFault = OptionsOf(parser, options);
    if (fault.isEmpty())
        fault = optionFault;
    if (!fault.isEmpty()) {
        exit = Fault(fault, command);
        return {};
    }
    return Wish{command, {given, options, &parser, parser.positionalArguments().join(u' ')},
        {parser.isSet(YesOption), parser.isSet(QuietOption)}};
}

bool InterruptTaken()
{
    return interrupted;
}

void TakeInterrupt()
{
    interrupted = true;
    if (JobCanBeStopped())
        ConfirmStop();
    else
        RequestEnd();
}

} // namespace hr::cli
