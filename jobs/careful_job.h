// The one flow of a job that writes and loses nothing, for both faces:
//
//   1  a page that an earlier job left half programmed is made good          (jobs/open_page.h)
//   2  an earlier part of this job: gone on with, or begun anew              (jobs/journal.h)
//   3  what stands there is read, and compared with what is wanted
//   4  the user is asked
//   5  what is overwritten is saved, whole pages                             (jobs/undo_snapshot.h)
//   6  page by page: remembered, programmed, proved, noted in the journal    (jobs/page_writer.h)
//   7  the report; the journal goes when the job is complete
//
// Nothing is overwritten that could not be read, and no page is programmed whose records are not remembered on the disk.
#pragma once

#include "jobs/careful_report.h"
#include "program/ask.h"

namespace hr::jobs
{

struct WriteOptions {
    bool writeAll = false; // also what holds already what it should, and what was edited since
    bool prove = true;     // by the chip after each page, and read back
    bool undoSnapshot =
        true; // without one the change cannot be taken back; pages under way are remembered all the same
};

enum class Resume {
    Ask,
    Wanted // said by the user: to go on is the only wish
};

struct CarefulJob {
    QString command;  // what the user called, for those who read it later: "schreiben loks.csv"
    QString fileName; // beside which the journal lies; empty: there is none
    QByteArray about; // what the job is about: another content is another job
    std::vector<Step> steps;
    WriteOptions options;
    Resume resume = Resume::Ask;
    bool dryRun = false; // only looked at
    bool asks = true;    // before writing; false where the user has answered already
    QString title;       // of the boxes; empty on a terminal
    QString lead;        // stands above the question, ended by CR; may be empty
    QString question = QStringLiteral("Soll geschrieben werden?");
    bool namesPresent = false; // the question names the locos that are overwritten
    QString undoes;            // the undo snapshot whose change is taken back: what was edited since stays
};

/// What a window and a terminal do differently.
class JobFace
{
public:
    enum class Topic {
        MendPage,    // is a half programmed page to be made good?
        DropPage,    // is it to be forgotten as it is?
        WithoutPage, // is the rest to be written, without a page that could not be made good?
        Resume,      // is the job to go on where it was?
        DropJournal, // is a journal that does not fit to be given up?
        Write
    };
    enum class Handheld {
        Same,
        Again, // found again, and it says the same of itself: it may be another one
        Gone   // none, or another one; the user has been told where it is another one
    };
    virtual ~JobFace() = default;

    /// What identifies the handheld in service.
    [[nodiscard]] virtual QString handheld() const = 0;

    /// Asks, unless the user has said it already. False for No.
    [[nodiscard]] virtual bool agrees(Topic topic, const BoxText &question, bool defaultYes) = 0;

    /// Looked at after each question: meanwhile the handheld may have been changed for another one.
    [[nodiscard]] virtual Handheld handheldNow() = 0;
};

struct CarefulEnd {
    enum class Is {
        Written,    // the report says what; also when nothing had to be
        Looked,     // a dry run
        Refused,    // Nein to a question
        Impossible, // the reason has been told
        BrokenOff   // before anything was written; see `end`
    };
    Is is = Is::Impossible;
    JobEnd end = JobEnd::NothingDone;
    std::vector<RecordChange> changes; // as looked at, as far as it came to that
    CarefulReport report;
};

/// Carries the job out. What goes wrong before anything is written is told by boxes.
[[nodiscard]] CarefulEnd RunCarefulJob(const CarefulJob &job, JobFace &face);

/// Only makes good what earlier jobs have left half programmed, with a job's questions. Written: nothing stands in the way
/// of writing any more.
[[nodiscard]] CarefulEnd MendPages(JobFace &face, const QString &title);

/// What a look at the handheld brought.
struct Look {
    JobEnd end = JobEnd::Complete;
    std::vector<RecordChange> changes;
};

/// Reads each record that the steps are about, and says what they would change. Of a record that is listed twice the last
/// step counts.
[[nodiscard]] Look LookAt(const std::vector<Step> &steps);

/// True when pages of this handheld wait to be made good.
bool PagesWait(const QString &handheld);

} // namespace hr::jobs
