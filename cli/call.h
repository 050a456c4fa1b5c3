// A call of the terminal program: its options and arguments, its commands and how it can end.
#pragma once

#include "platform/rooms.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QStringList>

#include <functional>
#include <vector>

namespace hr::cli
{

/// Exit status of the program.
enum class Exit {
    Done = 0,
    Usage = 1,      // wrong call, a file that cannot be read, understood or written
    NoHandheld = 2, // no port or no handheld
    Incomplete = 3, // not complete or doubtful: time-outs, port lost; the report names the records
    Differs = 4,    // differences were found
    Stopped = 5,    // by the user: Ctrl-C, or Nein to a question
};

/// The options that every command has.
struct Options {
    QString port;          // empty: konf\ComPort.inf
    int interfaceType = 0; // 1 or 3; 0: konf\ComPort.inf
    bool fast = false;
    bool json = false;
    bool yes = false;   // every question is answered with Ja that is meant to be
    bool quiet = false; // no progress and no messages that are only for information
};

struct Call {
    QStringList arguments; // of the command, as many as it wants
    Options options;
    const QCommandLineParser *parser = nullptr;
    QString words; // command and arguments as the user wrote them: "schreiben loks.csv"

    [[nodiscard]] QString value(const QString &option) const { return parser->value(option); }

    /// False also for an option that the command does not have: commands share code.
    [[nodiscard]] bool has(const QString &option) const
    {
        const QStringList given = parser->optionNames(); // as they were typed
        return given.contains(option) || (option == u"probe" && given.contains(QStringLiteral("n")));
    }
};

struct Command {
    QString name;
    QStringList arguments; // their names; one in brackets may be missing
    QString summary;       // one line
    QList<QCommandLineOption> options;
    std::function<Exit(const Call &)> run;
    QString details = {}; // what its help says besides: whole sentences, a line each
};

/// True when the user has pressed Ctrl-C in this command: nothing more is to be begun.
bool InterruptTaken();

/// All commands, in the order of the help.
const std::vector<Command> &AllCommands();

// One file a command.
Command InfoCommand();
Command ListCommand();
Command ReadCommand();
Command WriteCommand();
Command DeleteCommand();
Command BackupCommand();
Command RestoreCommand();
Command SymbolCommand();
Command StartImageCommand();
Command TableCommand();
Command StationCommand();
Command ConvertCommand();
Command CompareCommand();
Command TakeBackCommand();
Command TraceCommand();

} // namespace hr::cli
