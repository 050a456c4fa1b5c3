#include "handheld/backup/restore.h"

#include "handheld/backup/kept_state.h"
#include "handheld/flash_map.h"
#include "platform/run_control.h"
#include "platform/world.h"

#include <QDir>

namespace
{

int RestoreLoco(const DdsRecord &record)
{
    SpiBuf.fill(EmptyByte); // the bytes in between would otherwise be those of the record before
    SetCurrentLocoRecord(UnpackLoco(record));
    return WriteLocoRecord(record.id.number);
}

int RestoreBlock(const DdsRecord &record)
{
    UnpackBlock(record);
    if (record.id.kind == KindRoutes)
        return WriteRoutes();
    return record.id.kind == KindMagZuordnung ? WriteMagZuordnung() : WriteMagListe();
}

int RestoreSymbol(const DdsRecord &record)
{
    UnpackSymbol(record);
    return WriteSymbol(SymbolKindOf(record.id.kind), record.id.number, HalfOf(record.id.kind));
}

int RestoreRecord(const DdsRecord &record)
{
    switch (record.id.kind) {
    case KindLoco:
        return RestoreLoco(record);
    case KindRoutes:
    case KindMagZuordnung:
    case KindMagListe:
        return RestoreBlock(record);
    default:
        return RestoreSymbol(record);
    }
}

RestoreOutcome RestoreRecords(const std::vector<DdsRecord> &records)
{
    const KeptState kept;
    const StoppableJob stoppable;
    RestoreOutcome outcome;
    size_t next = 0;
    for (; next < records.size() && JobGoesOn(); ++next) {
        const DdsRecord &record = records.at(next);
        ShowRecordProgress(record.id);
        const int status = RestoreRecord(record);
        (status == 0 ? outcome.written : outcome.doubtful).push_back(record.id);
    }
    const bool brokenOff = next < records.size() || (TransferBrokenOff() && !outcome.doubtful.empty());
    for (; next < records.size(); ++next)
        outcome.untouched.push_back(records.at(next).id);
    if (brokenOff)
        outcome.end = WhyBrokenOff();
    return outcome;
}

QString Shown(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

/// Tells the user about a file that is damaged or empty; true when its sound records are to be written.
bool MayBeWritten(const QString &fileName, const DdsContent &content)
{
    if (!content.fault && !content.records.empty())
        return true;
    if (!content.fault) {
        TheFrontend().showBox({QStringLiteral("Die Datei %1 enthält keine Daten!").arg(Shown(fileName)),
            QStringLiteral("Achtung!"), BoxIcon::Critical});
        return false;
    }
    const QString damage =
        QStringLiteral("Die Datei %1 ist beschädigt!\r").arg(Shown(fileName)) + FaultText(*content.fault) + u".\r\r";
    if (content.records.empty()) {
        TheFrontend().showBox({damage + QStringLiteral("Es wird nichts in den Handregler geschrieben."),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return false;
    }
    return TheFrontend().askYesNo(
        {damage
                + QStringLiteral("Unversehrt davor: %1. Sollen diese in den Handregler geschrieben werden?")
                      .arg(RecordCount(content.records.size())),
            QStringLiteral("Fehler!"), BoxIcon::Critical},
        false);
}

QString Group(const QString &heading, const std::vector<RecordId> &records)
{
    return QStringLiteral("\r\r") + heading + u'\r' + RecordsText(records);
}

QString DoubtfulGroup(const RestoreOutcome &outcome)
{
    if (outcome.doubtful.empty())
        return {};
    // When the handheld missed the page load, the whole page was written from other data.
    return Group(QStringLiteral("Unsicher, vielleicht nur zum Teil geschrieben:"), outcome.doubtful)
        + QStringLiteral("\rBitte auch die Nachbarn prüfen (je 8 Loks und je 8 Symbolnummern liegen zusammen).");
}

void ReportBrokenOff(const RestoreOutcome &outcome)
{
    const bool lost = outcome.end == JobEnd::PortLost;
    const QString what = lost ? QStringLiteral("Die Verbindung zum Handregler ging verloren.")
                              : QStringLiteral("Das Zurückschreiben wurde abgebrochen.");
    const QString text = what + Group(QStringLiteral("Geschrieben:"), outcome.written) + DoubtfulGroup(outcome)
        + Group(QStringLiteral("Nicht geschrieben:"), outcome.untouched);
    TheFrontend().showBox({text, lost ? QStringLiteral("Fehler!") : QStringLiteral("Achtung!"),
        lost ? BoxIcon::Critical : BoxIcon::Information});
}

} // namespace

RestoreOutcome Restore(const QString &fileName)
{
    RestoreOutcome nothing{JobEnd::NothingDone, {}, {}, {}};
    const auto file = LoadDds(fileName);
    if (!file) {
        TheFrontend().showBox({QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(Shown(fileName)),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return nothing;
    }
    const DdsContent content = ReadDds(*file);
    if (!MayBeWritten(fileName, content))
        return nothing;
    return RestoreRecords(content.records);
}

void ReportRestore(const RestoreOutcome &outcome)
{
    if (outcome.end == JobEnd::Stopped || outcome.end == JobEnd::PortLost)
        ReportBrokenOff(outcome);
    else if (outcome.end == JobEnd::Complete && !outcome.doubtful.empty())
        TheFrontend().showBox({QStringLiteral("Der Handregler hat nicht immer geantwortet.") + DoubtfulGroup(outcome),
            QStringLiteral("Achtung!"), BoxIcon::Critical});
}
