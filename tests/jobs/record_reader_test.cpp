// Reading many records the quick way finds the same as reading them one by one, whatever the chip and the line do.

#include "handheld/flash_map.h"
#include "jobs/runner.h"
#include "link/cadence.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <random>

namespace hr::tests
{

class QuickReading : public VirtualWorld, public ::testing::WithParamInterface<Cadence>
{
protected:
    void SetUp() override
    {
        connectDirectly();
        ChooseCadence(GetParam());
        user.acceptAnyBox();
        events.limitSeconds = 1e9;
        layout().bus.keepLog = false;
        flash().setBytes(TextTableAddress, QByteArray(32, '\x05'));
    }

    void lay(int loco)
    {
        QByteArray record(LocoRecordSize, '\0');
        for (char &byte : record)
            byte = static_cast<char>(dice() % 200);
        record[0] = 10;
        flash().setBytes(LocoRecordAddress(loco), record);
        locos.insert(loco);
    }

    Report search(int first, int last)
    {
        Plan plan{.steps = {}, .progress = [](const Step &) { return QString(); }, .patience = Patience::Quiet};
        for (int n = first; n <= last; ++n)
            plan.steps.push_back({StepKind::Search, {RecordKind::Loco, n}, {}, {}});
        handedOn.clear();
        return RunJob(plan, {{}, [this](const JobEntry &entry) { handedOn.insert(entry.step.id.number); }, {}});
    }

    /// Every address is in the report and handed on, and what it holds is what stands there.
    void expectRight(const Report &report, const char *row)
    {
        ASSERT_EQ(report.end, JobEnd::Complete) << row;
        ASSERT_EQ(handedOn.size(), report.entries.size()) << row;
        for (const JobEntry &entry : report.entries) {
            const int n = entry.step.id.number;
            ASSERT_EQ(entry.state, locos.contains(n) ? RecordState::Done : RecordState::Empty) << row << ' ' << n;
            if (!locos.contains(n))
                continue;
            const QByteArray stored = flashBytes(LocoRecordAddress(n), LocoRecordSize);
            ASSERT_TRUE(std::equal(entry.bytes->begin(), entry.bytes->end(), stored.begin(),
                [](quint8 byte, char wanted) { return byte == static_cast<quint8>(wanted); }))
                << row << ' ' << n;
            ASSERT_EQ(std::get<LocoRecord>(*entry.value), DecodeLoco(*entry.bytes)) << row << ' ' << n;
        }
    }

    int requests() { return handheld().state.executes + handheld().state.readBacks; }

