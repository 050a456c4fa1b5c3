#include "jobs/careful_write.h"

#include "jobs/saved_before.h"
#include "link/open_link.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace
{

constexpr int WriteRepeats = 1; // of what reads back differently
constexpr int MostReads = 5;    // of a record without a sure answer

Plan ReadingPlan(const std::vector<RecordId> &ids)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString { return QStringLiteral("Lese ") + RecordName(step.id); },
        .patience = Patience::Quiet,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    for (const RecordId &id : ids)
        plan.steps.push_back({StepKind::Read, id, {}, {}});
    return plan;
}

bool IsUnsure(const JobEntry &entry)
{
    return entry.state == RecordState::Doubtful && !entry.outcome.ok();
}

/// Reads the records; those without a sure answer are read again before they are given up. When so many in a row had
/// none, nobody is there any more.
Report ReadSurely(const std::vector<RecordId> &ids)
{
    int unsureInRow = 0;
    const Watcher watcher{{}, [&](const JobEntry &entry) { unsureInRow = IsUnsure(entry) ? unsureInRow + 1 : 0; },
        [&] { return unsureInRow < MostReads; }};
    Report report = RunJob(ReadingPlan(ids), watcher);
    for (int repeat = 1; repeat < MostReads && report.end == JobEnd::Complete; ++repeat) {
        std::vector<RecordId> again;
        for (const JobEntry &entry : report.entries) {
            if (IsUnsure(entry))
                again.push_back(entry.step.id);
        }
        const Report read = RunJob(ReadingPlan(again), watcher);
        report.end = read.end;
        for (const JobEntry &entry : read.entries)
            *std::ranges::find(report.entries, entry.step.id, [](const JobEntry &old) { return old.step.id; }) =
                entry;
    }
    if (report.end == JobEnd::Stopped && unsureInRow >= MostReads)
        report.end = JobEnd::NoAnswer;
    return report;
}

/// Records that are written together: those of one page.
using Group = std::vector<RecordChange>;

std::vector<Group> GroupsOf(const std::vector<RecordChange> &changes)
{
    std::vector<Group> groups;
    std::map<int, size_t> groupOfPage;
    for (const RecordChange &change : changes) {
        const auto [found, isNew] = groupOfPage.emplace(PageAddressOf(change.id), groups.size());
        if (isNew)
            groups.emplace_back();
        groups.at(found->second).push_back(change);
    }
    return groups;
}

LocoBytes Beneath(const RecordChange &change)
{
    LocoBytes erased{};
    erased.fill(EmptyByte);
    return change.presentBytes.value_or(erased);
}

/// One job while it runs.
class Writer
{
public:
    Writer(const std::vector<RecordChange> &all, const CarefulWish &wanted, Journal *keeper, const EarlierWork &work)
        : changes(all), wish(wanted), journal(keeper), earlier(work)
    {
        for (const RecordChange &change : changes) {
            JobEntry entry{{StepKind::Write, change.id, change.wanted, {}}, RecordState::Untouched, {}, {}, {}};
            if (change.change == Change::Unchanged && wish.onlyChanges)
                entry.state = RecordState::Unchanged;
            if (change.change == Change::Nameless)
                entry.state = RecordState::Empty;
            places.emplace(change.id, report.entries.size());
            report.entries.push_back(std::move(entry));
        }
    }

    Report run()
    {
        std::vector<RecordChange> wanted = ToBeWritten(changes, wish.onlyChanges);
        std::erase_if(wanted, [](const RecordChange &change) { return change.change == Change::Unknown; });
        if (wish.saveBefore && !wanted.empty() && !save(wanted))
            return std::move(report);
        writeAll(wanted);
        TheAsk().hideProgress();
        return std::move(report);
    }

private:
    JobEntry &entryOf(const RecordId &id) { return report.entries.at(places.at(id)); }

    /// What stood there before: before the earlier part where that has touched the page.
    std::optional<RecordValue> knownValue(const RecordId &id) const
    {
        if (const auto saved = earlier.saved.find(id); saved != earlier.saved.end())
            return saved->second;
        const auto found = places.find(id);
        return found != places.end() ? changes.at(found->second).present : std::nullopt;
    }

