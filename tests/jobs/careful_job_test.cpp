// Jobs that lose nothing: what is written, saved before, proved, and made good after a stop at any moment.

#include "jobs/backup.h"
#include "jobs/careful_job.h"
#include "jobs/checked_lines.h"
#include "jobs/journal.h"
#include "jobs/open_page.h"
#include "jobs/saved_state.h"
#include "jobs/take_back.h"
#include "jobs/undo_snapshot.h"
#include "link/cadence.h"
#include "link/open_link.h"
#include "platform/disk.h"
#include "platform/files.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QSaveFile>

#include <random>

namespace hr::tests
{

/// Says yes to all questions but those listed, and notes them.
class ScriptedFace : public JobFace
{
public:
    [[nodiscard]] QString handheld() const override { return QStringLiteral("51201 1.2"); }
    [[nodiscard]] bool agrees(Topic topic, const BoxText &question, bool) override
    {
        asked.push_back(topic);
        questions += question.text;
        if (onQuestion)
            onQuestion();
        return !refused.contains(topic);
    }
    [[nodiscard]] Handheld handheldNow() override { return now; }

    [[nodiscard]] bool wasAsked(Topic topic) const { return std::ranges::count(asked, topic) > 0; }

    std::set<Topic> refused;
    std::vector<Topic> asked;
    QStringList questions;
    std::function<void()> onQuestion;
    Handheld now = Handheld::Same;
};

using Topic = JobFace::Topic;
using Is = CarefulEnd::Is;

/// A disk that fails at its n-th operation, and that loses what was not flushed when the power fails.
class FailingDisk : public Disk
{
public:
    int count = 0;
    int failsAt = 0;
    bool failed = false;
    std::function<void()> onFail; // what fails at the same time

    [[nodiscard]] bool write(QFileDevice &file, const QByteArray &bytes) override
    {
        touch(file.fileName());
        if (step())
            return Disk::write(file, bytes);
        file.write(bytes.left(bytes.size() / 2)); // as much as there was room for
        file.flush();
        return false;
    }
    [[nodiscard]] bool replace(QSaveFile &file) override
    {
        touch(file.fileName());
        if (step())
            return Disk::replace(file);
        file.cancelWriting();
        return false;
    }
    bool remove(const QString &path) override
    {
        touch(path);
        return step() && Disk::remove(path);
    }
    [[nodiscard]] bool flush(QFileDevice &file) override
    {
        if (step())
            durable[file.fileName()] = ReadWholeFile(file.fileName());
        return !failed;
    }
    [[nodiscard]] bool flushFolder(const QString &folder) override
    {
        for (auto &[path, content] : durable) {
            if (!failed && path.startsWith(folder + u'/'))
                content = ReadWholeFile(path);
        }
        return step();
    }

    void fail()
    {
        failed = true;
        if (onFail)
            onFail();
    }

    /// The power of the PC has failed: what was not flushed is gone, or half there, or there as NULs.
    void losePower(int dice)
    {
        for (const auto &[path, content] : durable) {
            const QByteArray now = ReadWholeFile(path).value_or(QByteArray());
            QByteArray left = content.value_or(QByteArray());
            if (dice % 3 != 0 && now.startsWith(left) && path.endsWith(u".fortschritt"))
                left += dice % 3 == 1 ? now.mid(left.size(), (now.size() - left.size()) / 2)
                                      : QByteArray(now.size() - left.size(), '\0');
            QFile::remove(path);
            QFile file(path);
            if ((content || !left.isEmpty()) && file.open(QIODevice::WriteOnly))
                file.write(left);
        }
    }

private:
    void touch(const QString &path)
    {
        if (!durable.contains(path))
            durable.emplace(path, ReadWholeFile(path));
    }
    bool step()
    {
        if (++count == failsAt)
            fail();
        return !failed;
    }

    std::map<QString, std::optional<QByteArray>> durable;
};

class CarefulJobs : public VirtualWorld
{
protected:
    static constexpr int Pages = 3; // of locos: addresses 1..23

    void SetUp() override
    {
        connectDirectly();
        events.limitSeconds = 1e9;
        layout().bus.keepLog = false;
        for (int n = 1; n < Pages * 8; ++n) {
            if (n % 5 != 0)
                flash().setBytes(LocoRecordAddress(n), recordBytes(n, 0));
        }
        original = flash().state.memory;
        for (int n = 1; n < Pages * 8; ++n)
            originals.emplace(n, stored(n));
    }

    /// Bytes of a sound record that differ with the seed; what nobody interprets is 0xFF, as a restore leaves it.
    static QByteArray recordBytes(int n, int seed)
    {
        LocoRecord record{FitLocoName(QStringLiteral("LOK %1").arg(n + 100 * seed)), {}, {}, n % 2, (n + seed) % 64};
        for (size_t f = 1; f < FunctionCount; ++f)
            record.symbols.at(f) = (n + seed * static_cast<int>(f)) % 256;
        LocoBytes beneath{};
        beneath.fill(EmptyByte);
        QByteArray bytes;
        for (const int byte : EncodeLoco(record, beneath))
            bytes.append(static_cast<char>(byte));
        return bytes;
    }

    static Step writeStep(int n, int seed)
    {
        LocoBytes bytes{};
        const QByteArray wanted = recordBytes(n, seed);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes.at(i) = static_cast<quint8>(wanted.at(static_cast<qsizetype>(i)));
        return {StepKind::Write, {RecordKind::Loco, n}, DecodeLoco(bytes), {}};
    }

    /// Loco records 2, 3, 9 and 22 get other data: three pages.
    static std::vector<Step> fourWrites()
    {
        return {writeStep(2, 1), writeStep(3, 1), writeStep(9, 1), writeStep(22, 1)};
    }

    LocoRecord stored(int n)
    {
        const QByteArray bytes = flashBytes(LocoRecordAddress(n), LocoRecordSize);
        LocoBytes values{};
        for (size_t i = 0; i < values.size(); ++i)
            values.at(i) = static_cast<quint8>(bytes.at(static_cast<qsizetype>(i)));
        return DecodeLoco(values);
    }

