#include "ui/compare/careful_job.h"

#include "handheld/backup/selection.h"
#include "jobs/report.h"
#include "shown/connection.h"

#include <algorithm>

namespace
{

BoxText Question(const QString &text, const QString &title)
{
    return {text, title, BoxIcon::None};
}

/// The earlier part of a job; nothing when the job is not to begin. What is gone on with stays in the content.
std::optional<JournalContent> EarlierOf(const CarefulJob &job, const JournalHead &head)
{
    JournalContent earlier;
    const Earlier found = job.fileName.isEmpty() ? Earlier::None : EarlierPart(job.fileName, head, earlier);
    if (found == Earlier::None)
        return JournalContent();
    if (const QString fault = EarlierFault(found, job.fileName); !fault.isEmpty()) {
        const BoxText question{fault + QStringLiteral("\rSoll er verworfen und von vorn begonnen werden?"), job.title,
            BoxIcon::Critical};
        return TheAsk().askYesNo(question, false) ? std::optional(JournalContent()) : std::nullopt;
    }
    const QString mended = earlier.openPages.empty()
        ? QString()
        : QStringLiteral("\rDie Speicherseite, bei der er abbrach, wird dabei wiederhergestellt.");
    if (!TheAsk().askYesNo(
            Question(QStringLiteral("Dieser Auftrag wurde abgebrochen; erledigt: %1.\rSoll er fortgesetzt werden?")
                         .arg(RecordCount(earlier.finished.size()))
                    + mended,
                job.title),
            true))
        earlier.finished.clear();
    return earlier;
}

/// True when the earlier part has saved the pages of all steps.
bool SavedAll(const JournalContent &earlier, const std::vector<Step> &steps)
{
    const auto file = earlier.savedBefore.isEmpty() ? std::nullopt : LoadDds(earlier.savedBefore);
    if (!file)
        return false;
    std::set<RecordId> saved;
    for (const DdsRecord &record : ReadDds(*file).records)
        saved.insert(record.id);
    return std::ranges::all_of(steps, [&](const Step &step) { return saved.contains(step.id); });
}

bool IsSound(const Report &report)
{
    return report.end == JobEnd::Complete && std::ranges::all_of(report.entries, [](const JobEntry &entry) {
        return entry.state == RecordState::Done || entry.state == RecordState::Unchanged;
    });
}

void TellNothingDone(JobEnd end)
{
    if (EndedEarly(end))
        ShowEndBox(end,
            EndText(end, QStringLiteral("Das Lesen wurde abgebrochen."))
                + QStringLiteral("\rEs wurde nichts geschrieben."));
}

/// The pages that an earlier part left half programmed, as they stood before it. False when that did not work; the user
/// has been told.
bool Mend(const CarefulJob &job, const JournalContent &earlier)
{
    const std::vector<Step> steps = StepsLeft({}, earlier);
    if (steps.empty())
        return true;
    const Look look = LookAt(steps);
    Journal journal(job.fileName);
    if (look.end != JobEnd::Complete || !journal.goOn()) {
        TellNothingDone(look.end);
        return false;
    }
    const Report report = WriteCarefully(look.changes, {true, true, false}, &journal, true);
    if (!IsSound(report))
        ShowEndBox(report.end,
            EndText(report.end, QStringLiteral("Abgebrochen."))
                + QStringLiteral("\rEine Speicherseite ist noch nicht wiederhergestellt:\r")
                + RecordsText(IdsOf(report, RecordState::Untouched)));
    return IsSound(report);
}

bool MayWrite(const Command &command, const CarefulJob &job, const Look &look)
{
    std::vector<RecordChange> written = ToBeWritten(look.changes, job.wish.onlyChanges);
    const size_t unchanged = look.changes.size() - written.size();
    const size_t unknown =
        std::erase_if(written, [](const RecordChange &change) { return change.change == Change::Unknown; });
    if (written.empty())
        return true; // nothing is lost by it
    QString text = job.lead
        + QStringLiteral("In den Handregler werden geschrieben: %1 auf %2.\r")
              .arg(RecordCount(written.size()), PageCount(PagesOf(written)));
    if (unchanged > 0)
        text += QStringLiteral("Unverändert und nicht geschrieben: %1.\r").arg(RecordCount(unchanged));
    if (unknown > 0)
        text += QStringLiteral("Nicht sicher gelesen und nicht geschrieben: %1.\r").arg(RecordCount(unknown));
    text += DurationText(SecondsOf(written, job.wish.verify)) + u'.';
    if (job.wish.saveBefore)
        text += QStringLiteral("\rWas dort steht, wird vorher gesichert.");
    return command.confirmed(Question(text + QStringLiteral("\rSoll geschrieben werden?"), job.title), false);
}

QString ReportText(const Report &report)
{
    const std::pair<RecordState, QString> groups[] = {{RecordState::Done, QStringLiteral("Geschrieben:")},
        {RecordState::Unchanged, QStringLiteral("Unverändert:")},
        {RecordState::Differs, QStringLiteral("Nach dem Schreiben nicht wie gewünscht:")},
        {RecordState::Doubtful,
            QStringLiteral("Unsicher, vielleicht nur zum Teil geschrieben (bitte auch die Nachbarn prüfen):")},
        {RecordState::Untouched, QStringLiteral("Nicht geschrieben:")}};
    QStringList parts;
    for (const auto &[state, heading] : groups) {
        if (const auto ids = IdsOf(report, state); !ids.empty())
            parts += heading + u'\r' + RecordsText(ids);
    }
    return parts.join(QStringLiteral("\r\r"));
}

void ShowReport(const CarefulJob &job, const Report &report)
{
    if (report.end == JobEnd::NothingDone && IdsOf(report, RecordState::Done).empty())
        return; // the reason has been told
    QString text = ReportText(report);
    if (!IsSound(report) && !job.fileName.isEmpty())
        text += QStringLiteral("\r\rWas noch fehlt, wird beim nächsten Schreiben dieser Datei fortgesetzt.");
    if (EndedEarly(report.end))
        ShowEndBox(report.end,
            EndText(report.end, QStringLiteral("Das Schreiben wurde abgebrochen.")) + QStringLiteral("\r\r") + text);
    else if (IsSound(report))
        ShowDoneBox(text, job.title);
    else
        TheAsk().showBox({text, QStringLiteral("Achtung!"), BoxIcon::Critical});
}

/// What the handheld holds now, as far as that is known.
std::vector<RecordChange> AfterWriting(std::vector<RecordChange> changes, const Report &report)
{
    for (size_t i = 0; i < changes.size(); ++i) {
        RecordChange &change = changes.at(i);
        const RecordState state = report.entries.at(i).state;
        if (state == RecordState::Done) {
            change.present = change.wanted;
            change.change = Change::Unchanged;
        } else if (state == RecordState::Differs || state == RecordState::Doubtful) {
            change.present.reset();
            change.change = Change::Unknown;
        }
    }
    return changes;
}

Report Write(const CarefulJob &job, const JournalHead &head, const Look &look, const JournalContent &earlier)
{
    const bool goesOn = earlier.head == head && !(earlier.finished.empty() && earlier.savedBefore.isEmpty());
    if (job.fileName.isEmpty())
        return WriteCarefully(look.changes, job.wish, nullptr, false);
    Journal journal(job.fileName);
    if (!(goesOn ? journal.goOn() : journal.begin(head)))
        return {JobEnd::NothingDone, {}};
    Report report = WriteCarefully(look.changes, job.wish, &journal, !earlier.savedBefore.isEmpty());
    if (IsSound(report))
        journal.remove();
    return report;
}

} // namespace

CarefulEnd RunCarefully(const Command &command, const CarefulJob &job)
{
    const JournalHead head{JobName(QStringLiteral("schreiben"), job.about), HandheldName(ShownHandheld())};
    auto earlier = EarlierOf(job, head);
    if (!earlier || !command.connected())
        return {};
    std::vector<Step> left = StepsLeft(job.steps, *earlier);
    if (!earlier->savedBefore.isEmpty() && !SavedAll(*earlier, left)) {
        // Other records than in the earlier part: its pages first, then a job of its own.
        if (!Mend(job, *earlier))
            return {};
        earlier->openPages.clear();
        left = StepsLeft(job.steps, *earlier);
        *earlier = {};
    }
    const Look look = LookAt(left);
    if (look.end != JobEnd::Complete) {
        TellNothingDone(look.end);
        return {};
    }
    if (!MayWrite(command, job, look))
        return {false, look.changes};
    const Report report = Write(job, head, look, *earlier);
    ShowReport(job, report);
    if (report.entries.size() != look.changes.size())
        return {false, look.changes};
    return {IsSound(report), AfterWriting(look.changes, report)};
}
