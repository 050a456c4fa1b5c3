#include "cli/loco_files.h"
#include "cli/output.h"
#include "cli/service.h"
#include "jobs/report.h"
#include "program/run_control.h"
#include "station/download.h"

#include <QJsonObject>

namespace hr::cli
{

namespace
{

Exit ExitOfDownload(const Download &download)
{
    return download.status < BaseLeaving ? Exit::NoHandheld : Exit::Incomplete; // no station answered
}

Exit Run(const Call &call)
{
    const QString fileName = call.arguments.value(0);
    if (!IsLocoFileName(fileName))
        return Exit::Usage;
    Download download;
    {
        const Service line(call, Service::Wanted::LineOnly);
        if (!line.ready())
            return line.failure();
        download = DownloadLocos();
    }
    if (BoxesAreSilent() || InterruptTaken()) { // what came until then looks like a whole database
        Tell(QStringLiteral("Abgebrochen. Die Datei wird nicht geschrieben."));
        return Exit::Stopped;
    }
    if (download.status != 0) {
        Tell(QStringLiteral("Die Datenbank wurde nicht vollständig gelesen; die Datei wird nicht geschrieben."));
        return ExitOfDownload(download);
    }
    std::vector<RosterLoco> locos;
    for (const DownloadedLoco &loco : download.locos)
        locos.push_back({loco.address, RecordOfLoco(loco)});
    if (!WriteLocoFile(fileName, locos))
        return Exit::Usage;
    if (download.unusable > 0)
        Tell(QStringLiteral("%1 Datensätze haben eine Adresse, die der Handregler nicht kennt.")
                 .arg(download.unusable));
    if (call.options.json)
        PrintJson(QJsonDocument(QJsonObject{
            {QStringLiteral("datei"), fileName}, {QStringLiteral("loks"), static_cast<int>(locos.size())}}));
    else
        PrintLine(LocoCount(locos.size()) + QStringLiteral(" gelesen nach ") + fileName);
    return Exit::Done;
}

} // namespace

Command StationCommand()
{
    return {QStringLiteral("zentrale"), {QStringLiteral("DATEI")},
        QStringLiteral("holt die Lok-Datenbank der Zentrale in eine Datei .csv, .json, .dds oder .xml (JMRI)"), {},
        Run,
        QStringLiteral(
            "Braucht --interface 3; ein Handregler muss nicht verbunden sein. --schnell gilt hier nicht.")};
}

} // namespace hr::cli