    /// True when each record is the wanted one of the steps, or what it was.
    bool flashIs(const std::vector<Step> &steps)
    {
        for (int n = 1; n < Pages * 8; ++n) {
            RecordValue wanted = originals.at(n);
            for (const Step &step : steps) {
                if (step.id.number == n)
                    wanted = step.value;
            }
            if (!SameContent(stored(n), wanted))
                return false;
        }
        return true;
    }

    /// True when each record is the wanted one or what it was.
    bool eachIsOldOrNew(const std::vector<Step> &steps)
    {
        for (int n = 1; n < Pages * 8; ++n) {
            const bool isNew = std::ranges::any_of(
                steps, [&](const Step &step) { return step.id.number == n && SameContent(stored(n), step.value); });
            if (!isNew && !SameContent(stored(n), originals.at(n)))
                return false;
        }
        return true;
    }

    QString file() { return folder.filePath(QStringLiteral("a.dds")); }
    JournalHead head() { return {QStringLiteral("schreiben x"), QStringLiteral("51201 1.2")}; }

    CarefulJob jobOf(const std::vector<Step> &steps, const WriteOptions &options = {})
    {
        CarefulJob job;
        job.command = QStringLiteral("schreiben a.dds");
        job.fileName = file();
        job.about = "x";
        job.steps = steps;
        job.options = options;
        return job;
    }

    CarefulReport run(const CarefulJob &job)
    {
        face.asked.clear();
        CarefulEnd end = RunCarefulJob(job, face);
        last = end.is;
        if (end.is != Is::Written)
            end.report.job.end = end.end;
        return end.report;
    }
    CarefulReport run(const std::vector<Step> &steps, const WriteOptions &options = {})
    {
        return run(jobOf(steps, options));
    }

    /// A job of another command, beside no file.
    CarefulReport runOther(const std::vector<Step> &steps)
    {
        CarefulJob job = jobOf(steps);
        job.fileName.clear();
        return run(job);
    }

    void takeBack()
    {
        const auto offer = OfferTakeBack();
        ASSERT_TRUE(offer.has_value());
        CarefulJob job = jobOf(offer->steps);
        job.fileName.clear();
        job.undoes = offer->fileName;
        TakeBackEnded(*offer, run(job));
    }

    static SavedState lastSnapshot() { return LoadUndoSnapshot(UndoSnapshots().value(0)).state; }

    static bool pagesWait() { return PagesWait(QStringLiteral("51201 1.2")); }

    QByteArray recordInFlash(int n) { return flashBytes(LocoRecordAddress(n), LocoRecordSize); }

    ScriptedFace face;
    Is last = Is::Written;

    void reconnect()
    {
        layout().faults.set({});
        handheld().restorePower();
        port.replug();
        ResetRunControl();
        ResetOpenLink();
        ClosePort();
        connectDirectly();
    }

    /// From now on the handheld hears nothing.
    void deafen() { layout().faults.faults.missedRequest.probability = 1; }

