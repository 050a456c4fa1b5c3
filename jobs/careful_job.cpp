#include "jobs/careful_job.h"

#include "handheld/known_locos.h"
#include "jobs/journal.h"
#include "jobs/open_page.h"
#include "jobs/page_writer.h"
#include "jobs/report.h"
#include "jobs/selection.h"
#include "jobs/undo_snapshot.h"
#include "link/exchange.h"
#include "link/open_link.h"
#include "platform/disk.h"
#include "platform/files.h"
#include "platform/world.h"
#include "program/run_control.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace hr::jobs
{

namespace
{

using Topic = JobFace::Topic;

constexpr qint64 LongestBreakSeconds = qint64{24} * 60 * 60; // after it a job is not gone on with

std::vector<RecordId> IdsIn(const std::map<RecordId, QByteArray> &records)
{
    std::vector<RecordId> ids;
    ids.reserve(records.size());
    for (const auto &[id, bytes] : records)
        ids.push_back(id);
    return ids;
}

std::vector<RecordId> IdsIn(const std::vector<RecordChange> &changes)
{
    std::vector<RecordId> ids;
    ids.reserve(changes.size());
    for (const RecordChange &change : changes)
        ids.push_back(change.id);
    return ids;
}

/// What stands there now, when all of it could be read.
std::optional<std::map<RecordId, SavedRecord>> AllRead(const Report &report)
{
    std::map<RecordId, SavedRecord> records;
    for (const JobEntry &entry : report.entries) {
        const auto record = ReadRecordOf(entry);
        if (!record)
            return {};
        records.insert_or_assign(entry.step.id, *record);
    }
    return records;
}

/// Pages that earlier jobs have left half programmed, and what becomes of them.
class Mending
{
public:
    Mending(const CarefulJob &theJob, JobFace &theFace, CarefulEnd &theEnd) : job(theJob), face(theFace), end(theEnd)
    {
    }

    /// False when the job ends here.
    bool run()
    {
        for (const OpenPage &page : OpenPages(face.handheld())) {
            if (!mend(page))
                return false;
        }
        return true;
    }

    std::set<int> avoided; // pages that could not be made good: nothing is written there

private:
    bool mend(const OpenPage &page)
    {
        if (page.state.before.empty())
            return dropDamaged(page);
        const Report read = look(page);
        if (read.end != JobEnd::Complete) {
            end.is = CarefulEnd::Is::BrokenOff;
            end.end = read.end;
            return false;
        }
        const auto now = AllRead(read);
        if (!now)
            return goOnWithout(page, QStringLiteral("kann nicht sicher gelesen werden"));
        const std::vector<RecordChange> destroyed = destroyedIn(page, *now);
        const auto others = destroyed.empty() ? othersIn(page, *now) : std::vector<RecordId>();
        if (destroyed.empty() && others.empty()) // the program had come to its end, or was never begun
            return settle(page);
        switch (destroyed.empty() ? answerForOthers(page, others) : answerFor(page, destroyed)) {
        case Answer::Mend:
            return writeBack(page, destroyed, *now);
        case Answer::Forget:
            return settle(page);
        case Answer::LookAgain:
            return mend(page);
        case Answer::End:
            break;
        }
        end.is = CarefulEnd::Is::Refused;
        return false;
    }

    static Report look(const OpenPage &page)
    {
        const StoppableJob stoppable;
        return ReadSurely(IdsIn(page.state.before));
    }

    static std::vector<RecordChange> destroyedIn(const OpenPage &page, const std::map<RecordId, SavedRecord> &now)
    {
        std::vector<RecordChange> destroyed;
        for (const auto &[id, bytes] : page.state.before) {
            if (SinceThen(page.state, now.at(id)) == Since::Destroyed)
                destroyed.push_back(BackTo({id, bytes}, now.at(id)));
        }
        return destroyed;
    }

    /// What is neither what it was nor what was wanted: it was edited since, or another handheld holds it.
    static std::vector<RecordId> othersIn(const OpenPage &page, const std::map<RecordId, SavedRecord> &now)
    {
        std::vector<RecordId> others;
        for (const auto &[id, record] : now) {
            if (SinceThen(page.state, record) == Since::Edited)
                others.push_back(id);
        }
        return others;
    }

    /// What is remembered of the page has done its service; of a spoilt file only a part was looked at.
    bool settle(const OpenPage &page)
    {
        if (!page.sound)
            return dropDamaged(page);
        ForgetPage(page);
        return true;
    }

    [[nodiscard]] static QString when(const OpenPage &page)
    {
        return QStringLiteral("%1 (%2)").arg(ShownTime(page.state), page.state.command);
    }

    enum class Answer { Mend, Forget, LookAgain, End };

    Answer answerFor(const OpenPage &page, const std::vector<RecordChange> &destroyed)
    {
        const QString what = QStringLiteral("Beim Schreiben vom %1 wurde eine Speicherseite nicht fertig.\r"
                                            "Zerstört sind:\r%2.\r")
                                 .arg(when(page), RecordsText(IdsIn(destroyed)));
        const QString mendIt = QStringLiteral("Sollen sie zuerst wiederhergestellt werden?");
        if (face.agrees(Topic::MendPage, {what + mendIt, job.title, BoxIcon::Critical}, true))
            return unlessChanged(Answer::Mend);
        const QString forget = QStringLiteral("Soll vergessen werden, was vorher dort stand?\r"
                                              "(Nein: es bleibt aufbewahrt, und es wird nichts geschrieben.)");
        if (face.agrees(Topic::DropPage, {what + forget, job.title, BoxIcon::Critical}, false))
            return unlessChanged(Answer::Forget);
        return Answer::End;
    }

    Answer answerForOthers(const OpenPage &page, const std::vector<RecordId> &others)
    {
        const QString text =
            QStringLiteral("Beim Schreiben vom %1 wurde vielleicht eine Speicherseite nicht fertig, und jetzt steht "
                           "hier etwas anderes als vorher und als gewollt:\r%2.\r"
                           "Es wurde seither geändert, oder dies ist ein anderer Handregler.\r"
                           "Soll vergessen werden, was vorher dort stand?\r"
                           "(Nein: es bleibt aufbewahrt, und es wird nichts geschrieben.)")
                .arg(when(page), RecordsText(others));
        const bool forget = face.agrees(Topic::DropPage, {text, job.title, BoxIcon::Critical}, false);
        return forget ? unlessChanged(Answer::Forget) : Answer::End;
    }

    /// A handheld that came while the question was open has a page of its own there.
    Answer unlessChanged(Answer answer)
    {
        const JobFace::Handheld now = face.handheldNow();
        if (now == JobFace::Handheld::Gone)
            return Answer::End;
        return now == JobFace::Handheld::Again ? Answer::LookAgain : answer;
    }

    bool writeBack(
        const OpenPage &page, const std::vector<RecordChange> &destroyed, const std::map<RecordId, SavedRecord> &now)
    {
        Neighbours sound;
        for (const auto &[id, record] : now)
            sound.emplace(id, record.bytes);
        for (const RecordChange &change : destroyed)
            sound.erase(change.id);
        const StoppableJob stoppable;
        const TellsPortLoss teller;
        TheAsk().showProgress(QStringLiteral("Stelle wieder her: ") + RecordName(destroyed.front().id));
        const WrittenPage written = WritePage(destroyed, sound, true);
        TheAsk().hideProgress();
        const bool proved =
            std::ranges::all_of(written.states, [](RecordState state) { return state == RecordState::Done; });
        if (!proved)
            return goOnWithout(page, QStringLiteral("ließ sich nicht wiederherstellen"));
        for (const RecordChange &change : destroyed)
            end.report.restored.push_back(change.id);
        return settle(page);
    }

    /// What was remembered cannot be used, or only a part of it.
    bool dropDamaged(const OpenPage &page)
    {
        const QString text = QStringLiteral(
            "Eine Speicherseite wurde beim Schreiben nicht fertig, und die Datei %1, in der steht, was "
            "vorher darin stand, %2.\rBitte prüfen Sie die Datensätze, die Sie zuletzt "
            "geschrieben haben, und ihre Nachbarn.\rSoll das Schreiben trotzdem weitergehen?")
                                 .arg(QDir::toNativeSeparators(page.fileName), page.fault());
        if (face.agrees(Topic::DropPage, {text, job.title, BoxIcon::Critical}, false)
            && face.handheldNow() != JobFace::Handheld::Gone) {
            // Where that fails it is asked about again.
            static_cast<void>(TheDisk().rename(page.fileName, page.fileName + QStringLiteral(".beschaedigt")));
            return true;
        }
        end.is = CarefulEnd::Is::Refused;
        return false;
    }

    bool goOnWithout(const OpenPage &page, const QString &why)
    {
        const std::vector<RecordId> ids = IdsIn(page.state.before);
        end.report.unproved.insert(end.report.unproved.end(), ids.begin(), ids.end());
        if (TransferBrokenOff()) {
            end.is = CarefulEnd::Is::BrokenOff;
            end.end = WhyJobBrokeOff();
            return false;
        }
        for (const RecordId &id : ids)
            avoided.insert(PageAddressOf(id));
        const QString text =
            QStringLiteral("Die Speicherseite vom Schreiben am %1 %2:\r%3.\r"
                           "Was vorher darin stand, bleibt aufbewahrt.\rSoll ohne sie weitergeschrieben werden?")
                .arg(when(page), why, RecordsText(ids));
        end.is = CarefulEnd::Is::Refused;
        return face.agrees(Topic::WithoutPage, {text, job.title, BoxIcon::Critical}, false)
            && face.handheldNow() != JobFace::Handheld::Gone;
    }

    const CarefulJob &job;
    JobFace &face;
    CarefulEnd &end;
};

/// One job while it runs.
class Flow
{
public:
    Flow(const CarefulJob &theJob, JobFace &theFace) : job(theJob), face(theFace), mending(theJob, theFace, end) { }

    CarefulEnd run()
    {
        end.report.proves = job.options.prove;
        head = {JobName(QStringLiteral("schreiben"), job.about), face.handheld()};
        if (job.dryRun)
            tellOfWaitingPages();
        else if (!isKnown() || !isItsChange() || !mending.run() || !takeEarlierPart())
            return std::move(end);
        if (!look())
            return std::move(end);
        if (job.dryRun) {
            end.is = CarefulEnd::Is::Looked;
            return std::move(end);
        }
        choose();
        if (!mayWrite())
            return std::move(end);
        write();
        return std::move(end);
    }

private:
    /// What is kept on the disk belongs to this handheld alone.
    bool isKnown()
    {
        if (!head.handheld.trimmed().isEmpty())
            return true;
        tell(QStringLiteral("Der Handregler hat nicht sicher gesagt, welcher er ist.\rEs wurde nichts geschrieben."));
        return false;
    }

    /// A change is taken back where it was made.
    bool isItsChange()
    {
        const QString made = job.undoes.isEmpty() ? QString() : LoadUndoSnapshot(job.undoes).state.handheld;
        if (made.isEmpty() || made == head.handheld)
            return true;
        tell(QStringLiteral("Diese Änderung wurde im Handregler %1 gemacht; verbunden ist jetzt %2.\r"
                            "Es wurde nichts geschrieben.")
                 .arg(made, head.handheld));
        return false;
    }

    // --- An earlier part ---

    void tellOfWaitingPages()
    {
        if (PagesWait(head.handheld))
            tell(QStringLiteral("Eine Speicherseite wurde beim letzten Schreiben nicht fertig. Das nächste Schreiben "
                                "bietet an, sie wiederherzustellen."));
    }

    void tell(const QString &text) { TheAsk().showBox({text, job.title, BoxIcon::Critical}); }

    /// False when the job ends here.
    bool takeEarlierPart()
    {
        end.is = CarefulEnd::Is::Impossible;
        const Earlier found = job.fileName.isEmpty() ? Earlier::None : EarlierPart(job.fileName, head, earlier);
        const bool wanted = job.resume == Resume::Wanted;
        if (found == Earlier::None && wanted)
            tell(QStringLiteral("Es gibt nichts fortzusetzen."));
        if (found == Earlier::None)
            return !wanted;
        journalIsThere = true;
        if (found != Earlier::Fits)
            return dropsJournal(EarlierFault(found, job.fileName));
        if (const QString reason = whyAnew(); !reason.isEmpty()) {
            tell(reason + QStringLiteral(" Es wird von vorn begonnen."));
            earlier = {};
            before = {};
            return true;
        }
        goesOn = wantsToGoOn();
        return isThere();
    }

    bool dropsJournal(const QString &fault)
    {
        earlier = {};
        if (job.resume == Resume::Wanted) {
            tell(fault);
            return false;
        }
        const QString text = fault + QStringLiteral("\rSoll er verworfen und von vorn begonnen werden?");
        return face.agrees(Topic::DropJournal, {text, job.title, BoxIcon::Critical}, false) && isThere();
    }

    /// Why a part that fits is not gone on with all the same; empty when it can be.
    QString whyAnew()
    {
        const qint64 age = earlier.begun.secsTo(TheEvents().now());
        const bool sameRecords =
            std::ranges::all_of(job.steps, [this](const Step &step) { return earlier.records.contains(step.id); });
        if (!earlier.snapshot.isEmpty())
            before = LoadUndoSnapshot(earlier.snapshot);
        if (before.is == SnapshotState::TakenBack)
            return QStringLiteral("Dieser Auftrag wurde abgebrochen und inzwischen zurückgenommen.");
        if (!earlier.begun.isValid() || age < 0 || age > LongestBreakSeconds)
            return QStringLiteral("Dieser Auftrag wurde vor mehr als einem Tag abgebrochen.");
        return sameRecords ? QString() : QStringLiteral("Der abgebrochene Auftrag galt anderen Datensätzen.");
    }

    bool wantsToGoOn()
    {
        const QString text =
            QStringLiteral("Dieser Auftrag wurde abgebrochen; erledigt: %1.\rSoll er fortgesetzt werden?")
                .arg(RecordCount(earlier.finished.size()));
        return job.resume == Resume::Wanted || face.agrees(Topic::Resume, {text, job.title, BoxIcon::None}, true);
    }

    [[nodiscard]] bool isFinished(const RecordChange &change) const
    {
        return change.change == Change::Unchanged
            && std::ranges::find(earlier.finished, change.id) != earlier.finished.end();
    }

    // --- Look and question ---

    bool isThere() { return face.handheldNow() != JobFace::Handheld::Gone; }

    bool look()
    {
        Look looked = LookAt(job.steps);
        end.changes = std::move(looked.changes);
        end.end = looked.end;
        if (looked.end != JobEnd::Complete) {
            end.is = CarefulEnd::Is::BrokenOff;
            return false;
        }
        leaveEdits();
        return true;
    }

    /// A change is taken back where it is what the job has made, or what a power cut has left of it. Its neighbours are not
    /// part of it, unless they are destroyed.
    void leaveEdits()
    {
        if (job.undoes.isEmpty())
            return;
        const SavedState undone = LoadUndoSnapshot(job.undoes).state;
        if (undone.wanted.empty())
            return; // an older version did not save what it wrote
        const std::map<RecordId, Since> since = sinceThen(undone);
        std::erase_if(end.changes, [&](const RecordChange &change) {
            return !undone.wanted.contains(change.id) && since.at(change.id) != Since::Destroyed;
        });
        for (RecordChange &change : end.changes) {
            if (since.at(change.id) == Since::Edited)
                change.change = Change::EditedSince;
        }
    }

    /// A power cut destroys one page. Of more than one, those that are erased were emptied by somebody, or are another
    /// handheld's.
    [[nodiscard]] std::map<RecordId, Since> sinceThen(const SavedState &undone) const
    {
        std::map<RecordId, Since> states;
        std::vector<RecordId> erased;
        std::set<int> destroyedPages;
        for (const RecordChange &change : end.changes) {
            const auto now = PresentRecord(change);
            const bool known = now && undone.before.contains(change.id);
            const Since state = known ? SinceThen(undone, *now) : Since::Destroyed;
            states.emplace(change.id, state);
            if (!known || state != Since::Destroyed)
                continue;
            destroyedPages.insert(PageAddressOf(change.id));
            if (now->bytes == QByteArray(now->bytes.size(), '\xFF'))
                erased.push_back(change.id);
        }
        for (const RecordId &id : erased) {
            if (destroyedPages.size() > 1)
                states.at(id) = Since::Edited;
        }
        return states;
    }

    /// What is to be written.
    void choose()
    {
        chosen = ToBeWritten(end.changes, job.options.writeAll ? Written::All : Written::Changes);
        std::erase_if(chosen, [this](const RecordChange &change) {
            return change.change == Change::Unknown || (goesOn && isFinished(change))
                || mending.avoided.contains(PageAddressOf(change.id));
        });
    }

    bool mayWrite()
    {
        if (!job.asks || chosen.empty())
            return true; // nothing is lost by it
        end.is = CarefulEnd::Is::Refused;
        if (!face.agrees(Topic::Write, {question(), job.title, BoxIcon::None}, false))
            return false;
        switch (face.handheldNow()) {
        case JobFace::Handheld::Same:
            return true;
        case JobFace::Handheld::Gone:
            return false;
        case JobFace::Handheld::Again:
            return holdsTheSame();
        }
        Q_UNREACHABLE();
    }

    [[nodiscard]] QString question() const
    {
        const size_t unchanged = count(Change::Unchanged);
        const size_t unknown = count(Change::Unknown);
        const size_t edited = count(Change::EditedSince);
        QString text = job.lead
            + QStringLiteral("In den Handregler werden geschrieben: %1 auf %2.\r")
                  .arg(RecordCount(chosen.size()), PageCount(PagesOf(chosen)));
        if (unchanged > 0 && !job.options.writeAll)
            text += QStringLiteral("Unverändert und nicht geschrieben: %1.\r").arg(RecordCount(unchanged));
        if (edited > 0 && !job.options.writeAll)
            text += QStringLiteral("Seither geändert und so gelassen: %1.\r").arg(RecordCount(edited));
        if (job.namesPresent)
            text += overwrittenText();
        if (unknown > 0)
            text += QStringLiteral("Nicht sicher gelesen und nicht geschrieben: %1.\r").arg(RecordCount(unknown));
        text += DurationText(SecondsOf(chosen, job.options.prove)) + u'.';
        if (job.options.undoSnapshot)
            text += QStringLiteral("\rWas dort steht, wird vorher gesichert.");
        return text + u'\r' + job.question;
    }

    /// The first of the locos that others take the place of, by their present names.
    [[nodiscard]] QString overwrittenText() const
    {
        constexpr qsizetype mostNamed = 12;
        QStringList names;
        for (const RecordChange &change : chosen) {
            const auto *loco = change.present ? std::get_if<LocoRecord>(&*change.present) : nullptr;
            if (loco != nullptr && change.change == Change::OtherLoco)
                names += QStringLiteral("%1 (%2)").arg(change.id.number).arg(ShownName(*loco));
        }
        if (names.isEmpty())
            return {};
        const QString rest = names.size() > mostNamed ? QStringLiteral(" …") : QString();
        return QStringLiteral("Dort stehen jetzt andere Loks: %1%2\r")
            .arg(names.mid(0, mostNamed).join(QStringLiteral(", ")), rest);
    }

    [[nodiscard]] size_t count(Change wanted) const
    {
        return static_cast<size_t>(std::ranges::count(end.changes, wanted, &RecordChange::change));
    }

    /// A handheld that came while the question was open: what was looked at must stand there too.
    bool holdsTheSame()
    {
        const std::vector<RecordChange> seen = end.changes;
        if (!look())
            return false;
        const bool same = std::ranges::equal(seen, end.changes, [](const auto &one, const auto &other) {
            const auto was = PresentRecord(one);
            const auto is = PresentRecord(other);
            return was.has_value() == is.has_value() && (!was || was->bytes == is->bytes);
        });
        if (same)
            return true;
        tell(QStringLiteral("Jetzt ist ein anderer Handregler verbunden.\rEs wurde nichts geschrieben."));
        end.is = CarefulEnd::Is::Impossible;
        return false;
    }

    // --- Writing ---

    void write()
    {
        end.is = CarefulEnd::Is::Written;
        beginReport();
        const StoppableJob stoppable; // one for reading and writing: a stop between them counts
        if (chosen.empty() && !journalIsThere)
            end.report.job.end = JobEnd::Complete;
        else if (openJournal() && readPages() && saveSnapshot())
            writePages();
        TheAsk().hideProgress();
        finish();
    }

    void beginReport()
    {
        for (const RecordChange &change : end.changes) {
            JobEntry entry{{StepKind::Write, change.id, change.wanted, {}}, RecordState::Untouched, {}, {}, {}};
            const bool finished = goesOn && isFinished(change);
            if (change.change == Change::Unchanged && (!job.options.writeAll || finished))
                entry.state = RecordState::Unchanged;
            if (change.change == Change::Nameless)
                entry.state = RecordState::Empty;
            if (change.change == Change::Unknown)
                end.report.unreadable.push_back(change.id);
            if (change.change == Change::EditedSince && !job.options.writeAll)
                end.report.edited.push_back(change.id);
            if (isFinished(change) && entry.state == RecordState::Unchanged)
                end.report.already.push_back(change.id);
            places.emplace(change.id, end.report.job.entries.size());
            end.report.job.entries.push_back(std::move(entry));
        }
        end.report.job.end = JobEnd::NothingDone;
    }

    JobEntry &entryOf(const RecordId &id) { return end.report.job.entries.at(places.at(id)); }

    bool openJournal()
    {
        if (job.fileName.isEmpty())
            return true;
        journal.emplace(job.fileName);
        const bool opened = goesOn ? journal->goOn() : journal->begin(head, IdsIn(end.changes));
        if (!opened)
            journal.reset();
        return opened;
    }

    /// All records of the pages. A page of which a record can't be read without a doubt can't be made good again: it is not
    /// written.
    bool readPages()
    {
        for (const RecordChange &change : end.changes) {
            if (const auto record = PresentRecord(change))
                present.insert_or_assign(change.id, record->bytes);
        }
        std::set<RecordId> unknown;
        for (const RecordChange &change : chosen) {
            for (const RecordId &id : RecordsOfPage(change.id)) {
                if (!present.contains(id))
                    unknown.insert(id);
            }
        }
        const Report read = ReadSurely({unknown.begin(), unknown.end()});
        for (const JobEntry &entry : read.entries) {
            if (const auto record = ReadRecordOf(entry))
                present.insert_or_assign(entry.step.id, record->bytes);
            else
                leaveOut(PageAddressOf(entry.step.id));
        }
        end.report.job.end = read.end;
        return read.end == JobEnd::Complete;
    }

    void leaveOut(int page)
    {
        std::erase_if(chosen, [&](const RecordChange &change) {
            const bool out = PageAddressOf(change.id) == page;
            if (out)
                end.report.unreadable.push_back(change.id);
            return out;
        });
    }

    /// The state of these changes' pages, and what is to be written there.
    [[nodiscard]] SavedState stateOf(const std::vector<RecordChange> &changes) const
    {
        SavedState state;
        state.handheld = head.handheld;
        state.time = TheEvents().now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        state.command = job.command;
        for (const RecordChange &change : changes) {
            for (const RecordId &id : RecordsOfPage(change.id))
                state.before.insert_or_assign(id, present.at(id));
            state.wanted.insert_or_assign(change.id, WantedRecord(change).bytes);
        }
        return state;
    }

    bool saveSnapshot()
    {
        if (!job.options.undoSnapshot || chosen.empty())
            return true;
        SavedState state = stateOf(chosen);
        const QString journalName = QFileInfo(JournalName(job.fileName)).absoluteFilePath();
        state.journal = journal ? InDataFolder(journalName) : QString();
        addEarlierPart(state);
        const bool takesBack = !job.undoes.isEmpty();
        const QString name = SaveUndoSnapshot(state, takesBack ? SnapshotOf::TakeBack : SnapshotOf::Change);
        if (!name.isEmpty() && !takesBack)
            end.report.snapshot = name;
        if (!name.isEmpty() && journal)
            journal->snapshot(name);
        replaced = state;
        if (name.isEmpty())
            end.report.job.end = JobEnd::NothingDone;
        return !name.isEmpty() && journalSound();
    }

    /// What the earlier part has written is not what stood there before the job. Where somebody has changed it since, both
    /// snapshots stay.
    void addEarlierPart(SavedState &state)
    {
        if (before.is != SnapshotState::Sound || before.state.wanted.empty())
            return;
        bool all = true;
        for (const auto &[id, wanted] : before.state.wanted) {
            const auto now = present.find(id);
            const bool known = now != present.end() && before.state.before.contains(id);
            if (known && now->second == wanted) {
                state.before.insert_or_assign(id, before.state.before.at(id));
                state.wanted.emplace(id, wanted);
            }
            all = all && known && (now->second == wanted || now->second == before.state.before.at(id));
        }
        if (all)
            state.replaces = InDataFolder(earlier.snapshot);
    }

    void writePages()
    {
        const TellsPortLoss teller;
        const auto pages = ByPage(chosen);
        JobAmount amount(chosen.size(), SecondsOf(chosen, job.options.prove));
        for (const std::vector<RecordChange> &page : pages) {
            if (!JobGoesOn()) {
                end.report.job.end = WhyJobBrokeOff();
                return;
            }
            TheAsk().showProgress(QStringLiteral("Schreibe ") + RecordName(page.front().id));
            amount.show();
            amount.add(page.size(), SecondsOf(page, job.options.prove));
            if (!writePage(page, &page == &pages.back()))
                return;
        }
    }

    /// False when the job ends here. What a second handheld answers to the last page is noticed by nobody later.
    bool writePage(const std::vector<RecordChange> &page, bool isLast)
    {
        const int address = PageAddressOf(page.front().id);
        if (!RememberPage(stateOf(page), address))
            return diskFails();
        const WrittenPage written = WritePage(page, neighboursOf(page), job.options.prove);
        const bool untouched = IsUntouched(written.result.page);
        const bool sure =
            OnlyOneAnswers(isLast ? SecondAnswerSeconds : 0); // otherwise the proof may be the other one's
        bool proved = written.neighboursSound && sure;
        for (size_t i = 0; i < page.size(); ++i) {
            JobEntry &entry = entryOf(page.at(i).id);
            entry.state = written.states.at(i);
            if (entry.state == RecordState::Done && !sure)
                entry.state = RecordState::Doubtful;
            entry.outcome = written.result.outcome;
            proved = proved && entry.state == RecordState::Done;
            if (entry.state == RecordState::Done)
                noteDone(page.at(i));
        }
        if (!journalSound())
            return false;
        if (proved || untouched)
            ForgetPage(head.handheld, address);
        else
            addUnproved(page);
        return goesOnAfter(written.result);
    }

    [[nodiscard]] Neighbours neighboursOf(const std::vector<RecordChange> &page) const
    {
        Neighbours neighbours = stateOf(page).before;
        for (const RecordChange &change : page)
            neighbours.erase(change.id);
        return neighbours;
    }

    void noteDone(const RecordChange &change)
    {
        if (journal)
            journal->finished(change.id);
        if (const auto *loco = std::get_if<LocoRecord>(&change.wanted))
            NoteRecord(change.id.number, *loco);
    }

    bool goesOnAfter(const PageResult &result)
    {
        JobEnd &ended = end.report.job.end;
        if (result.ok() || (result.page == PageState::Differs && !result.outcome.brokenOff())) {
            if (TransferBrokenOff() && !IsSettled(end.report))
                ended = WhyJobBrokeOff();
            return !TransferBrokenOff();
        }
        ended = result.outcome.brokenOff() ? WhyJobBrokeOff() : JobEnd::NoAnswer;
        return false;
    }

    void addUnproved(const std::vector<RecordChange> &page)
    {
        for (const RecordChange &change : page) {
            for (const RecordId &id : RecordsOfPage(change.id)) {
                if (std::ranges::find(end.report.unproved, id) == end.report.unproved.end())
                    end.report.unproved.push_back(id);
            }
        }
    }

    bool journalSound() { return !journal || journal->sound() || diskFails(); }

    /// Always false.
    bool diskFails()
    {
        TheAsk().showBox(
            {QStringLiteral("Der Fortschritt kann nicht mehr gespeichert werden (ist der Datenträger voll?).\r"
                            "Der Auftrag hält hier an."),
                QStringLiteral("Fehler!"), BoxIcon::Critical});
        end.report.job.end = JobEnd::NothingDone;
        return false;
    }

    void finish()
    {
        end.end = end.report.job.end;
        const bool settled = IsSettled(end.report);
        if (settled && journal)
            journal->remove();
        if (settled)
            TidySnapshots(replaced);
        SettleForgottenPages();
        end.report.goesOn = !settled && journal.has_value();
    }

    const CarefulJob &job;
    JobFace &face;
    CarefulEnd end;
    Mending mending;
    JournalHead head;
    JournalContent earlier;
    LoadedSnapshot before; // of the earlier part
    bool journalIsThere = false;
    bool goesOn = false;
    std::vector<RecordChange> chosen;
    std::map<RecordId, QByteArray> present; // of all pages that are written
    std::map<RecordId, size_t> places;      // of the changes and of the report's entries
    std::optional<Journal> journal;
    SavedState replaced; // whose `replaces` goes when the job is complete
};

} // namespace

CarefulEnd RunCarefulJob(const CarefulJob &job, JobFace &face)
{
    return Flow(job, face).run();
}

CarefulEnd MendPages(JobFace &face, const QString &title)
{
    CarefulJob job;
    job.title = title;
    CarefulEnd end;
    if (Mending(job, face, end).run())
        end.is = CarefulEnd::Is::Written;
    return end;
}

Look LookAt(const std::vector<Step> &steps)
{
    std::map<RecordId, size_t> last; // of a record that is listed twice the last one counts
    for (size_t i = 0; i < steps.size(); ++i)
        last.insert_or_assign(steps.at(i).id, i);
    std::vector<RecordId> ids;
    std::vector<Step> once;
    for (size_t i = 0; i < steps.size(); ++i) {
        if (last.at(steps.at(i).id) != i)
            continue;
        ids.push_back(steps.at(i).id);
        once.push_back(steps.at(i));
    }
    const StoppableJob stoppable;
    Report read = ReadSurely(ids);
    if (read.end == JobEnd::Complete && StoppableJob::stopRequested())
        read.end = WhyJobBrokeOff(); // during the last record, which was finished
    return {read.end, ChangesOf(once, read)};
}

bool PagesWait(const QString &handheld)
{
    return !OpenPages(handheld).empty();
}

} // namespace hr::jobs
