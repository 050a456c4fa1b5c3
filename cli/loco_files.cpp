#include "cli/loco_files.h"

#include "cli/output.h"
#include "cli/results.h"
#include "program/ask.h"
#include "roster/loco_json.h"

namespace
{

enum class Format { Csv, Json, Dds, Unknown };

Format FormatOf(const QString &fileName)
{
    const QString ending = fileName.section(u'.', -1).toLower();
    if (ending == u"csv")
        return Format::Csv;
    if (ending == u"json")
        return Format::Json;
    return ending == u"dds" ? Format::Dds : Format::Unknown;
}

LocoList ReadLocoDds(const QByteArray &file)
{
    const DdsContent content = ReadDds(file);
    LocoList list;
    if (content.fault)
        list.faults.push_back({0, {}, FaultText(*content.fault)});
    for (const RosterLoco &loco : LocosIn(content)) {
        if (!IsEmptyName(loco.record.name))
            list.locos.push_back(Listed(loco));
    }
    if (list.locos.empty() && list.faults.empty())
        list.faults.push_back({0, {}, QStringLiteral("die Datei enthält keine Loks")});
    CheckAddressesOnce(list);
    return list;
}

LocoList ReadByFormat(const QString &fileName, const QByteArray &file)
{
    switch (FormatOf(fileName)) {
    case Format::Csv:
        return ReadLocoCsv(file);
    case Format::Json:
        return ReadLocoJson(file);
    default:
        return ReadLocoDds(file);
    }
}

QByteArray DdsOf(const std::vector<RosterLoco> &locos)
{
    QByteArray file;
    for (const RosterLoco &loco : locos)
        file += PackRecord({RecordKind::Loco, loco.address}, loco.record);
    return file;
}

} // namespace

bool IsLocoFileName(const QString &fileName)
{
    if (FormatOf(fileName) != Format::Unknown)
        return true;
    UsageFault(QStringLiteral("%1: Der Name muss auf .csv, .json oder .dds enden.").arg(fileName));
    return false;
}

std::optional<std::vector<ListedLoco>> ReadLocoFile(const QString &fileName)
{
    if (!IsLocoFileName(fileName))
        return {};
    const auto file = ReadFileArgument(fileName);
    if (!file)
        return {};
    LocoList list = ReadByFormat(fileName, *file);
    if (list.faults.empty())
        return list.locos;
    FileFaults(fileName, FaultsText(list.faults));
    return {};
}

bool NamesAccepted(const std::vector<ListedLoco> &locos)
{
    const QString adapted = AdaptedNames(locos);
    if (adapted.isEmpty())
        return true;
    return TheAsk().askYesNo({QStringLiteral("Diese Namen haben Zeichen, die der Handregler nicht hat:\r") + adapted
                                     + QStringLiteral("\rSollen sie so geschrieben werden?"),
                                 {}, BoxIcon::None},
        false);
}

bool WriteLocoFile(const QString &fileName, const std::vector<RosterLoco> &locos)
{
    switch (FormatOf(fileName)) {
    case Format::Csv:
        return WriteFileArgument(fileName, CsvOf(locos, CsvFor::Programs));
    case Format::Json:
        return WriteFileArgument(fileName, QJsonDocument(JsonOf(locos)).toJson());
    default:
        return WriteFileArgument(fileName, DdsOf(locos));
    }
}
