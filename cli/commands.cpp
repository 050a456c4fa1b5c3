#include "cli/call.h"

const std::vector<Command> &AllCommands()
{
    static const std::vector<Command> commands{InfoCommand(), ListCommand(), ReadCommand(), WriteCommand(),
        DeleteCommand(), BackupCommand(), RestoreCommand(), SymbolCommand(), StartImageCommand(), TableCommand(),
        StationCommand(), ConvertCommand()};
    return commands;
}
