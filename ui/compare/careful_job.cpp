#include "ui/compare/careful_job.h"

#include "jobs/selection.h"
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
std::optional<EarlierWork> EarlierOf(const CarefulJob &job, const JournalHead &head)
{
    JournalContent earlier;
    const Earlier found = job.fileName.isEmpty() ? Earlier::None : EarlierPart(job.fileName, head, earlier);
    if (found == Earlier::None)
        return EarlierWork();
    if (const QString fault = EarlierFault(found, job.fileName); !fault.isEmpty()) {
        const BoxText question{fault + QStringLiteral("\rSoll er verworfen und von vorn begonnen werden?"), job.title,
            BoxIcon::Critical};
        return TheAsk().askYesNo(question, false) ? std::optional(EarlierWork()) : std::nullopt;
    }
    EarlierWork work = EarlierWorkOf(earlier);
    if (work.finished.empty() && work.openPages.empty())
        return work;
    const QString mended = work.openPages.empty()
        ? QString()
        : QStringLiteral("\rDie Speicherseite, bei der er abbrach, wird dabei wiederhergestellt.");
    if (!TheAsk().askYesNo(
            Question(QStringLiteral("Dieser Auftrag wurde abgebrochen; erledigt: %1.\rSoll er fortgesetzt werden?")
                         .arg(RecordCount(work.finished.size()))
                    + mended,
                job.title),
            true))
        work.finished.clear(); // an interrupted page is made good in any case
    return work;
}

void TellNothingDone(JobEnd end)
{
    if (EndedEarly(end))
        ShowEndBox(end,
            EndText(end, QStringLiteral("Das Lesen wurde abgebrochen."))
                + QStringLiteral("\rEs wurde nichts geschrieben."));
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
    if (!IsSettled(report) && !job.fileName.isEmpty())
        text += QStringLiteral("\r\rWas noch fehlt, wird beim nächsten Schreiben dieser Datei fortgesetzt.");
    if (EndedEarly(report.end))
        ShowEndBox(report.end,
            EndText(report.end, QStringLiteral("Das Schreiben wurde abgebrochen.")) + QStringLiteral("\r\r") + text);
    else if (IsSettled(report))
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

Report Write(const CarefulJob &job, const JournalHead &head, const Look &look, const EarlierWork &earlier)
{
    if (job.fileName.isEmpty())
        return WriteCarefully(look.changes, job.wish, nullptr, earlier);
    Journal journal(job.fileName);
    if (!OpenJournal(journal, head, earlier))
        return {JobEnd::NothingDone, {}};
    Report report = WriteCarefully(look.changes, job.wish, &journal, earlier);
    if (IsSettled(report))
        journal.remove();
    return report;
}

/// The guard may have found another handheld while the question was open: what was looked at is not its content.
bool IsStill(const JournalHead &head, const CarefulJob &job)
{
    if (HandheldName(ShownHandheld()) == head.handheld)
        return true;
    TheAsk().showBox({QStringLiteral("Jetzt ist ein anderer Handregler verbunden.\rEs wurde nichts geschrieben."),
        job.title, BoxIcon::Critical});
    return false;
}

} // namespace

CarefulEnd RunCarefully(const Command &command, const CarefulJob &job)
{
    const JournalHead head{JobName(QStringLiteral("schreiben"), job.about), HandheldName(ShownHandheld())};
    const auto earlier = EarlierOf(job, head);
    if (!earlier || !command.connected() || !IsStill(head, job))
        return {};
    const Look look = LookAt(StepsLeft(job.steps, *earlier));
    if (look.end != JobEnd::Complete) {
        TellNothingDone(look.end);
        return {};
    }
    if (!MayWrite(command, job, look) || !IsStill(head, job))
        return {false, look.changes};
    const Report report = Write(job, head, look, *earlier);
    ShowReport(job, report);
    if (report.entries.size() != look.changes.size())
        return {false, look.changes};
    return {IsSettled(report), AfterWriting(look.changes, report)};
}
