// Jobs that lose nothing: what is written, saved before, proved, and made good after a stop at any moment.

#include "jobs/backup.h"
#include "jobs/careful_write.h"
#include "jobs/saved_before.h"
#include "link/cadence.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <QDir>

#include <random>

class CarefulWrites : public VirtualWorld
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

    QString file() { return folder.filePath(QStringLiteral("a.dds")); }
    JournalHead head() { return {QStringLiteral("schreiben x"), QStringLiteral("51201 1.2")}; }

    /// One run of the job as a face would make it, from its journal if there is one.
    Report run(const std::vector<Step> &steps, const CarefulWish &wish, bool anew = false)
    {
        JournalContent content;
        static_cast<void>(EarlierPart(file(), head(), content));
        EarlierWork earlier = EarlierWorkOf(content);
        if (anew)
            earlier.finished.clear();
        const Look look = LookAt(StepsLeft(steps, earlier));
        if (look.end != JobEnd::Complete)
            return {look.end, {}};
        Journal journal(file());
        EXPECT_TRUE(OpenJournal(journal, head(), earlier));
        Report report = WriteCarefully(look.changes, wish, &journal, earlier);
        if (IsSettled(report))
            journal.remove();
        return report;
    }

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

    std::vector<quint8> original;
    std::map<int, LocoRecord> originals;
};

TEST_F(CarefulWrites, OnlyChangesAreWrittenAPageAtATimeAndProved)
{
    std::vector<Step> all;
    for (int n = 1; n < Pages * 8; ++n) {
        if (n % 5 != 0)
            all.push_back(writeStep(n, 0));
    }
    const CarefulWish wish{true, true, true};
    Report report = run(all, wish);
    EXPECT_EQ(IdsOf(report, RecordState::Unchanged).size(), all.size());
    EXPECT_EQ(executed(0x83), 0);
    EXPECT_TRUE(LastSavedBefore().isEmpty());
    all.at(2) = writeStep(3, 1);
    report = run(all, wish);
    EXPECT_EQ(IdsOf(report, RecordState::Done), (std::vector<RecordId>{{RecordKind::Loco, 3}}));
    EXPECT_EQ(executed(0x83), 1);
    EXPECT_TRUE(flashIs({writeStep(3, 1)}));
    const DdsContent before = ReadDds(*ReadWholeFile(LastSavedBefore()));
    EXPECT_EQ(before.records.size(), 7U) << "the whole page, 1 to 7, the empty one too";
    // All 23 in full: one program a page.
    report = run(all, {false, true, false});
    EXPECT_EQ(executed(0x83), 1 + Pages);
    EXPECT_TRUE(flashIs({writeStep(3, 1)}));
}

TEST_F(CarefulWrites, AProgramThatWasAcknowledgedAndNotDoneIsFound)
{
    for (const auto &[lies, state] : {std::pair(1, RecordState::Done), {2, RecordState::Differs}}) {
        flash().state.memory = original;
        sim::Faults faults;
        faults.skippedProgram.nth = 1;
        faults.skippedProgram.probability = lies == 2 ? 1 : 0;
        layout().faults.set(faults);
        const Report report = run({writeStep(9, 1)}, {});
        EXPECT_EQ(report.entries.front().state, state);
        EXPECT_EQ(flashIs({writeStep(9, 1)}), lies == 1);
        QFile::remove(JournalName(file()));
    }
}

/// Power cut, pulled plug and a killed program at random moments, in both cadences: gone on with, all is as wanted.
TEST_F(CarefulWrites, GoesOnAfterAnyBreak)
{
    user.acceptAnyBox();
    std::mt19937 dice(11);
    const std::vector<Step> steps = fourWrites();
    int broken = 0;
    for (int i = 0; i < 200; ++i) {
        flash().state.memory = original;
        reconnect();
        ChooseCadence(i % 2 == 0 ? Cadence::Events : Cadence::Ticks);
        const double longest = i % 2 == 0 ? 4.5 : 19;
        const auto moment = static_cast<qint64>(1e6 * longest * static_cast<double>(dice() % 1000) / 1000);
        const int how = static_cast<int>(dice() % 4);
        if (how == 3) {
            strike(&sim::Faults::powerCut, 1 + i % 3); // in the middle of a page program
        } else {
            events.after(moment, [this, how] {
                if (how == 0)
                    handheld().cutPower(events.nowUs);
                else if (how == 1)
                    port.hangUp();
                else
                    RequestEnd(); // as at a kill, nothing more is sent but the page in work
            });
        }
        const bool verify = i % 3 != 0;
        const Report first = run(steps, {i % 5 == 0, verify, true});
        broken += first.end != JobEnd::Complete ? 1 : 0;
        reconnect();
        events.run(15); // the moment is over, whether it was reached or not
        reconnect();
        for (int again = 0; again < 2 && !flashIs(steps); ++again)
            static_cast<void>(run(steps, {i % 5 == 0, true, true}));
        ASSERT_TRUE(flashIs(steps)) << i << " how " << how << " at " << moment;
        QFile::remove(JournalName(file()));
    }
    EXPECT_GT(broken, 120);
}

