#include "cli/careful.h"

#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "jobs/journal.h"
#include "jobs/report.h"
#include "jobs/selection.h"
#include "platform/text.h"

#include <algorithm>

namespace hr::cli
{

namespace
{

const auto DryRunOption = QStringLiteral("probe");
const auto WriteAllOption = QStringLiteral("alles-schreiben");
const auto OnlyChangesOption = QStringLiteral("nur-aenderungen"); // what is always so; older calls have it
const auto ProveOption = QStringLiteral("pruefen");
const auto NoProofOption = QStringLiteral("nicht-pruefen");
const auto NoSnapshotOption = QStringLiteral("ohne-sicherung");
const auto ResumeOption = QStringLiteral("fortsetzen");

QString ChangeKey(Change change)
{
    switch (change) {
    case Change::New:
        return QStringLiteral("neu");
    case Change::Changed:
        return QStringLiteral("geaendert");
    case Change::OtherLoco:
        return QStringLiteral("andere_lok");
    case Change::Emptied:
        return QStringLiteral("geloescht");
    case Change::Unchanged:
        return QStringLiteral("unveraendert");
    case Change::Nameless:
        return QStringLiteral("leer");
    case Change::EditedSince:
        return QStringLiteral("seither_geaendert");
    case Change::Unknown:
        break;
    }
    return QStringLiteral("unbekannt");
}

QJsonObject ChangeJson(const RecordChange &change)
{
    QJsonObject object = RecordsJson({change.id}).at(0).toObject();
    object.insert(QStringLiteral("aenderung"), ChangeKey(change.change));
    QJsonArray fields;
    if (change.present) {
        for (const FieldChange &field : FieldChanges(*change.present, change.wanted)) {
            fields += QJsonObject{{QStringLiteral("feld"), field.name()}, {QStringLiteral("alt"), field.from},
                {QStringLiteral("neu"), field.to}};
        }
    }
    object.insert(QStringLiteral("felder"), fields);
    return object;
}

void PrintChange(const RecordChange &change)
{
    PrintLine(RecordName(change.id) + QStringLiteral(": ") + ChangeText(change.change));
    if (!change.present || change.change == Change::Nameless)
        return;
    for (const FieldChange &field : FieldChanges(*change.present, change.wanted))
        PrintLine(QStringLiteral("  %1: %2 -> %3").arg(field.name(), field.from, field.to));
}

/// The terminal: options are answers, and what a program may not decide is not decided by --ja.
class TerminalFace : public JobFace
{
public:
    TerminalFace(const Call &theCall, const Service &theService) : call(theCall), service(theService) { }

    [[nodiscard]] QString handheld() const override { return HandheldName(service.handheld()); }

    [[nodiscard]] bool agrees(Topic topic, const BoxText &question, bool defaultYes) override
    {
        if (topic == Topic::MendPage && call.has(ResumeOption))
            return true;
        if (topic == Topic::Resume)
            return AgreesToGoOn(call, question, defaultYes);
        BoxText asked = question;
        asked.needsUser = topic == Topic::DropJournal || topic == Topic::DropPage || topic == Topic::WithoutPage;
        return TheAsk().askYesNo(asked, defaultYes);
    }

