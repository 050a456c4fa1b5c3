#include "jobs/restore.h"

#include "jobs/report.h"
#include "jobs/selection.h"
#include "link/cadence.h"

#include <QDir>

namespace hr::jobs
{

namespace
{

QString Shown(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

BoxText FileBox(const QString &text, const QString &title)
{
    return {text, title, BoxIcon::Critical};
}

BoxText DamageBox(const QString &fileName, const DdsContent &content)
{
    const QString damage =
        QStringLiteral("Die Datei %1 ist beschädigt!\r").arg(Shown(fileName)) + FaultText(*content.fault) + u".\r\r";
    const QString end = content.records.empty()
        ? QStringLiteral("Es wird nichts in den Handregler geschrieben.")
        : QStringLiteral("Unversehrt davor: %1. Sollen diese in den Handregler geschrieben werden?")
              .arg(RecordCount(content.records.size()));
    return FileBox(damage + end, QStringLiteral("Fehler!"));
}

QString DurationOf(const std::vector<DdsRecord> &records)
{
    int messages = 0;
    for (const DdsRecord &record : records)
        messages += RowOf(record.id.kind).writeMessages;
    return DurationText(messages * SecondsPerMessage());
}

BoxText Question(const QString &fileName, const std::vector<DdsRecord> &records)
{
    std::vector<RecordId> ids;
    ids.reserve(records.size());
    for (const DdsRecord &record : records)
        ids.push_back(record.id);
    return {QStringLiteral("Die Datei %1 enthält:\r%2.\r\r"
                           "Was der Handregler davon schon hat, wird überschrieben.\r%3.\r\r"
                           "Soll die Datensicherung in den Handregler geschrieben werden?")
                .arg(Shown(fileName), ContentText(ids), DurationOf(records)),
        QStringLiteral("Datensicherung zurückschreiben"), BoxIcon::None};
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
    Plan plan{.steps = {},
        .progress = [](const Step &step) { return ProgressText(step.id); },
        .patience = Patience::Job,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    for (const DdsRecord &record : records)
        plan.steps.push_back({StepKind::Write, record.id, UnpackRecord(record), {}});
    return plan;
}

std::optional<RestoreOffer> OfferRestore(const QString &fileName)
{
    const auto file = LoadDds(fileName);
    if (!file) {
        TheAsk().showBox(FileBox(QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(Shown(fileName)),
            QStringLiteral("Fehler!")));
        return {};
    }
    const DdsContent content = ReadDds(*file);
    if (!content.records.empty()) {
        return RestoreOffer{
            content.records, content.fault ? DamageBox(fileName, content) : Question(fileName, content.records)};
    }
    TheAsk().showBox(content.fault ? DamageBox(fileName, content)
                                   : FileBox(QStringLiteral("Die Datei %1 enthält keine Daten!").arg(Shown(fileName)),
                                       QStringLiteral("Achtung!")));
    return {};
}

RestoreOutcome Restore(const std::vector<DdsRecord> &records)
{
    const Report report = RunJob(RestorePlan(records));
    return {report.end, IdsOf(report, RecordState::Done), IdsOf(report, RecordState::Doubtful),
        IdsOf(report, RecordState::Untouched)};
}

void ReportRestore(const RestoreOutcome &outcome)
{
    if (EndedEarly(outcome.end)) {
        ShowEndBox(outcome.end,
            EndText(outcome.end, QStringLiteral("Das Zurückschreiben wurde angehalten."))
                + Group(QStringLiteral("Geschrieben:"), outcome.written) + DoubtfulGroup(outcome)
                + Group(QStringLiteral("Nicht geschrieben:"), outcome.untouched));
    } else if (outcome.end == JobEnd::Complete) {
        ShowDoneBox(QStringLiteral("In den Handregler geschrieben:\r") + ContentText(outcome.written),
            QStringLiteral("Datensicherung zurückschreiben"));
    }
}

} // namespace hr::jobs