    void when(const std::function<bool()> &it, const std::function<void()> &what)
    {
        events.after(2'000, [this, it, what] { it() ? what() : when(it, what); });
    }
    void whenProgress(const QString &text, const std::function<void()> &what)
    {
        when([this, text] { return user.progress.endsWith(text); }, what);
    }
    /// When the chip has executed an opcode so often from now on.
    void whenExecuted(int opcode, int more, const std::function<void()> &what)
    {
        const int count = executed(opcode) + more;
        when([this, opcode, count] { return executed(opcode) >= count; }, what);
    }

    /// What the handheld and the disk hold.
    struct World {
        std::vector<quint8> memory;
        QMap<QString, QByteArray> files;
    };

    QStringList allFiles()
    {
        QStringList names;
        for (const QString &path : {folder.path(), folder.filePath(QStringLiteral("konf/Sicherungen"))}) {
            for (const QString &name : QDir(path).entryList(QDir::Files | QDir::Hidden))
                names += path + u'/' + name;
        }
        return names;
    }

    World world()
    {
        World now{flash().state.memory, {}};
        for (const QString &name : allFiles())
            now.files.insert(name, *ReadWholeFile(name));
        return now;
    }

    /// The program begins anew in that world.
    void enter(const World &wanted)
    {
        for (const QString &name : allFiles())
            QFile::remove(name);
        for (const auto &[name, content] : wanted.files.asKeyValueRange())
            ASSERT_TRUE(MakeFolder(QFileInfo(name).path()) && ReplaceFile(name, content));
        flash().state.memory = wanted.memory;
        restart();
        ChooseCadence(Cadence::Events);
    }

    /// All that a journal can change in a job.
    QByteArray whatIsReadOf(const QByteArray &bytes)
    {
        JournalContent content;
        QByteArray key(1, static_cast<char>(EarlierPart(file(), head(), content)));
        key += (content.head.job + u'|' + content.head.handheld + u'|' + content.snapshot).toUtf8();
        key += content.begun.toString(Qt::ISODate).toUtf8() + (content.otherVersion ? '2' : '1');
        for (const auto &list : {content.finished, content.empty,
                 std::vector<RecordId>(content.records.begin(), content.records.end())}) {
            key += '|';
            for (const RecordId &id : list)
                key += IdText(id).toUtf8() + ' ';
        }
        return key + QByteArray::number(content.read.size()) + (bytes.endsWith('\n') ? '\n' : '-');
    }

    /// As after a kill: nothing of this program is left but what is on the disk.
    void restart()
    {
        reconnect();
        events.run(10);
    }

    std::vector<quint8> original;
    std::map<int, LocoRecord> originals;
};

TEST_F(CarefulJobs, OnlyChangesAreWrittenAPageAtATimeAndProved)
{
    std::vector<Step> all;
    for (int n = 1; n < Pages * 8; ++n) {
        if (n % 5 != 0)
            all.push_back(writeStep(n, 0));
    }
    CarefulReport report = run(all);
    EXPECT_EQ(IdsOf(report.job, RecordState::Unchanged).size(), all.size());
    EXPECT_FALSE(face.wasAsked(Topic::Write)) << "nothing is written";
    EXPECT_EQ(executed(0x83), 0);
    EXPECT_TRUE(UndoSnapshots().isEmpty());
    all.at(2) = writeStep(3, 1);
    face.refused = {Topic::Write};
    run(all);
    EXPECT_EQ(last, Is::Refused);
    EXPECT_EQ(flash().state.memory, original);
    face.refused.clear();
    report = run(all);
    EXPECT_EQ(IdsOf(report.job, RecordState::Done), (std::vector<RecordId>{{RecordKind::Loco, 3}}));
    EXPECT_EQ(executed(0x83), 1);
    EXPECT_TRUE(flashIs({writeStep(3, 1)}));
    EXPECT_EQ(lastSnapshot().before.size(), 7U) << "the whole page, 1 to 7, the empty one too";
    EXPECT_EQ(lastSnapshot().wanted.size(), 1U);
    // All 23 in full: one program a page.
    run(all, {true, true, false});
    EXPECT_EQ(executed(0x83), 1 + Pages);
    EXPECT_EQ(UndoSnapshots().size(), 1);
    EXPECT_TRUE(flashIs({writeStep(3, 1)}));
    EXPECT_FALSE(pagesWait());
}

/// What is said of a page, and whether it stays remembered.
TEST_F(CarefulJobs, ThePageResultIsSaidAsItIs)
{
    struct Row {
        const char *what;
        std::function<void(sim::Faults &)> strikes;
        RecordState state;
        bool done;
        bool waits;
    };
    const auto always = [](sim::Fault sim::Faults::*fault) {
        return [fault](sim::Faults &faults) { (faults.*fault).probability = 1; };
    };
    const Row rows[] = {{"one program not done", [](sim::Faults &faults) { faults.skippedProgram.nth = 1; },
                            RecordState::Done, true, false},
        {"one load not done", [](sim::Faults &faults) { faults.skippedLoad.nth = 1; }, RecordState::Done, true,
            false},
        {"no load done", always(&sim::Faults::skippedLoad), RecordState::Untouched, false, false},
        {"no program done", always(&sim::Faults::skippedProgram), RecordState::Differs, false, true},
        {"power cut", [](sim::Faults &faults) { faults.powerCut.nth = 1; }, RecordState::Doubtful, false, true},
        {"done once and then never answered",
            [this](sim::Faults &faults) {
                faults.skippedProgram.nth = 1;
                events.after(10'000, [this] { afterNextProgram([this] { handheld().cutPower(events.nowUs); }); });
            },
            RecordState::Doubtful, false, true},
        {"a neighbour is another one behind the chip's back",
            [this](sim::Faults &) {
                whenExecuted(0x60, 2, [this] { flash().setBytes(LocoRecordAddress(12), recordBytes(12, 5)); });
            },
            RecordState::Done, true, false},
        {"a neighbour is destroyed behind the chip's back, and again",
            [this](sim::Faults &) {
                for (const int compares : {2, 4})
                    whenExecuted(0x60, compares,
                        [this] { flash().setBytes(LocoRecordAddress(12) + 9, QByteArray(30, '\xFF')); });
            },
            RecordState::Done, false, true},
        {"nothing loaded",
            [this](sim::Faults &) { whenProgress(QStringLiteral("Schreibe Lok 11"), [this] { deafen(); }); },
            RecordState::Untouched, false, false},
        {"other content than the chip says, and then never loaded again",
            [this](sim::Faults &) {
                whenExecuted(0x60, 2, [this] { flash().setBytes(LocoRecordAddress(11), recordBytes(11, 5)); });
                whenExecuted(0x53, 2, [this] { deafen(); });
            },
            RecordState::Differs, false, true}};
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        flash().state.memory = original;
        face.onQuestion = [&] {
            sim::Faults faults;
            row.strikes(faults);
            layout().faults.set(faults);
        };
        const CarefulReport report = run({writeStep(11, 1)});
        face.onQuestion = nullptr;
        EXPECT_EQ(report.job.entries.front().state, row.state);
        EXPECT_EQ(flashIs({writeStep(11, 1)}), row.done);
        EXPECT_EQ(pagesWait(), row.waits);
        EXPECT_EQ(report.unproved.size(), row.waits ? 8U : 0U) << "the neighbours too";
        EXPECT_EQ(QFile::exists(JournalName(file())), !row.done);
        if (!row.done && row.state != RecordState::Done) {
            EXPECT_TRUE(ReadJournal(file())->finished.empty());
        }
        EXPECT_EQ(IsSettled(report), row.done);
        const Step step = writeStep(11, 1);
        const auto shown = AfterWriting({{step.id, Change::Changed, step.value, originals.at(11), {}, {}}}, report);
        const Change unknown = row.state == RecordState::Untouched ? Change::Changed : Change::Unknown;
        EXPECT_EQ(shown.front().change, row.state == RecordState::Done ? Change::Unchanged : unknown);
        restart();
        run({writeStep(11, 1)});
        EXPECT_TRUE(flashIs({writeStep(11, 1)}));
        EXPECT_FALSE(pagesWait());
        user.progress.clear();
    }
}

TEST_F(CarefulJobs, APageWithAnUnreadableNeighbourIsNotWritten)
{
    const auto timer = events.every(5, [this] {
        const bool deaf = user.progress.endsWith(QStringLiteral("Lese Lok 12"));
        layout().faults.faults.missedRequest.probability = deaf ? 1 : 0;
    });
    const CarefulReport report = run({writeStep(11, 1), writeStep(22, 1)});
    events.stop(timer);
    EXPECT_EQ(report.unreadable, (std::vector<RecordId>{{RecordKind::Loco, 11}}));
    EXPECT_TRUE(flashIs({writeStep(22, 1)}));
}

TEST_F(CarefulJobs, APageThatCannotBeMadeGoodIsLeftAlone)
{
    user.acceptAnyBox();
    const std::vector<Step> wanted{writeStep(11, 1), writeStep(14, 1), writeStep(22, 1)};
    strike(&sim::Faults::powerCut, 1);
    run({writeStep(11, 1), writeStep(14, 1)});
    restart();
    const QByteArray destroyed = flashBytes(512, 512);
    user.progress.clear();
    const auto timer = events.every(5, [this] {
        const bool deaf = user.progress.endsWith(QStringLiteral("Lese Lok 15")) && !face.wasAsked(Topic::WithoutPage);
        layout().faults.faults.missedRequest.probability = deaf ? 1 : 0;
    });
    const CarefulReport report = runOther(wanted);
    events.stop(timer);
    EXPECT_TRUE(face.wasAsked(Topic::WithoutPage));
    EXPECT_EQ(flashBytes(512, 512), destroyed);
    EXPECT_EQ(recordInFlash(22), recordBytes(22, 1)) << "the rest is written";
    EXPECT_EQ(report.unproved.size(), 8U);
    EXPECT_TRUE(pagesWait());
    runOther(wanted);
    EXPECT_TRUE(flashIs(wanted));
    EXPECT_FALSE(pagesWait());
}

/// What is remembered of a page is all that is left of it: it goes when the page is surely good, or on demand.
TEST_F(CarefulJobs, ARememberedPageIsNotForgottenOnASuspicion)
{
    strike(&sim::Faults::powerCut, 1);
    run({writeStep(11, 1)});
    const World cut = world();
    const QString page = cut.files.keys().filter(QStringLiteral(".offen")).value(0);
    ASSERT_FALSE(page.isEmpty());
    enter(cut); // another handheld of the same type
    for (int n = 8; n < 16; ++n)
        flash().setBytes(LocoRecordAddress(n), recordBytes(n, 9));
    const auto others = flash().state.memory;
    face.refused = {Topic::DropPage};
    runOther({writeStep(22, 1)});
    EXPECT_EQ(last, Is::Refused);
    EXPECT_EQ(flash().state.memory, others);
    flash().state.memory = cut.memory;
    runOther({writeStep(22, 1)});
    EXPECT_TRUE(flashIs({writeStep(11, 1), writeStep(22, 1)})) << "back at the first one the page is made good";
    EXPECT_FALSE(pagesWait());
    // Of a spoilt file the sound part is put back; what else the page held is asked about.
    enter(cut);
    QByteArray spoilt = cut.files.value(page);
    const qsizetype line = spoilt.indexOf("war 1 12 ");
    ASSERT_GT(line, 0);
    spoilt[line + 20] = 'x';
    ASSERT_TRUE(ReplaceFile(page, spoilt));
    runOther({writeStep(22, 1)});
    EXPECT_EQ(last, Is::Refused);
    EXPECT_TRUE(SameContent(stored(13), originals.at(13)));
    EXPECT_FALSE(SameContent(stored(12), originals.at(12)));
    EXPECT_TRUE(face.questions.constLast().contains(QStringLiteral("ist beschädigt")));
    EXPECT_TRUE(pagesWait());
}

TEST_F(CarefulJobs, AnotherHandheldAfterTheQuestionGetsNothing)
{
    struct Row {
        JobFace::Handheld now;
        int changed; // record that is another one there
        bool written;
    };
    for (const Row &row : {Row{JobFace::Handheld::Gone, 0, false}, {JobFace::Handheld::Again, 0, true},
             {JobFace::Handheld::Again, 11, false}}) {
        flash().state.memory = original;
        user.acceptAnyBox();
        face.onQuestion = [&] {
            face.now = row.now;
            if (row.changed != 0)
                flash().setBytes(LocoRecordAddress(row.changed), recordBytes(row.changed, 3));
        };
        const auto before = executed(0x83);
        run({writeStep(11, 1)});
        EXPECT_EQ(executed(0x83) > before, row.written);
        EXPECT_EQ(last == Is::Written, row.written);
        face.now = JobFace::Handheld::Same;
    }
}

/// The disk is full, or the power of PC and handheld fails, at the n-th operation for every n: what comes next finds its way.
TEST_F(CarefulJobs, WhateverTheDiskDoesNothingIsLost)
{
    user.acceptAnyBox();
    enum Failure { Full, Power, PowerInPage, Renamed };
    const QString folderName = folder.filePath(QStringLiteral("konf/Sicherungen"));
    int failures = 0;
    for (const Failure failure : {Full, Power, PowerInPage, Renamed}) {
        bool failed = true;
        for (int n = 1; failed; ++n) {
            SCOPED_TRACE(testing::Message() << failure << " at " << n);
            flash().state.memory = original;
            restart();
            ChooseCadence(Cadence::Events);
            QFile::remove(JournalName(file()));
            QDir(folderName).removeRecursively();
            FailingDisk disk;
            const auto running = std::make_shared<bool>(true);
            if (failure == PowerInPage) { // of PC and handheld, in the middle of a page program
                const int page = (n + 1) / 2;
                strike(&sim::Faults::powerCut, page);
                const int programs = executed(0x83) + page;
                when([this, running, programs] { return !*running || executed(0x83) >= programs; },
                    [&disk, running] {
                        if (!*running)
                            return;
                        disk.fail();
                        RequestEnd();
                    });
            } else {
                disk.failsAt = n;
            }
            disk.onFail = [&] {
                if (failure == Renamed)
                    QDir().rename(folderName, folderName + u'x');
            };
            InstallDisk(&disk);
            const CarefulReport report = run(fourWrites());
            *running = false;
            InstallDisk(nullptr);
            failed = disk.failed;
            EXPECT_TRUE(last != Is::Written || !failed || !IsSettled(report) || flashIs(fourWrites()));
            ASSERT_TRUE(failure == PowerInPage || eachIsOldOrNew(fourWrites()));
            QDir().mkpath(folderName);
            for (const QString &name : QDir(folderName + u'x').entryList(QDir::Files)) // its name comes back
                QFile::rename(folderName + u"x/" + name, folderName + u'/' + name);
            QDir(folderName + u'x').removeRecursively();
            failures += failed ? 1 : 0;
            const World broken = world();
            const bool losesPower = failure == Power || failure == PowerInPage;
            for (int left = 0; left < (losesPower ? 3 : 1); ++left) {
                enter(broken);
                if (losesPower)
                    disk.losePower(left);
                const World found = world();
                for (const bool takesBack : {true, false}) {
                    SCOPED_TRACE(testing::Message() << "left " << left << (takesBack ? ", taken back" : ", gone on"));
                    enter(found);
                    if (!takesBack)
                        run(fourWrites());
                    else if (!UndoSnapshots().isEmpty())
                        takeBack();
                    ASSERT_TRUE(takesBack ? flash().state.memory == original : flashIs(fourWrites()));
                    EXPECT_FALSE(pagesWait());
                }
            }
        }
    }
    EXPECT_GT(failures, 60);
}

/// A disk that is full for a moment.
class FullDisk : public Disk
{
public:
    [[nodiscard]] bool write(QFileDevice &file, const QByteArray &bytes) override
    {
        static_cast<void>(Disk::write(file, bytes.left(bytes.size() / 2)));
        return false;
    }
};

TEST_F(CarefulJobs, AFileIsReplacedAsAWholeOrNotAtAll)
{
    const QString name = folder.filePath(QStringLiteral("x.dds"));
    ASSERT_TRUE(ReplaceFile(name, "alt"));
    FullDisk full;
    InstallDisk(&full);
    EXPECT_FALSE(ReplaceFile(name, "neuer Inhalt"));
    InstallDisk(nullptr);
    class Unflushed : public Disk
    {
        bool flush(QFileDevice &) override { return false; }
    } unflushed; // as when only then there is no room
    InstallDisk(&unflushed);
    EXPECT_FALSE(ReplaceFile(name, "neuer Inhalt"));
    InstallDisk(nullptr);
    EXPECT_EQ(*ReadWholeFile(name), "alt");
}

/// A journal that was cut at any byte, or of which any bit has changed, after a power cut in a page. All of them are read; a job
/// runs on each that reads differently.
TEST_F(CarefulJobs, NoJournalMakesAJobForgetARecord)
{
    user.acceptAnyBox();
    strike(&sim::Faults::powerCut, 2);
    run(fourWrites());
    const World broken = world();
    const QByteArray journal = broken.files.value(JournalName(file()));
    ASSERT_EQ(ReadJournal(file())->finished.size(), 2U);
    std::set<QByteArray> seen;
    const auto examine = [&](const QByteArray &spoilt, const std::string &how) {
        SCOPED_TRACE(how);
        QFile beside(JournalName(file()));
        ASSERT_TRUE(beside.open(QIODevice::WriteOnly) && beside.write(spoilt) == spoilt.size());
        beside.close();
        if (!seen.insert(whatIsReadOf(spoilt)).second)
            return;
        for (const bool takesBack : {false, true}) {
            enter(broken);
            ASSERT_TRUE(ReplaceFile(JournalName(file()), spoilt));
            CarefulJob job = jobOf(fourWrites());
            job.resume = Resume::Wanted;
            user.boxes.clear();
            if (takesBack)
                takeBack();
            else
                run(job);
            if (takesBack) {
                ASSERT_EQ(flash().state.memory, original);
            } else if (last
                != Is::Written) { // it cannot be gone on with: told, and nothing was written but the page made good
                ASSERT_FALSE(user.boxes.isEmpty());
                run(fourWrites());
            }
            ASSERT_TRUE(takesBack || flashIs(fourWrites()));
            ASSERT_FALSE(pagesWait());
        }
    };
    for (qsizetype i = 0; i < journal.size() && !HasFatalFailure(); ++i) {
        examine(journal.left(i), "cut at " + std::to_string(i));
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray flipped = journal;
            flipped[i] = static_cast<char>(flipped.at(i) ^ 1 << bit);
            examine(flipped, "bit " + std::to_string(i * 8 + bit));
        }
    }
    EXPECT_GT(seen.size(), 10U);
}

TEST_F(CarefulJobs, WhatStoodThereComesBackToTheByte)
{
    user.acceptAnyBox();
    QByteArray strange = recordBytes(10, 0);
    strange[23] = '\x12'; // nobody interprets it
    strange[4] = '\xE7';  // no character of the handheld
    flash().setBytes(LocoRecordAddress(9), strange);
    flash().setBytes(LocoRecordAddress(11), strange);
    flash().setBytes(StartImageAddress, QByteArray(262, '\x2A'));
    const auto before = flash().state.memory;
    const Step image{StepKind::Write, {RecordKind::StartImage, 0}, EmptyStartPicture(), {}};
    strike(&sim::Faults::powerCut, 3); // the page of 22
    EXPECT_EQ(run({image, writeStep(9, 1), writeStep(22, 1)}).job.end, JobEnd::NoAnswer);
    restart();
    takeBack();
    EXPECT_EQ(flash().state.memory, before);
    user.boxes.clear();
    EXPECT_FALSE(OfferTakeBack().has_value());
    EXPECT_EQ(user.boxes.constLast(), QStringLiteral(": Es gibt nichts zurückzunehmen."));
}

TEST_F(CarefulJobs, WhatWasEditedSinceStays)
{
    run(fourWrites());
    flash().setBytes(LocoRecordAddress(9), recordBytes(9, 7));
    flash().setBytes(LocoRecordAddress(21), recordBytes(21, 7)); // a neighbour
    const auto offer = OfferTakeBack();
    CarefulJob job = jobOf(offer->steps);
    job.fileName.clear();
    job.undoes = offer->fileName;
    const CarefulReport report = run(job);
    EXPECT_EQ(report.edited, (std::vector<RecordId>{{RecordKind::Loco, 9}}));
    EXPECT_EQ(report.job.entries.size(), 4U) << "what the change was about";
    EXPECT_TRUE(flashIs({writeStep(9, 7), writeStep(21, 7)}));
    job.options.writeAll = true;
    run(job);
    EXPECT_TRUE(flashIs({writeStep(21, 7)}));
    // An empty handheld of the same name has not lost them by a power cut.
    std::ranges::fill(flash().state.memory, quint8{0xFF});
    const auto empty = flash().state.memory;
    job.options.writeAll = false;
    EXPECT_EQ(run(job).edited.size(), 4U);
    EXPECT_EQ(flash().state.memory, empty);
}

TEST_F(CarefulJobs, SnapshotsAreOrderedByNumberAndTheLastTwentyStay)
{
    SavedState state{QStringLiteral("51201 1.2"), {}, {}, {}, {}, {}, {}};
    state.before.emplace(RecordId{RecordKind::Loco, 3}, recordBytes(3, 0));
    const QString first = SaveUndoSnapshot(state, SnapshotOf::Change);
    events.nowUs -= 500'000; // the clock is set back
    for (int i = 0; i < 25; ++i) {
        if (i % 8 == 0) {
            EXPECT_FALSE(SaveUndoSnapshot(state, SnapshotOf::TakeBack).isEmpty());
        }
        const QString name = SaveUndoSnapshot(state, SnapshotOf::Change);
        EXPECT_EQ(UndoSnapshots().constFirst(), name);
    }
    EXPECT_TRUE(UndoSnapshots().contains(first)) << "no job is complete";
    TidySnapshots({});
    EXPECT_EQ(UndoSnapshots().size(), MostUndoSnapshots);
    EXPECT_FALSE(UndoSnapshots().contains(first));
    // Every bit of a file counts: a spoilt one is never taken for sound, and keeps its name.
    const QString name = UndoSnapshots().constFirst();
    const QByteArray whole = *ReadWholeFile(name);
    for (qsizetype bit = 0; bit < whole.size() * 8; ++bit) {
        QByteArray spoilt = whole;
        spoilt[bit / 8] = static_cast<char>(spoilt.at(bit / 8) ^ 1 << bit % 8);
        const ReadState read = ReadSavedState(spoilt);
        ASSERT_FALSE(read.sound) << bit;
        for (const auto &[id, bytes] : read.state.before)
            ASSERT_EQ(bytes, recordBytes(3, 0));
    }
    for (qsizetype size = 0; size < whole.size(); ++size)
        ASSERT_FALSE(ReadSavedState(whole.left(size)).sound);
    // The sound part of a spoilt one is taken back only on demand.
    ASSERT_TRUE(ReplaceFile(name, whole.left(whole.size() - 3)));
    user.expect(QStringLiteral("Die Datei %1 ist beschädigt.\rUnversehrt darin: 1 Datensatz.\r"
                               "Soll nur dieses zurückgenommen werden?")
                    .arg(QDir::toNativeSeparators(name)),
        {}, QStringLiteral("Nein"));
    EXPECT_FALSE(OfferTakeBack().has_value());
    EXPECT_FALSE(user.defaultYes);
    ASSERT_TRUE(ReplaceFile(name, CheckedLine(QStringLiteral("handregler-vorher 9"))));
    user.acceptAnyBox();
    user.boxes.clear();
    EXPECT_FALSE(OfferTakeBack().has_value());
    EXPECT_TRUE(user.boxes.constLast().contains(QStringLiteral("von einer anderen Version"))) << "it is not damaged";
    // One that an open journal names stays, however old it is.
    state.journal = QStringLiteral("offen.fortschritt");
    ASSERT_TRUE(ReplaceFile(folder.filePath(state.journal), "x"));
    const QString needed = SaveUndoSnapshot(state, SnapshotOf::Change);
    state.journal.clear();
    for (int i = 0; i < 25; ++i)
        EXPECT_FALSE(SaveUndoSnapshot(state, SnapshotOf::Change).isEmpty());
    TidySnapshots({});
    EXPECT_TRUE(UndoSnapshots().contains(needed));
}

/// Where the program is called and how its folders are called is of no importance.
TEST_F(CarefulJobs, NamesOfFoldersDoNotMatter)
{
    const QString data = folder.filePath(QStringLiteral("alt-vorher"));
    const QString lists = folder.filePath(QStringLiteral("listen"));
    ASSERT_TRUE(QDir().mkpath(data + QStringLiteral("/konf")) && QDir().mkpath(lists));
    const QString dataBefore = DataFolder();
    const QString before = QDir::currentPath();
    SetDataFolder(data);
    QDir::setCurrent(lists);
    CarefulJob job = jobOf(fourWrites());
    job.fileName = QStringLiteral("a.dds");
    strike(&sim::Faults::skippedProgram, 1);
    layout().faults.faults.skippedProgram.probability = 1;
    EXPECT_FALSE(IsSettled(run(job)));
    QDir::setCurrent(before);
    EXPECT_TRUE(FileExists(FromDataFolder(lastSnapshot().journal))) << lastSnapshot().journal.toStdString();
    restart();
    takeBack();
    EXPECT_EQ(UndoSnapshots(), QStringList()) << "it was taken back";
    SetDataFolder(dataBefore);
}

TEST_F(CarefulJobs, AJournalThatDoesNotFitIsRefused)
{
    JournalContent content;
    {
        Journal journal(file());
        ASSERT_TRUE(
            journal.begin(head(), {{RecordKind::Loco, 3}, {RecordKind::Loco, 4}, {RecordKind::RouteTable, 0}}));
        journal.finished({RecordKind::Loco, 3});
        Journal second(file());
        user.acceptAnyBox();
        EXPECT_FALSE(second.goOn()) << "another program has it";
        EXPECT_EQ(user.boxes.size(), 1);
    }
    EXPECT_EQ(EarlierPart(file(), head(), content), Earlier::Fits);
    EXPECT_EQ(content.records.size(), 3U);
    EXPECT_EQ(EarlierPart(file(), {QStringLiteral("schreiben y"), head().handheld}, content), Earlier::OtherJob);
    EXPECT_EQ(EarlierPart(file(), {head().job, QStringLiteral("51202 1.2")}, content), Earlier::OtherHandheld);
    const QByteArray whole = *ReadWholeFile(JournalName(file()));
    for (const QByteArray &more : {QByteArray("fertig 1 1"), QByteArray("fertig 1 0\n"), QByteArray("unsinn\n")}) {
        ASSERT_TRUE(ReplaceFile(JournalName(file()), whole + more)); // killed in a line, or spoilt
        EXPECT_EQ(EarlierPart(file(), head(), content), Earlier::Fits);
        EXPECT_EQ(content.finished.size(), 1U);
        Journal journal(file());
        ASSERT_TRUE(journal.goOn());
        journal.finished({RecordKind::Loco, 4});
        EXPECT_EQ(EarlierPart(file(), head(), content), Earlier::Fits);
        EXPECT_EQ(content.finished.size(), 2U) << "nothing is appended to half a line";
    }
    for (const auto &[bad, what] :
        {std::pair(QByteArray("daten 00\n"), Earlier::Damaged), {QByteArray(), Earlier::Damaged},
            {QByteArray("handregler-fortschritt 1\nauftrag x\nhandregler y\n"), Earlier::OtherVersion}}) {
        ASSERT_TRUE(ReplaceFile(JournalName(file()), bad));
        EXPECT_EQ(EarlierPart(file(), head(), content), what);
    }
    QDir().mkpath(folder.filePath(QStringLiteral("b.dds.fortschritt"))); // can't be written
    Journal blocked(folder.filePath(QStringLiteral("b.dds")));
    EXPECT_FALSE(blocked.begin(head()));
    // Beside a file on a read-only disk nothing can lie; files of one name have journals of their own.
    for (const char *readOnly : {"/proc/a.dds", "/proc/1/a.dds"}) {
        const QString list = QString::fromLatin1(readOnly);
        EXPECT_EQ(EarlierPart(list, head(), content), Earlier::None);
        {
            Journal journal(list);
            ASSERT_TRUE(journal.begin(head()));
            EXPECT_EQ(EarlierPart(list, head(), content), Earlier::Fits);
        }
        EXPECT_TRUE(JournalName(list).startsWith(folder.filePath(QStringLiteral("konf/Sicherungen/"))));
    }
}

TEST_F(CarefulJobs, ABackupThatWasBrokenOffGoesOnAndEqualsAnUndisturbedOne)
{
    user.acceptAnyBox();
    BackupSelection selection;
    selection.lokSuche = true;
    selection.lokSucheStop = 30;
    selection.numbered.at(FktSymbolList) = {true, false, QStringLiteral("0-3")};
    const QString whole = folder.filePath(QStringLiteral("whole.dds"));
    ASSERT_TRUE(Backup(whole, selection).written);
    for (int i = 0; i < 20; ++i) {
        ChooseCadence(i % 2 == 0 ? Cadence::Events : Cadence::Ticks);
        BackupMemory memory{QStringLiteral("51201 1.2"), false};
        events.after(200'000 * (i + 1), [this, i] { i % 3 == 0 ? port.hangUp() : RequestEnd(); });
        const BackupOutcome broken = Backup(file(), selection, memory);
        EXPECT_FALSE(broken.written);
        reconnect();
        if (broken.kept > 0) {
            const auto asked = [&](const QString &name) {
                return FindBrokenOff(name, BackupHead(selection, memory.handheld));
            };
            EXPECT_FALSE(asked(file())->question.text.contains(u"gespeichert"));
            const auto tomorrow = asked(folder.filePath(QStringLiteral("Tomorrow.dds")));
            EXPECT_EQ(tomorrow->fileName, file());
            EXPECT_TRUE(tomorrow->question.text.contains(QDir::toNativeSeparators(file())));
            EXPECT_FALSE(FindBrokenOff(file(), BackupHead(selection, QStringLiteral("51202 1.2"))))
                << "another handheld";
            EXPECT_FALSE(ReadDds(*ReadWholeFile(KeepPart(file()))).records.empty());
        }
        memory.goOn = true;
        if (i == 19) { // another handheld, which the user is asked about; no: all is read from it
            ASSERT_GT(broken.kept, 0U);
            for (int n = 1; n < Pages * 8; ++n)
                flash().setBytes(LocoRecordAddress(n), recordBytes(n, 4));
            ASSERT_TRUE(Backup(whole, selection).written);
            user.boxes.clear();
        }
        ASSERT_TRUE(Backup(file(), selection, memory).written);
        EXPECT_EQ(user.boxes.join(u'|').contains(u"Vielleicht ist es ein anderer Handregler"), i == 19);
        EXPECT_EQ(*ReadWholeFile(file()), *ReadWholeFile(whole));
        EXPECT_FALSE(QFile::exists(JournalName(file())));
        QFile::remove(file());
        events.run(10);
    }
}

/// Also one that is first noticed while the last page is proved: the proof may be its answer.
TEST_F(CarefulJobs, ASecondHandheldEndsAWritingJobWhereverItIsNoticed)
{
    user.acceptAnyBox();
    const World first = world();
    const Step write{StepKind::Write, {RecordKind::Loco, 3}, LocoRecord{.name = QStringLiteral("NEW")}, {}};
    for (const qint64 delayMs : {1, 60, 119}) {
        bool reached = true;
        for (int from = 0; reached; ++from) { // plugged in at each of the job's requests
            TheMessages().forgetSecondHandheld();
            enter(first);
            int seen = 0;
            layout().bus.onEnd = [&](const sim::BusMessage &message) {
                if (message.sender != sim::Sender::Pc || seen++ != from)
                    return;
                sim::Handheld &other = layout().plugSecond();
                other.settings.answerDelayUs = handheld().settings.answerDelayUs + delayMs * 1'000;
                other.flash.state.memory = flash().state.memory;
            };
            const CarefulReport report = run(jobOf({write}));
            layout().bus.onEnd = nullptr;
            layout().unplugSecond();
            const bool noticed = last != Is::Written || report.job.end != JobEnd::Complete;
            reached = seen > from;
            EXPECT_EQ(noticed, reached) << "request " << from << " of " << seen << ", " << delayMs << " ms";
        }
    }
}

/// An earlier part of a job, and what of it is believed.
TEST_F(CarefulJobs, AnEarlierPartCountsAsFarAsItIsStillTrue)
{
    user.acceptAnyBox();
    const auto brokenOff = [this] {
        flash().state.memory = original;
        QFile::remove(JournalName(file()));
        afterNextProgram(ConfirmStop); // the page in work is finished
        EXPECT_EQ(run(fourWrites()).job.end, JobEnd::Stopped);
        restart();
        user.boxes.clear();
    };
    brokenOff();
    // What is finished is looked at all the same; what was edited meanwhile is saved before it is written over.
    flash().setBytes(LocoRecordAddress(2), recordBytes(2, 7));
    CarefulReport report = run(fourWrites());
    EXPECT_TRUE(face.wasAsked(Topic::Resume));
    EXPECT_EQ(report.already, (std::vector<RecordId>{{RecordKind::Loco, 3}}));
    EXPECT_TRUE(flashIs(fourWrites()));
    EXPECT_EQ(lastSnapshot().before.at({RecordKind::Loco, 2}), recordBytes(2, 7));
    EXPECT_EQ(lastSnapshot().before.at({RecordKind::Loco, 3}), recordBytes(3, 0)) << "as before the first part";
    EXPECT_FALSE(QFile::exists(JournalName(file())));
    // A moved stick: what the journal names is found in the new place.
    brokenOff();
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("stick")));
    ASSERT_TRUE(QDir(folder.path()).rename(QStringLiteral("konf"), QStringLiteral("stick/konf")));
    SetProgramFolder(folder.filePath(QStringLiteral("stick")));
    run(fourWrites());
    EXPECT_EQ(lastSnapshot().before.at({RecordKind::Loco, 3}), recordBytes(3, 0)) << "as before the first part";
    ASSERT_TRUE(QDir(folder.path()).rename(QStringLiteral("stick/konf"), QStringLiteral("konf")));
    SetProgramFolder(folder.path());
    // Nobody has asked to go on: all is forced to be written once more.
    for (const bool goesOn : {true, false}) {
        brokenOff();
        face.refused = goesOn ? std::set<Topic>{} : std::set{Topic::Resume};
        const int programs = executed(0x83);
        run(fourWrites(), {true, true, true});
        EXPECT_EQ(executed(0x83) - programs, goesOn ? 2 : 3);
        EXPECT_TRUE(flashIs(fourWrites()));
    }
    face.refused.clear();
    // Told, and begun anew without a question.
    struct Row {
        const char *told;
        std::function<void()> happens;
        std::vector<Step> steps = fourWrites();
    };
    const Row rows[] = {{"zurückgenommen", [this] { takeBack(); }},
        {"mehr als einem Tag", [this] { events.nowUs += 25LL * 3600 * 1'000'000; }},
        {"anderen Datensätzen", [] {}, {writeStep(2, 1), writeStep(14, 1)}}};
    for (const Row &row : rows) {
        SCOPED_TRACE(row.told);
        brokenOff();
        row.happens();
        CarefulJob job = jobOf(row.steps);
        job.resume = Resume::Wanted;
        run(job);
        EXPECT_TRUE(user.boxes.join(u'|').contains(QString::fromUtf8(row.told)))
            << user.boxes.join(u'|').toStdString();
        EXPECT_FALSE(face.wasAsked(Topic::Resume));
        EXPECT_EQ(last, Is::Written);
    }
}