TEST_F(CarefulWrites, WhatStoodThereComesBack)
{
    user.acceptAnyBox();
    strike(&sim::Faults::powerCut, 2);
    EXPECT_EQ(run(fourWrites(), {}).end, JobEnd::NoAnswer);
    reconnect();
    std::vector<Step> back;
    for (const DdsRecord &record : ReadDds(*ReadWholeFile(LastSavedBefore())).records)
        back.push_back({StepKind::Write, record.id, UnpackRecord(record), {}});
    const Look look = LookAt(back);
    EXPECT_EQ(WriteCarefully(look.changes, {true, true, false}, nullptr, {}).end, JobEnd::Complete);
    EXPECT_TRUE(flashIs({})) << "the neighbours that the power cut destroyed too";
    MarkAsTakenBack(LastSavedBefore());
    EXPECT_TRUE(LastSavedBefore().isEmpty());
    for (int i = 0; i < 25; ++i) {
        events.run(1);
        EXPECT_FALSE(SaveBefore("x", false).isEmpty());
    }
    EXPECT_EQ(
        QDir(folder.filePath(QStringLiteral("konf/Sicherungen"))).entryList(QDir::Files).size(), MostSavedBefore);
}

TEST_F(CarefulWrites, AJournalThatDoesNotFitIsRefused)
{
    JournalContent content;
    {
        Journal journal(file());
        ASSERT_TRUE(journal.begin(head()));
        journal.finished({RecordKind::Loco, 3});
        journal.pageBegins(512);
        Journal second(file());
        user.acceptAnyBox();
        EXPECT_FALSE(second.goOn()) << "another program has it";
        EXPECT_EQ(user.boxes.size(), 1);
    }
    EXPECT_EQ(EarlierPart(file(), head(), content), Earlier::Fits);
    EXPECT_EQ(content.openPages, std::set<int>{512});
    EXPECT_EQ(EarlierPart(file(), {QStringLiteral("schreiben y"), head().handheld}, content), Earlier::OtherJob);
    EXPECT_EQ(EarlierPart(file(), {head().job, QStringLiteral("51202 1.2")}, content), Earlier::OtherHandheld);
    const QByteArray whole = *ReadWholeFile(JournalName(file()));
    ASSERT_TRUE(ReplaceFile(JournalName(file()), whole + "fertig 1 1")); // killed in the middle of a line
    EXPECT_EQ(EarlierPart(file(), head(), content), Earlier::Fits);
    EXPECT_EQ(content.finished.size(), 1U);
    for (const QByteArray &bad : {QByteArray(whole + "fertig 1 0\n"), QByteArray(whole + "unsinn\n"),
             QByteArray("daten 00\n"), QByteArray()}) {
        ASSERT_TRUE(ReplaceFile(JournalName(file()), bad));
        EXPECT_EQ(EarlierPart(file(), head(), content), Earlier::Damaged);
    }
    QDir().mkpath(folder.filePath(QStringLiteral("b.dds.fortschritt"))); // can't be written
    Journal blocked(folder.filePath(QStringLiteral("b.dds")));
    EXPECT_FALSE(blocked.begin(head()));
}

TEST_F(CarefulWrites, ABackupThatWasBrokenOffGoesOnAndEqualsAnUndisturbedOne)
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
            EXPECT_TRUE(GoOnQuestion(file(), BackupHead(selection, memory.handheld)).has_value());
            EXPECT_FALSE(ReadDds(*ReadWholeFile(KeepPart(file()))).records.empty());
        }
        memory.goOn = true;
        ASSERT_TRUE(Backup(file(), selection, memory).written);
        EXPECT_EQ(*ReadWholeFile(file()), *ReadWholeFile(whole));
        EXPECT_FALSE(QFile::exists(JournalName(file())));
        QFile::remove(file());
        events.run(10);
    }
}