    /// Whole pages. A page of which a record can't be read without a doubt can't be made good again: it is not written.
    bool save(std::vector<RecordChange> &wanted)
    {
        std::set<RecordId> ids;
        for (const auto &[id, value] : earlier.saved)
            ids.insert(id);
        for (const RecordChange &change : wanted) {
            for (const RecordId &id : RecordsOfPage(change.id))
                ids.insert(id);
        }
        std::vector<RecordId> unknown(ids.begin(), ids.end());
        std::erase_if(unknown, [this](const RecordId &id) { return knownValue(id).has_value(); });
        const Report read = ReadSurely(unknown);
        report.end = read.end;
        if (read.end != JobEnd::Complete)
            return false;
        QByteArray file;
        for (const RecordId &id : ids)
            file += packed(id, read);
        leaveOutDoubtfulPages(wanted, read);
        if (!saveNewerEdits(wanted))
            return false;
        const QString name = SaveBefore(file, wish.takesBack);
        if (name.isEmpty())
            report.end = JobEnd::NothingDone;
        else if (journal != nullptr)
            journal->savedBefore(name);
        if (name.isEmpty() || !journalSound())
            return false;
        if (!earlier.savedBefore.isEmpty())
            QFile::remove(earlier.savedBefore); // all of it is in the new one
        return true;
    }

    /// What was changed on a half written page since the earlier part is about to be overwritten: it gets a file of its own.
    bool saveNewerEdits(const std::vector<RecordChange> &wanted)
    {
        QByteArray newer;
        for (const RecordChange &change : wanted) {
            const auto saved = earlier.saved.find(change.id);
            const bool other = saved != earlier.saved.end() && change.present
                && !SameContent(*change.present, saved->second) && !SameContent(*change.present, change.wanted);
            newer += other ? PackRecord(change.id, *change.present) : QByteArray();
        }
        if (newer.isEmpty() || !SaveBefore(newer, true).isEmpty())
            return true;
        report.end = JobEnd::NothingDone;
        return false;
    }

    QByteArray packed(const RecordId &id, const Report &read) const
    {
        if (const auto known = knownValue(id))
            return PackRecord(id, *known);
        const auto entry =
            std::ranges::find(read.entries, id, [](const JobEntry &candidate) { return candidate.step.id; });
        if (entry->state == RecordState::Empty)
            return PackRecord(id, LocoRecord{.name = EmptyName()});
        return entry->state == RecordState::Done ? PackRecord(id, *entry->value) : QByteArray();
    }

    static void leaveOutDoubtfulPages(std::vector<RecordChange> &wanted, const Report &read)
    {
        for (const JobEntry &entry : read.entries) {
            if (entry.state != RecordState::Doubtful || entry.outcome.ok())
                continue; // what was read well and is not understood stays in the page that is loaded
            const int page = PageAddressOf(entry.step.id);
            std::erase_if(wanted, [page](const RecordChange &change) { return PageAddressOf(change.id) == page; });
        }
    }

    void writeAll(const std::vector<RecordChange> &wanted)
    {
        const StoppableJob stoppable;
        const TellsPortLoss teller;
        const double start = NowSeconds();
        size_t done = 0;
        for (const Group &group : GroupsOf(wanted)) {
            if (!JobGoesOn()) {
                report.end = WhyJobBrokeOff();
                return;
            }
            TheAsk().showProgress(QStringLiteral("Schreibe ") + RecordName(group.front().id));
            ShowJobAmount(done, wanted.size(), start);
            done += group.size();
            if (!writeGroup(group))
                return;
        }
    }

    /// False when the job ends here.
    bool writeGroup(const Group &group)
    {
        const int page = PageAddressOf(group.front().id);
        if (journal != nullptr)
            journal->pageBegins(page);
        if (!journalSound())
            return false;
        const PageResult result = programSurely(group);
        const Outcome &outcome = result.outcome;
        if (result.ok() || result.page == PageState::Differs) {
            noteInJournal(group, page);
            if (TransferBrokenOff() && !IsSettled(report))
                report.end = WhyJobBrokeOff();
            return journalSound() && !TransferBrokenOff();
        }
        report.end = outcome.brokenOff() ? WhyJobBrokeOff() : JobEnd::NoAnswer;
        return false;
    }