    std::mt19937 dice{5};
    std::set<int> locos;
    std::set<int> handedOn;
};

INSTANTIATE_TEST_SUITE_P(Cadences, QuickReading, ::testing::Values(Cadence::Ticks, Cadence::Events));

TEST_P(QuickReading, ASearchAsksTheChipAndFindsEveryLoco)
{
    const double emptyStart = NowSeconds();
    expectRight(search(FirstLoco, LastLoco), "empty");
    const bool fast = GetParam() == Cadence::Events;
    EXPECT_LE(SecondsSince(emptyStart), fast ? 150 : 1'000);
    for (int i = 0; i < 300; ++i)
        lay(1 + i * 33 + static_cast<int>(dice() % 20));
    flash().setBytes(LocoRecordAddress(4'000), QByteArray(30, '\xFF').append(34, '\x11')); // deleted, not erased
    locos.erase(4'000);
    const double start = NowSeconds();
    expectRight(search(FirstLoco, LastLoco), "300 locos");
    EXPECT_LE(SecondsSince(start), fast ? 300 : 2'000 / 3 * 2);
    locos.clear();
    flash().setBytes(0, QByteArray(LocoRecordSize * (LastLoco + 1), '\xFF'));
    for (int n = 1; n <= 99; ++n)
        lay(n);
    const int before = requests();
    expectRight(search(1, 99), "all used");
    EXPECT_LE(requests() - before, 99 * 4 + 12) << "3.7 messages a loco";
}

/// The chip lies, forgets or stays silent; requests get lost; the handheld is restarted.
TEST_P(QuickReading, NothingTheChipSaysIsTakenOnTrust)
{
    for (int n = 100; n < 1'500; n += 3)
        lay(n);
    const auto onRequest = [this](const std::function<void(int, quint8)> &disturb) {
        layout().bus.onEnd = [disturb, seen = 0](const sim::BusMessage &message) mutable {
            if (message.sender == sim::Sender::Pc)
                disturb(++seen, message.bytes.at(6));
        };
    };
    struct Row {
        const char *name;
        std::function<void(int, quint8)> disturb;
    };
    const Row rows[] = {{"always equal", [this](int, quint8) { flash().state.differs = false; }},
        {"always different", [this](int, quint8) { flash().state.differs = true; }},
        {"equal from somewhere on", [this](int seen, quint8) { flash().state.differs &= seen < 60; }},
        {"buffer 1 lost now and then",
            [this](int seen, quint8) {
                if (seen % 70 == 0)
                    flash().state.buffer1.fill(0);
            }},
        {"compare not heard",
            [this](int seen, quint8 opcode) {
                layout().faults.faults.missedRequest.probability = opcode == 0x60 && seen % 5 == 0 ? 1 : 0;
            }},
        {"status not heard",
            [this](int, quint8 opcode) {
                layout().faults.faults.missedRequest.probability = opcode == (0xD7 & 0x7F) ? 1 : 0;
            }},
        {"restarted", [this](int seen, quint8) {
             if (seen != 90)
                 return;
             handheld().cutPower(events.nowUs);
             events.after(500'000, [this] { handheld().restorePower(); });
         }}};
    for (const Row &row : rows) {
        onRequest(row.disturb);
        Report report = search(1, 1'600);
        layout().bus.onEnd = nullptr;
        layout().faults.set({});
        for (JobEntry &entry : report.entries) { // what was not heard is told, and not taken for something else
            if (entry.state != RecordState::Doubtful || entry.outcome.ok())
                continue;
            const bool used = locos.contains(entry.step.id.number);
            entry.state = used ? RecordState::Done : RecordState::Empty;
            entry.bytes.emplace();
            const QByteArray stored = flashBytes(LocoRecordAddress(entry.step.id.number), LocoRecordSize);
            std::copy(stored.begin(), stored.end(), entry.bytes->begin());
            entry.value = DecodeLoco(*entry.bytes);
        }
        expectRight(report, row.name);
        BeginConnection();
        events.run(6);
    }
}

/// A job that breaks off keeps nothing of what only the chip has said.
TEST_P(QuickReading, WhatIsNotProvedIsUntouchedAfterAnEarlyEnd)
{
    events.after(40'000'000, [this] { port.hangUp(); });
    const Report report = search(1, 5'000);
    EXPECT_EQ(report.end, JobEnd::PortLost);
    for (const JobEntry &entry : report.entries)
        ASSERT_EQ(entry.state != RecordState::Untouched, handedOn.contains(entry.step.id.number));
}

/// Symbols and locos in a row, with every slice lost once: only what it held is in doubt.
TEST_P(QuickReading, ALostSliceMakesOnlyDoubtfulWhatItHeld)
{
    std::vector<RecordId> ids;
    for (int n = 5; n < 10; ++n)
        ids.push_back({RecordKind::Loco, n});
    for (int n = 3; n < 6; ++n) {
        ids.push_back({RecordKind::FunctionOn, n});
        ids.push_back({RecordKind::FunctionOff, n});
    }
    ids.push_back({RecordKind::LocoSymbol, 2});
    QByteArray noise(2'048, '\0');
    for (char &byte : noise)
        byte = static_cast<char>(dice() % 53);
    for (const int address : {0, FktSymbolAddress, LokSymbolAddress})
        flash().setBytes(address, noise);
    Plan plan{.steps = {}, .progress = [](const Step &) { return QString(); }, .patience = Patience::Agreed};
    for (const RecordId &id : ids)
        plan.steps.push_back({StepKind::Read, id, {}, {}});
    const Report right = RunJob(plan);
    const int all = requests();
    EXPECT_LE(all, 6 * 4 + 6 * 2 + 6);
    for (int lost = 1; lost <= all; ++lost) {
        ChooseCadence(Cadence::Ticks); // where nothing is repeated
        strike(&sim::Faults::missedRequest, lost);
        const Report report = RunJob(plan);
        int doubtful = 0;
        for (size_t i = 0; i < report.entries.size(); ++i) {
            const JobEntry &entry = report.entries.at(i);
            doubtful += entry.state == RecordState::Doubtful ? 1 : 0;
            ASSERT_TRUE(entry.state == RecordState::Doubtful || SameContent(*entry.value, *right.entries.at(i).value))
                << lost << ' ' << i;
        }
        EXPECT_GE(doubtful, 1) << lost;
        EXPECT_LE(doubtful, 4) << lost;
        events.run(6);
    }
}

} // namespace hr::tests
