#include "cli/call.h"

namespace hr::cli
{

const std::vector<Command> &AllCommands()
{
    static const std::vector<Command> commands{InfoCommand(), ListCommand(), ReadCommand(), WriteCommand(),
        DeleteCommand(), BackupCommand(), RestoreCommand(), CompareCommand(), TakeBackCommand(), SymbolCommand(),
        StartImageCommand(), TableCommand(), StationCommand(), ConvertCommand(), TraceCommand()};
    return commands;
}

} // namespace hr::cli