    PageResult programSurely(const Group &group)
    {
        PageResult result;
        for (int repeat = 0; repeat <= WriteRepeats; ++repeat) {
            result = program(group);
            if (repeat > 0 && IsUntouched(result.page))
                result.page = PageState::Differs; // it was programmed before, and did not read back as it should
            note(group, result);
            if (!result.ok() || !wish.verify || !readBackDiffers(group))
                break;
        }
        return result;
    }

    PageResult program(const Group &group)
    {
        const Patience patience = wish.verify ? Patience::Verified : Patience::Quiet;
        SpiImage image{};
        image.fill(EmptyByte); // bytes that nobody lays
        const RecordChange &first = group.front();
        if (!SharesPage(first.id.kind))
            return WriteRecord(image, first.id, first.wanted, patience);
        PageWrite page{PageAddressOf(first.id), true, {}};
        for (const RecordChange &change : group)
            page.parts.push_back(PartOf(change.id, change.wanted, Beneath(change)));
        return ProgramPage(image, page, patience);
    }

    void note(const Group &group, const PageResult &result)
    {
        for (const RecordChange &change : group) {
            JobEntry &entry = entryOf(change.id);
            entry.outcome = result.outcome;
            entry.state = StateOf(result.page);
        }
    }

    /// Reads each written record again. What differs, or can't be read, is noted.
    bool readBackDiffers(const Group &group)
    {
        bool differs = false;
        for (const RecordChange &change : group) {
            SpiImage image{};
            auto read = ReadRecord(
                image, change.id, [](int) {}, Patience::Quiet);
            for (int repeat = 1; repeat < MostReads && read.outcome.timedOut() && !TransferBrokenOff(); ++repeat)
                read = ReadRecord(
                    image, change.id, [](int) {}, Patience::Quiet);
            JobEntry &entry = entryOf(change.id);
            if (!read.ok()) {
                entry.state = RecordState::Doubtful;
                entry.outcome = read.outcome;
            } else if (!SameContent(read.value, change.wanted)) {
                entry.state = RecordState::Differs;
                differs = true;
            }
        }
        return differs;
    }

    /// A page whose records are not all proved stays open: an earlier part of the job is not believed about it.
    void noteInJournal(const Group &group, int page)
    {
        if (journal == nullptr)
            return;
        bool all = true;
        for (const RecordChange &change : group) {
            const bool proved = entryOf(change.id).state == RecordState::Done;
            all = all && proved;
            if (proved)
                journal->finished(change.id);
        }
        if (all)
            journal->pageEnds(page);
    }

    bool journalSound()
    {
        if (journal == nullptr || journal->sound())
            return true;
        TheAsk().showBox(
            {QStringLiteral("Der Fortschritt kann nicht mehr gespeichert werden (ist der Datenträger voll?).\r"
                            "Der Auftrag hält hier an."),
                QStringLiteral("Fehler!"), BoxIcon::Critical});
        report.end = JobEnd::NothingDone;
        return false;
    }

    const std::vector<RecordChange> &changes;
    const CarefulWish wish;
    Journal *journal;
    const EarlierWork &earlier;
    std::map<RecordId, size_t> places; // of the changes and of the report's entries
    Report report;
};

} // namespace

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
    const Report read = ReadSurely(ids);
    return {read.end, ChangesOf(once, read)};
}

Report WriteCarefully(
    const std::vector<RecordChange> &changes, const CarefulWish &wish, Journal *journal, const EarlierWork &earlier)
{
    const StoppableJob stoppable; // one for reading and writing: a stop between them counts
    return Writer(changes, wish, journal, earlier).run();
}

bool OpenJournal(Journal &journal, const JournalHead &head, const EarlierWork &earlier)
{
    if (earlier.finished.empty() && earlier.openPages.empty() && earlier.savedBefore.isEmpty())
        return journal.begin(head);
    if (!journal.goOn())
        return false;
    if (earlier.finished.empty())
        journal.beginsAnew();
    return true;
}

