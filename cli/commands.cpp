#include "cli/call.h"

const std::vector<Command> &AllCommands()
{
    static const std::vector<Command> commands{InfoCommand(), ListCommand(), ReadCommand(), WriteCommand(),
        DeleteCommand(), BackupCommand(), RestoreCommand(), CompareCommand(), TakeBackCommand(), SymbolCommand(),
        StartImageCommand(), TableCommand(), StationCommand(), ConvertCommand()};
    return commands;
}
