#include "cli/careful.h"

#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "handheld/backup/selection.h"
#include "jobs/careful_write.h"
#include "jobs/report.h"
#include "program/ask.h"

namespace
{

const auto ProbeOption = QStringLiteral("probe");
const auto OnlyChangesOption = QStringLiteral("nur-aenderungen");
const auto VerifyOption = QStringLiteral("pruefen");
const auto NoVerifyOption = QStringLiteral("nicht-pruefen");
const auto NoSavingOption = QStringLiteral("ohne-sicherung");
const auto GoOnOption = QStringLiteral("fortsetzen");

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

/// Whether an earlier part of the job is gone on with.
enum class Begin { Anew, GoOn, Refused };

Begin HowToBegin(const Call &call, const CarefulJob &job, const JournalHead &head, JournalContent &earlier)
{
    if (job.fileName.isEmpty())
        return Begin::Anew;
    const Earlier found = EarlierPart(job.fileName, head, earlier);
    if (found == Earlier::None && !call.has(GoOnOption))
        return Begin::Anew;
    if (found == Earlier::None) {
        UsageFault(QStringLiteral("Es gibt nichts fortzusetzen."));
        return Begin::Refused;
    }
    if (const QString fault = EarlierFault(found, job.fileName); !fault.isEmpty()) {
        const BoxText question{
            fault + QStringLiteral("\rSoll er verworfen und von vorn begonnen werden?"), {}, BoxIcon::Critical};
        earlier = {};
        return !call.has(GoOnOption) && TheAsk().askYesNo(question, false) ? Begin::Anew : Begin::Refused;
    }
    const BoxText question{
        QStringLiteral("Dieser Auftrag wurde abgebrochen; %1 sind schon erledigt.\rSoll er fortgesetzt werden?")
            .arg(RecordCount(earlier.finished.size())),
        {}, BoxIcon::None};
    if (call.has(GoOnOption) || TheAsk().askYesNo(question, true))
        return Begin::GoOn;
    earlier.finished.clear(); // an interrupted page is made good in any case, and what was saved stays
    return Begin::Anew;
}

CarefulWish WishOf(const Call &call, const CarefulJob &job)
{
    return {call.has(OnlyChangesOption) || job.takesBack, !call.has(NoVerifyOption), !call.has(NoSavingOption),
        job.takesBack};
}

Exit Write(const Call &call, const CarefulJob &job, const JournalHead &head, const std::vector<RecordChange> &changes,
    const EarlierWork &earlier)
{
    std::optional<Journal> journal;
    if (!job.fileName.isEmpty()) {
        journal.emplace(job.fileName);
        if (!OpenJournal(*journal, head, earlier))
            return Exit::Usage;
    }
    const Report report = WriteCarefully(changes, WishOf(call, job), journal ? &*journal : nullptr, earlier);
    if (journal && IsSettled(report))
        journal->remove();
    const Exit exit = PrintReport(call, report, job.heading, job.key);
    if (journal && !IsSettled(report))
        Tell(QStringLiteral("Was noch fehlt, schreibt derselbe Befehl mit --fortsetzen."));
    return exit;
}

} // namespace

QList<QCommandLineOption> CarefulOptions(Keeps keeps)
{
    QList<QCommandLineOption> options{
        {OnlyChangesOption, QStringLiteral("schreibt nur, was im Handregler anders ist")},
        {ProbeOption, QStringLiteral("zeigt nur, was geschrieben würde")},
        {VerifyOption, QStringLiteral("prüft, was geschrieben wurde (ist immer eingeschaltet)")},
        {NoVerifyOption, QStringLiteral("prüft nicht nach")},
        {NoSavingOption, QStringLiteral("sichert vorher nicht, was überschrieben wird")}};
    if (keeps == Keeps::Journal)
        options += {GoOnOption, QStringLiteral("setzt einen abgebrochenen Auftrag fort")};
    return options;
}

Exit RunCarefully(const Call &call, const CarefulJob &job)
{
    const Service service(call);
    if (!service.ready())
        return service.failure();
    const JournalHead head{JobName(QStringLiteral("schreiben"), job.about), HandheldName(service.handheld())};
    JournalContent found;
    const Begin begin = call.has(ProbeOption) ? Begin::Anew : HowToBegin(call, job, head, found);
    if (begin == Begin::Refused)
        return Exit::Usage;
    const EarlierWork earlier = EarlierWorkOf(found);
    const Look look = LookAt(StepsLeft(job.steps, earlier));
    if (look.end != JobEnd::Complete) {
        Tell(EndText(look.end, QStringLiteral("Abgebrochen.")) + QStringLiteral(" Es wurde nichts geschrieben."));
        return ExitOf(look.end, true);
    }
    if (!call.has(ProbeOption))
        return Write(call, job, head, look.changes, earlier);
    PrintChanges(call, look.changes, Shown::All);
    return Exit::Done;
}

void PrintChanges(const Call &call, const std::vector<RecordChange> &changes, Shown shown)
{
    const std::vector<RecordChange> different = ToBeWritten(changes, true);
    const auto &listed = shown == Shown::All ? changes : different;
    const double seconds = SecondsOf(different, !call.has(NoVerifyOption));
    if (call.options.json) {
        QJsonArray array;
        for (const RecordChange &change : listed)
            array += ChangeJson(change);
        PrintJson(QJsonDocument(QJsonObject{{QStringLiteral("datensaetze"), array},
            {QStringLiteral("seiten"), static_cast<int>(PagesOf(different))},
            {QStringLiteral("sekunden"), seconds}}));
        return;
    }
    for (const RecordChange &change : listed)
        PrintChange(change);
    if (shown == Shown::All)
        PrintLine(QStringLiteral("Anders: %1 von %2, %3 Speicherseiten. %4.")
                      .arg(different.size())
                      .arg(changes.size())
                      .arg(PagesOf(different))
                      .arg(DurationText(seconds)));
    else if (different.empty())
        PrintLine(QStringLiteral("Kein Unterschied: %1.").arg(RecordCount(changes.size())));
}