TEST_F(CarefulJobs, BegunAnewTwiceWhatStoodThereFirstIsKept)
{
    user.acceptAnyBox();
    face.refused = {Topic::Resume};
    for (int part = 0; part < 2; ++part) {
        afterNextProgram(ConfirmStop); // the page in work is finished
        run({writeStep(9, 1), writeStep(14, 1), writeStep(22, 1)});
        restart();
    }
    EXPECT_EQ(run({writeStep(9, 1), writeStep(14, 1), writeStep(22, 1)}).job.end, JobEnd::Complete);
    EXPECT_EQ(UndoSnapshots().size(), 1);
    takeBack();
    EXPECT_TRUE(flashIs({}));
}

TEST_F(CarefulJobs, AMergeOnADestroyedPageTakesWhatStoodThereBefore)
{
    user.acceptAnyBox();
    Step merge{StepKind::Merge, {RecordKind::Loco, 7}, LocoRecord{FitLocoName(QStringLiteral("NEU")), {}, {}, 0, 1},
        {}, true};
    merge.merge = [](const RecordValue &present) {
        LocoRecord loco = std::get<LocoRecord>(present);
        loco.name = FitLocoName(QStringLiteral("NEU"));
        return RecordValue(loco);
    };
    strike(&sim::Faults::powerCut, 1);
    EXPECT_EQ(run({merge}).job.end, JobEnd::NoAnswer);
    restart();
    // No: nothing is written, and what stood there stays remembered.
    const auto destroyed = flash().state.memory;
    face.refused = {Topic::MendPage, Topic::DropPage};
    run({merge});
    EXPECT_EQ(last, Is::Refused);
    EXPECT_EQ(flash().state.memory, destroyed);
    EXPECT_TRUE(pagesWait());
    face.refused.clear();
    EXPECT_EQ(run({merge}).job.end, JobEnd::Complete);
    EXPECT_TRUE(flashIs({{StepKind::Write, merge.id, merge.merge(originals.at(7)), {}}}));
}

TEST_F(CarefulJobs, ABackupLeavesAJournalThatIsNotItsOwn)
{
    {
        Journal journal(file());
        ASSERT_TRUE(journal.begin(head()));
    }
    const QByteArray before = *ReadWholeFile(JournalName(file()));
    BackupSelection selection;
    selection.numbered.at(FktSymbolList) = {true, false, QStringLiteral("0")};
    user.acceptAnyBox(); // No to all questions
    EXPECT_EQ(Backup(file(), selection, BackupMemory{QStringLiteral("51201 1.2"), false}).end, JobEnd::NothingDone);
    EXPECT_EQ(user.boxes.size(), 1);
    EXPECT_EQ(*ReadWholeFile(JournalName(file())), before);
}

} // namespace hr::tests