    /// The line stays open while a question waits; who has gone meanwhile does not answer.
    [[nodiscard]] Handheld handheldNow() override { return Handheld::Same; }

private:
    const Call &call;
    const Service &service;
};

void PrintGroup(const ReportGroup &group)
{
    if (group.records.empty())
        return;
    PrintLine(group.heading);
    PrintLine(ScreenLines(RecordsText(group.records)));
}

/// Before the job itself, earlier pages were made good.
void PrintRestored(const Call &call, const CarefulReport &report)
{
    const ReportGroup restored = ReportGroups(report, {}, {}).front();
    if (!call.options.json)
        PrintGroup(restored);
    else if (!restored.records.empty())
        PrintJson(QJsonDocument(QJsonObject{{restored.key, RecordsJson(restored.records)}}));
}

Exit PrintCarefulReport(const Call &call, const CarefulReport &report, const Heading &heading)
{
    if (report.job.end != JobEnd::Complete && report.job.end != JobEnd::NothingDone)
        Tell(EndText(report.job.end, QStringLiteral("Angehalten.")));
    QJsonObject object;
    bool nothing = true;
    for (const ReportGroup &group : ReportGroups(report, heading.text, heading.key)) {
        object.insert(group.key, RecordsJson(group.records));
        nothing = nothing && group.records.empty();
        if (!call.options.json)
            PrintGroup(group);
    }
    object.insert(QStringLiteral("unbewiesen"), RecordsJson(report.unproved));
    object.insert(QStringLiteral("sicherung"), report.snapshot);
    if (call.options.json)
        PrintJson(QJsonDocument(object));
    else if (nothing)
        PrintLine(QStringLiteral("Es war nichts zu schreiben."));
    if (!call.options.quiet || !IsSettled(report)) {
        for (const QString &advice : ReportAdvice(report))
            Tell(ScreenLines(advice));
    }
    if (!report.snapshot.isEmpty() && !call.options.quiet)
        Tell(QStringLiteral("\"handregler zuruecknehmen\" schreibt es zurück."));
    if (report.goesOn)
        Tell(QStringLiteral("Derselbe Befehl mit --fortsetzen schreibt, was noch fehlt."));
    else if (!report.unproved.empty())
        Tell(QStringLiteral("Derselbe Befehl stellt zuerst wieder her und schreibt dann, was noch fehlt."));
    const bool allNamed = IdsOf(report.job, RecordState::Empty).empty();
    return ExitOf(report.job.end, IsSettled(report) && report.edited.empty() && allNamed);
}

/// Nothing of the job is written; an earlier page may have been made good, or not.
Exit PrintBreak(const Call &call, const CarefulEnd &end)
{
    const bool mended = !end.report.restored.empty() || !end.report.unproved.empty();
    Tell(EndText(end.end, QStringLiteral("Angehalten."))
        + (mended ? QStringLiteral(" Von diesem Auftrag wurde nichts geschrieben.")
                  : QStringLiteral(" Es wurde nichts geschrieben.")));
    PrintRestored(call, end.report);
    for (const QString &advice : ReportAdvice(end.report))
        Tell(ScreenLines(advice));
    return ExitOf(end.end, true);
}

Exit PrintDryRun(const Call &call, const std::vector<RecordChange> &changes)
{
    PrintChanges(call, changes, Listed::All);
    const bool allKnown = std::ranges::count(changes, Change::Unknown, &RecordChange::change) == 0;
    return allKnown ? Exit::Done : Exit::Incomplete;
}

} // namespace

QList<QCommandLineOption> CarefulOptions(Keeps keeps)
{
    QCommandLineOption onlyChanges(OnlyChangesOption);
    onlyChanges.setFlags(QCommandLineOption::HiddenFromHelp);
    QList<QCommandLineOption> options{
        {{QStringLiteral("n"), DryRunOption}, QStringLiteral("zeigt nur, was geschrieben würde")},
        {WriteAllOption, QStringLiteral("schreibt auch, was schon so im Handregler steht")},
        {ProveOption, QStringLiteral("prüft, was geschrieben wurde (ist immer eingeschaltet)")},
        {NoProofOption, QStringLiteral("prüft nicht nach")},
        {NoSnapshotOption, QStringLiteral("sichert vorher nicht, was überschrieben wird")}, onlyChanges};
    if (keeps == Keeps::Journal)
        options += {ResumeOption, QStringLiteral("setzt einen abgebrochenen Auftrag fort")};
    return options;
}

bool ReadsOnly(const Call &call)
{
    for (const QString &option : {DryRunOption, WriteAllOption, OnlyChangesOption, ProveOption, NoProofOption,
             NoSnapshotOption, QStringLiteral("auch-eingebaute")}) {
        if (!call.has(option))
            continue;
        UsageFault(QStringLiteral("--%1 gibt es nur beim Schreiben.").arg(option));
        return false;
    }
    return true;
}

CarefulJob JobOf(const Call &call)
{
    CarefulJob job;
    job.command = call.words;
    job.options = {call.has(WriteAllOption), !call.has(NoProofOption), !call.has(NoSnapshotOption)};
    job.resume = call.has(ResumeOption) ? Resume::Wanted : Resume::Ask;
    job.dryRun = call.has(DryRunOption);
    return job;
}

Exit RunCarefully(const Call &call, const CarefulJob &job, const Heading &heading,
    const std::function<void(const CarefulReport &)> &whenWritten)
{
    const Service service(call);
    if (!service.ready())
        return service.failure();
    TerminalFace face(call, service);
    const CarefulEnd end = RunCarefulJob(job, face);
    switch (end.is) {
    case CarefulEnd::Is::Written:
        if (whenWritten)
            whenWritten(end.report);
        return PrintCarefulReport(call, end.report, heading);
    case CarefulEnd::Is::Looked:
        return PrintDryRun(call, end.changes);
    case CarefulEnd::Is::Refused:
    case CarefulEnd::Is::Impossible:
        PrintRestored(call, end.report);
        return end.is == CarefulEnd::Is::Refused ? Exit::Stopped : Exit::Usage;
    case CarefulEnd::Is::BrokenOff:
        return PrintBreak(call, end);
    }
    Q_UNREACHABLE();
}

void PrintChanges(const Call &call, const std::vector<RecordChange> &changes, Listed listed)
{
    const bool all = call.has(WriteAllOption);
    std::vector<RecordChange> different = ToBeWritten(changes, all ? Written::All : Written::Changes);
    const auto &rows = listed == Listed::All ? changes : different;
    std::vector<RecordChange> known = different; // what is not known is not written
    std::erase_if(known, [](const RecordChange &change) { return change.change == Change::Unknown; });
    const double seconds = SecondsOf(known, !call.has(NoProofOption));
    if (call.options.json) {
        QJsonArray array;
        for (const RecordChange &change : rows)
            array += ChangeJson(change);
        PrintJson(QJsonDocument(QJsonObject{{QStringLiteral("datensaetze"), array},
            {QStringLiteral("seiten"), static_cast<int>(PagesOf(known))}, {QStringLiteral("sekunden"), seconds}}));
        return;
    }
    for (const RecordChange &change : rows)
        PrintChange(change);
    if (listed == Listed::All)
        PrintLine(QStringLiteral("%1: %2 von %3, %4. %5.")
                      .arg(all ? QStringLiteral("Zu schreiben") : QStringLiteral("Anders"))
                      .arg(known.size())
                      .arg(changes.size())
                      .arg(PageCount(PagesOf(known)), DurationText(seconds)));
    else if (different.empty())
        PrintLine(QStringLiteral("Kein Unterschied: %1.").arg(RecordCount(changes.size())));
}

} // namespace hr::cli
