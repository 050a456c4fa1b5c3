#include "jobs/restore.h"

#include "jobs/report.h"
#include "program/ask.h"

#include <QDir>

namespace
{

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
        TheAsk().showBox({QStringLiteral("Die Datei %1 enthält keine Daten!").arg(Shown(fileName)),
            QStringLiteral("Achtung!"), BoxIcon::Critical});
        return false;
    }
    const QString damage =
        QStringLiteral("Die Datei %1 ist beschädigt!\r").arg(Shown(fileName)) + FaultText(*content.fault) + u".\r\r";
    if (content.records.empty()) {
        TheAsk().showBox({damage + QStringLiteral("Es wird nichts in den Handregler geschrieben."),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return false;
    }
    return TheAsk().askYesNo(
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
    return Group(QStringLiteral("Unsicher, vielleicht nur zum Teil geschrieben:"), outcome.doubtful)
        + QStringLiteral("\rBitte auch die Nachbarn prüfen (je 8 Loks und je 8 Symbolnummern liegen zusammen).");
}

} // namespace

Plan RestorePlan(const std::vector<DdsRecord> &records)
{
    Plan plan{{}, [](const Step &step) { return ProgressText(step.id); }, Patience::Job, false, true};
    for (const DdsRecord &record : records)
        plan.steps.push_back({StepKind::Write, record.id, UnpackRecord(record), {}});
    return plan;
}

RestoreOutcome Restore(const QString &fileName)
{
    RestoreOutcome outcome{JobEnd::NothingDone, {}, {}, {}};
    const auto file = LoadDds(fileName);
    if (!file) {
        TheAsk().showBox({QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(Shown(fileName)),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return outcome;
    }
    const DdsContent content = ReadDds(*file);
    if (!MayBeWritten(fileName, content))
        return outcome;
    const Report report = RunJob(RestorePlan(content.records));
    return {report.end, IdsOf(report, RecordState::Done), IdsOf(report, RecordState::Doubtful),
        IdsOf(report, RecordState::Untouched)};
}

void ReportRestore(const RestoreOutcome &outcome)
{
    if (EndedEarly(outcome.end)) {
        ShowEndBox(outcome.end,
            EndText(outcome.end, QStringLiteral("Das Zurückschreiben wurde abgebrochen."))
                + Group(QStringLiteral("Geschrieben:"), outcome.written) + DoubtfulGroup(outcome)
                + Group(QStringLiteral("Nicht geschrieben:"), outcome.untouched));
    } else if (outcome.end == JobEnd::Complete && !outcome.doubtful.empty()) {
        TheAsk().showBox({QStringLiteral("Der Handregler hat nicht immer geantwortet.") + DoubtfulGroup(outcome),
            QStringLiteral("Achtung!"), BoxIcon::Critical});
    }
}
