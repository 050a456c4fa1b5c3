#include "roster/loco_files.h"

#include "program/ask.h"
#include "roster/jmri_roster.h"
#include "roster/loco_json.h"

#include <QFileInfo>
#include <QJsonDocument>

#include <map>

namespace hr::roster
{

namespace
{

constexpr qsizetype MostNotes = 20;

enum class Format { Csv, Json, Jmri, Dds, Unknown };

Format FormatOf(const QString &fileName)
{
    const QString ending = fileName.section(u'.', -1).toLower();
    if (ending == u"csv")
        return Format::Csv;
    if (ending == u"json")
        return Format::Json;
    if (ending == u"xml")
        return Format::Jmri;
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

QByteArray DdsOf(const std::vector<RosterLoco> &locos)
{
    QByteArray file;
    for (const RosterLoco &loco : locos)
        file += PackRecord({RecordKind::Loco, loco.address}, loco.record);
    return file;
}

} // namespace

bool HoldsLocos(const QString &fileName)
{
    return FormatOf(fileName) != Format::Unknown;
}

LocoList LocosOfFile(const QString &fileName, const QByteArray &content)
{
    switch (FormatOf(fileName)) {
    case Format::Csv:
        return ReadLocoCsv(content);
    case Format::Json:
        return ReadLocoJson(content);
    case Format::Jmri:
        return ReadJmriRoster(fileName, content, FunctionWords::Kept());
    default:
        return ReadLocoDds(content);
    }
}

bool IsLocoFolder(const QString &path)
{
    return QFileInfo(path).isDir();
}

LocoList LocosOfFolder(const QString &folder)
{
    return ReadJmriFolder(folder, FunctionWords::Kept());
}

void TellNotes(const LocoList &list)
{
    if (list.notes.empty())
        return;
    const qsizetype more = list.notes.size() - MostNotes;
    QString text = list.notes.mid(0, MostNotes).join(u'\r');
    if (more > 0)
        text += QStringLiteral("\r... und %1 weitere").arg(more);
    TheAsk().showBox({text, QStringLiteral("Nicht alles übernommen"), BoxIcon::None});
}

bool NamesAccepted(const std::vector<ListedLoco> &locos)
{
    const QString adapted = AdaptedNames(locos);
    if (adapted.isEmpty())
        return true;
    return TheAsk().askYesNo({QStringLiteral("Diese Namen haben Zeichen, die der Handregler nicht hat:\r") + adapted
                                     + QStringLiteral("\rSollen sie so geschrieben werden?"),
                                 QStringLiteral("Namen anpassen?"), BoxIcon::None},
        false);
}

QByteArray FileOfLocos(const QString &fileName, const std::vector<RosterLoco> &locos)
{
    switch (FormatOf(fileName)) {
    case Format::Csv:
        return CsvOf(locos, CsvFor::Programs);
    case Format::Json:
        return QJsonDocument(JsonOf(locos)).toJson();
    case Format::Jmri:
        return JmriRosterOf(locos, FunctionWords::Kept());
    default:
        return DdsOf(locos);
    }
}

QByteArray MergedDds(const DdsContent &content, const std::vector<RosterLoco> &locos)
{
    std::map<int, LocoRecord> listed;
    for (const RosterLoco &loco : locos)
        listed.insert_or_assign(loco.address, loco.record);
    QByteArray file;
    for (const DdsRecord &record : content.records) {
        const auto found = record.id.kind == RecordKind::Loco ? listed.find(record.id.number) : listed.end();
        file += found != listed.end() ? PackRecord(record.id, found->second) : record.bytes;
        if (found != listed.end())
            listed.erase(found);
    }
    for (const auto &[address, loco] : listed)
        file += PackRecord({RecordKind::Loco, address}, loco);
    return file;
}

} // namespace hr::roster