bool IsSettled(const Report &report)
{
    return report.end == JobEnd::Complete && std::ranges::all_of(report.entries, [](const JobEntry &entry) {
        return entry.state == RecordState::Done || entry.state == RecordState::Unchanged
            || entry.state == RecordState::Empty;
    });
}

EarlierWork EarlierWorkOf(const JournalContent &content)
{
    EarlierWork work{content.finished, content.openPages, content.savedBefore, {}};
    if (content.savedBefore.isEmpty())
        return work;
    std::vector<DdsRecord> records;
    const SavedState state = LoadSavedBefore(content.savedBefore, records);
    if (state == SavedState::Gone && !content.openPages.empty())
        TheAsk().showBox(
            {QStringLiteral("Die Datei %1 kann nicht gelesen werden.\rDie Nachbarn der Speicherseite, bei der "
                            "der Auftrag abbrach, können nicht\rwiederhergestellt werden. Bitte prüfen Sie sie.")
                    .arg(QDir::toNativeSeparators(content.savedBefore)),
                QStringLiteral("Achtung!"), BoxIcon::Critical});
    if (state == SavedState::TakenBack)
        return {};
    if (state == SavedState::Gone)
        return {{}, content.openPages, {}, {}};
    for (const DdsRecord &record : records) {
        if (content.touchedPages.contains(PageAddressOf(record.id)))
            work.saved.insert_or_assign(record.id, UnpackRecord(record));
    }
    return work;
}

Earlier EarlierPart(const QString &fileName, const JournalHead &head, JournalContent &content)
{
    const auto found = ReadJournal(fileName);
    if (!found)
        return Earlier::None;
    content = *found;
    if (content.head.job.isEmpty())
        return Earlier::Damaged;
    if (content.head.job != head.job)
        return Earlier::OtherJob;
    return content.head.handheld == head.handheld ? Earlier::Fits : Earlier::OtherHandheld;
}

QString EarlierFault(Earlier earlier, const QString &fileName)
{
    QString reason;
    if (earlier == Earlier::Damaged)
        reason = QStringLiteral("Er ist beschädigt.");
    else if (earlier == Earlier::OtherJob)
        reason = QStringLiteral("Er gehört zu einem anderen Auftrag, oder die Datei wurde seither geändert.");
    else if (earlier == Earlier::OtherHandheld)
        reason = QStringLiteral("Er gehört zu einem anderen Handregler.");
    if (reason.isEmpty())
        return {};
    return QStringLiteral("Der Fortschritt %1 passt nicht. %2")
        .arg(QDir::toNativeSeparators(JournalName(fileName)), reason);
}

namespace
{

/// On a page that may be destroyed a step is merged with what stood there before.
Step Settled(const Step &step, const EarlierWork &earlier)
{
    const auto saved = earlier.saved.find(step.id);
    if (step.kind != StepKind::Merge || saved == earlier.saved.end())
        return step;
    const auto *loco = std::get_if<LocoRecord>(&saved->second);
    if (loco != nullptr && IsEmptyName(loco->name))
        return {StepKind::Write, step.id, step.fillsEmpty ? step.value : saved->second, {}};
    return {StepKind::Write, step.id, step.merge(saved->second), {}};
}

} // namespace

std::vector<Step> StepsLeft(const std::vector<Step> &steps, const EarlierWork &earlier)
{
    const std::set<RecordId> finished(earlier.finished.begin(), earlier.finished.end());
    const auto isOpen = [&](const RecordId &id) { return earlier.openPages.contains(PageAddressOf(id)); };
    std::vector<Step> left;
    for (const auto &[id, value] : earlier.saved) {
        const bool ours = std::ranges::any_of(steps, [&](const Step &step) { return step.id == id; });
        if (isOpen(id) && !ours)
            left.push_back({StepKind::Write, id, value, {}});
    }
    for (const Step &step : steps) {
        if (isOpen(step.id))
            left.push_back(Settled(step, earlier));
        else if (!finished.contains(step.id))
            left.push_back(step);
    }
    return left;
}
