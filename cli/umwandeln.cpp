#include "cli/loco_files.h"
#include "cli/output.h"
#include "cli/results.h"
#include "jobs/report.h"
#include "platform/files.h"

#include <set>

namespace hr::cli
{

namespace
{

/// What a backup holds besides locos has no place in the other formats.
void TellLeftOut(const QString &fileName)
{
    const DdsContent content = ReadDds(ReadWholeFile(fileName).value_or(QByteArray()));
    std::vector<RecordId> others;
    for (const DdsRecord &record : content.records) {
        if (record.id.kind != RecordKind::Loco)
            others.push_back(record.id);
    }
    if (!others.empty())
        Tell(QStringLiteral("Nicht übernommen, weil nur Loks umgewandelt werden: ") + ContentText(others));
}

Exit Run(const Call &call)
{
    const QString from = call.arguments.value(0);
    const QString to = call.arguments.value(1);
    if (!IsLocoFileName(to))
        return Exit::Usage;
    const auto listed = ReadLocoFile(from);
    if (!listed)
        return Exit::Usage;
    std::vector<RosterLoco> locos;
    std::vector<FileFault> faults;
    for (const ListedLoco &loco : *listed) {
        if (!loco.name)
            faults.push_back(
                {loco.line, QStringLiteral("Name"), QStringLiteral("der Name der Lok %1 fehlt").arg(loco.address)});
        locos.push_back({loco.address, Applied(loco, {})});
    }
    if (!faults.empty())
        return FileFaults(from, FaultsText(faults));
    if (!NamesAccepted(*listed))
        return Exit::Stopped;
    if (from.endsWith(QStringLiteral(".dds"), Qt::CaseInsensitive))
        TellLeftOut(from);
    if (!WriteLocoFile(to, locos))
        return Exit::Usage;
    if (call.options.json)
        PrintJson(QJsonDocument(
            QJsonObject{{QStringLiteral("datei"), to}, {QStringLiteral("loks"), static_cast<int>(locos.size())}}));
    else
        PrintLine(LocoCount(locos.size()) + QStringLiteral(" umgewandelt nach ") + to);
    return Exit::Done;
}

} // namespace

Command ConvertCommand()
{
    return {QStringLiteral("umwandeln"), {QStringLiteral("EIN"), QStringLiteral("AUS")},
        QStringLiteral("wandelt Loks zwischen .dds, .csv, .json und JMRI (.xml) um, ohne Handregler"), {}, Run,
        QStringLiteral(
            "Eine vorhandene Datei AUS wird ersetzt. Aus einer Sicherung werden nur die Loks genommen. EIN "
            "kann auch der Ordner mit den Lokdateien von JMRI sein; was davon nicht verstanden wird, wird genannt.")};
}

} // namespace hr::cli