TEST_F(CarefulWrites, WhatHappenedSinceTheEarlierPartCounts)
{
    user.acceptAnyBox();
    const CarefulWish wish{true, true, true};
    afterNextProgram(RequestEnd);
    run(fourWrites(), wish);
    ASSERT_TRUE(QFile::exists(JournalName(file())));
    reconnect();
    events.run(10);
    ASSERT_NE(flash().state.memory, original);
    // A record of a page not written yet changes: the second part saves what stands there now.
    const LocoRecord edited{FitLocoName(QStringLiteral("MITTWOCH")), {}, {}, 0, 1};
    LocoBytes beneath{};
    beneath.fill(EmptyByte);
    QByteArray bytes;
    for (const int byte : EncodeLoco(edited, beneath))
        bytes.append(static_cast<char>(byte));
    flash().setBytes(LocoRecordAddress(21), bytes);
    EXPECT_EQ(run(fourWrites(), wish).end, JobEnd::Complete);
    std::map<int, RecordValue> saved;
    for (const DdsRecord &record : ReadDds(*ReadWholeFile(LastSavedBefore())).records)
        saved.insert_or_assign(record.id.number, UnpackRecord(record));
    EXPECT_TRUE(SameContent(saved.at(21), edited));
    EXPECT_TRUE(SameContent(saved.at(2), originals.at(2))) << "as it was before the first part";
    // When the earlier part was taken back, nothing of it counts as finished.
    flash().state.memory = original;
    afterNextProgram(ConfirmStop); // the page in work is finished
    run(fourWrites(), wish);
    reconnect();
    events.run(10);
    ASSERT_NE(flash().state.memory, original);
    flash().state.memory = original;
    MarkAsTakenBack(LastSavedBefore());
    EXPECT_EQ(run(fourWrites(), wish).end, JobEnd::Complete);
    EXPECT_TRUE(flashIs(fourWrites()));
}

TEST_F(CarefulWrites, BegunAnewTwiceWhatStoodThereFirstIsKept)
{
    user.acceptAnyBox();
    const CarefulWish wish{true, true, true};
    for (const auto &steps :
        {std::vector<Step>{writeStep(9, 1), writeStep(22, 1)}, {writeStep(22, 2), writeStep(9, 2)}}) {
        afterNextProgram(ConfirmStop); // the page in work is finished
        run(steps, wish, true);
        reconnect();
        events.run(10);
    }
    ASSERT_FALSE(SameContent(stored(9), originals.at(9)));
    EXPECT_EQ(run({writeStep(9, 3), writeStep(22, 3)}, wish, true).end, JobEnd::Complete);
    std::map<int, RecordValue> saved;
    for (const DdsRecord &record : ReadDds(*ReadWholeFile(LastSavedBefore())).records)
        saved.insert_or_assign(record.id.number, UnpackRecord(record));
    EXPECT_TRUE(SameContent(saved.at(9), originals.at(9)));
    EXPECT_TRUE(SameContent(saved.at(22), originals.at(22)));
}

TEST_F(CarefulWrites, AMergeOnADestroyedPageTakesWhatStoodThereBefore)
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
    EXPECT_EQ(run({merge}, {true, true, true}).end, JobEnd::NoAnswer);
    reconnect();
    EXPECT_EQ(run({merge}, {true, true, true}).end, JobEnd::Complete);
    EXPECT_TRUE(flashIs({{StepKind::Write, merge.id, merge.merge(originals.at(7)), {}}}));
}

TEST_F(CarefulWrites, ABackupLeavesAJournalThatIsNotItsOwn)
{
    {
        Journal journal(file());
        ASSERT_TRUE(journal.begin(head()));
        journal.pageBegins(512);
    }
    const QByteArray before = *ReadWholeFile(JournalName(file()));
    BackupSelection selection;
    selection.numbered.at(FktSymbolList) = {true, false, QStringLiteral("0")};
    user.acceptAnyBox(); // No to all questions
    EXPECT_EQ(Backup(file(), selection, BackupMemory{QStringLiteral("51201 1.2"), false}).end, JobEnd::NothingDone);
    EXPECT_EQ(user.boxes.size(), 1);
    EXPECT_EQ(*ReadWholeFile(JournalName(file())), before);
}
