#include "cli/loco_files.h"

#include "cli/output.h"
#include "cli/results.h"

namespace hr::cli
{

bool IsLocoFileName(const QString &fileName)
{
    if (HoldsLocos(fileName))
        return true;
    UsageFault(QStringLiteral("%1: Der Name muss auf .csv, .json, .dds oder .xml enden.").arg(fileName));
    return false;
}

std::optional<std::vector<ListedLoco>> ReadLocoFile(const QString &fileName)
{
    LocoList list;
    if (IsLocoFolder(fileName)) {
        list = LocosOfFolder(fileName);
    } else {
        if (!IsLocoFileName(fileName))
            return {};
        const auto file = ReadFileArgument(fileName);
        if (!file)
            return {};
        list = LocosOfFile(fileName, *file);
    }
    TellNotes(list);
    if (list.faults.empty())
        return list.locos;
    FileFaults(fileName, FaultsText(list.faults));
    return {};
}

bool WriteLocoFile(const QString &fileName, const std::vector<RosterLoco> &locos)
{
    return WriteFileArgument(fileName, FileOfLocos(fileName, locos));
}

} // namespace hr::cli
