// Every fault of the simulated world at every message of every kind of transfer: what is read and written is right, or
// the user is told; neighbours in the same page are never harmed; the next command works.

#include "handheld/flash_map.h"
#include "handheld/options.h"
#include "handheld/record_kinds.h"
#include "jobs/runner.h"
#include "link/cadence.h"
#include "link/exchange.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <random>

namespace hr::tests
{

namespace
{

constexpr int RequestSize = 31;

struct FaultKind {
    const char *name;
    sim::Fault sim::Faults::*fault;
    int occasionsAMessage; // how many occasions a request and its answer are at most
    int times = 1;
    bool breaksPage = false; // nobody can keep the neighbours then
    bool ofCts = false;      // behind the interface with the text prompt; the next request is not heard
};

const FaultKind FaultKinds[] = {{"lost byte", &sim::Faults::lostByte, 62},
    {"changed byte", &sim::Faults::changedByte, 62}, {"doubled byte", &sim::Faults::doubledByte, 62},
    {"late byte", &sim::Faults::lateByte, 62}, {"lost echo", &sim::Faults::lostEcho, 1},
    {"changed echo", &sim::Faults::changedEcho, 1}, {"torn echo", &sim::Faults::tornEcho, 1},
    {"foreign before", &sim::Faults::foreignBeforeEcho, 1}, {"foreign after", &sim::Faults::foreignAfterEcho, 1},
    {"missed request", &sim::Faults::missedRequest, 1}, {"lost acknowledge", &sim::Faults::lostAck, 1},
    {"other acknowledge", &sim::Faults::otherAck, 1}, {"foreign answer before", &sim::Faults::foreignPeerBefore, 1},
    {"foreign answer after", &sim::Faults::foreignPeerAfter, 1}, {"doubled answer", &sim::Faults::doubledAnswer, 1},
    {"late answer", &sim::Faults::lateAnswer, 1}, {"hang-up", &sim::Faults::hangUp, 1},
    {"answer damaged", &sim::Faults::damagedAnswer, 1}, {"answer damaged twice", &sim::Faults::damagedAnswer, 1, 2},
    {"answers damaged", &sim::Faults::damagedAnswer, 1, 9},
    {"power cut in a page", &sim::Faults::powerCut, 1, 1, true},
    {"CTS off", &sim::Faults::ctsOff, RequestSize, 1, false, true}};

/// Everything that can be wrong with the answers all the time.
struct Disturbance {
    const char *name;
    sim::Fault sim::Faults::*always = nullptr;
    qint64 sim::Faults::*delay = nullptr;
    bool second = false; // a second handheld, with other content unless `same`
    bool same = false;
    bool foreignSound = true;
};
const Disturbance Disturbances[] = {{"every answer doubled", &sim::Faults::doubledAnswer, &sim::Faults::doubledUs},
    {"second handheld", nullptr, nullptr, true}, {"second handheld, same content", nullptr, nullptr, true, true},
    {"foreign answers before", &sim::Faults::foreignPeerBefore},
    {"foreign answers after", &sim::Faults::foreignPeerAfter},
    {"damaged foreign answers before", &sim::Faults::foreignPeerBefore, nullptr, false, false, false},
    {"damaged foreign answers after", &sim::Faults::foreignPeerAfter, nullptr, false, false, false}};

/// A record, the flash bytes that are its own by their places in its page, and how many messages it costs.
struct Target {
    const char *name;
    RecordId id;
    int page;
    std::vector<std::pair<int, int>> own; // first and last byte address
    int messages;
};

} // namespace

class FaultMatrix : public VirtualWorld, public ::testing::WithParamInterface<Cadence>
{
protected:
    void SetUp() override
    {
        connectDirectly();
        ChooseCadence(GetParam());
        user.acceptAnyBox();
        events.limitSeconds = 4'000'000;
        layout().bus.keepLog = false;
        std::mt19937 dice(3);
        for (const int area : {0, MagZuordAddress, FktSymbolAddress, LokSymbolAddress, RoutesAddress}) {
            QByteArray bytes(3 * 512, '\0');
            for (char &byte : bytes)
                byte = static_cast<char>(dice() % 53);
            flash().setBytes(area, bytes);
        }
        memory = flash().state.memory;
        buffer1 = flash().state.buffer1;
    }

    void restart(const FaultKind &kind, int nth)
    {
        flash().state.memory = memory;
        flash().state.buffer1.fill(0xA5); // what an unloaded buffer would spread
        user.boxes.clear();
        begin();
        plugInto(kind.ofCts ? InterfaceOrvanto1 : InterfaceDirect);
        sim::Faults faults;
        (faults.*kind.fault).nth = nth;
        (faults.*kind.fault).times = kind.times;
        if (kind.ofCts) {
            faults.ctsOffUs = 2'010'000 + nth % 4 * 326'000;
            faults.missedRequest.nth = 1 + (nth + RequestSize - 1) / RequestSize;
        }
        layout().faults.set(faults);
    }

    /// The interface with the text prompt passes messages through, as after its set-up.
    void plugInto(int type)
    {
        if (TheLink().InterfaceType == type)
            return;
        TheLink().InterfaceType = static_cast<qint16>(type);
        layout().adapter.setKind(
            type == InterfaceOrvanto1 ? sim::InterfaceKind::TextPrompt : sim::InterfaceKind::Direct);
        layout().adapter.setLineUnknown();
        if (type == InterfaceOrvanto1)
            layout().adapter.fromPc(sim::ToBytes("xB19200\rx&LN$55AA\r"), events.nowUs);
        events.run(6);
    }

    /// The row before may have lost the port, fallen back to the slow cadence, and left late answers.
    void begin()
    {
        handheld().restorePower();
        port.replug();
        if (!port.isOpen()) {
            ASSERT_TRUE(port.open());
        }
        TheLink().HandreglerGefunden = true;
        BeginConnection();
        events.run(6);
        TheMessages().forgetSecondHandheld();
    }

    /// What was said has been believed: nobody else answered, until a moment later.
    static bool toldOfTwo() { return !OnlyOneAnswers(0.3); }

    void expectNextCommandWorks(const std::string &row)
    {
        layout().faults.set({});
        begin();
        SpiImage image{};
        const Result<LocoRecord> read = ReadLoco(image, 20);
        ASSERT_TRUE(read.ok()) << row;
        LocoBytes bytes{};
        const QByteArray stored = flashBytes(20 * 64, 64);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes.at(i) = static_cast<quint8>(stored.at(static_cast<qsizetype>(i)));
        ASSERT_EQ(read.value, DecodeLoco(bytes)) << row;
    }

    /// True when all bytes outside the target's own are as before; where the page itself breaks, all outside its pages.
    bool neighboursUnharmed(const Target &target, bool breaksPage = false)
    {
        const auto isOwn = [&](int address) {
            const int rest = breaksPage ? 511 : 0;
            return std::ranges::any_of(target.own, [&](const auto &range) {
                return address >= (range.first & ~rest) && address <= (range.second | rest);
            });
        };
        for (int address = target.page; address < target.page + 2'560; ++address) {
            if (!isOwn(address)
                && flash().state.memory.at(static_cast<size_t>(address)) != memory.at(static_cast<size_t>(address)))
                return false;
        }
        return true;
    }

    /// All messages for faults of whole messages; for faults of bytes a sample that meets every message.
    static std::vector<int> occasions(const FaultKind &kind, int messages)
    {
        std::vector<int> all;
        const bool ofBytes = kind.occasionsAMessage > 1;
        const int step = ofBytes ? 47 : (messages > 100 ? 11 : 1);
        for (int nth = 1; nth <= messages * kind.occasionsAMessage; nth += step)
            all.push_back(nth);
        return all;
    }

    std::vector<quint8> memory;
    std::array<quint8, 512> buffer1{};
};

INSTANTIATE_TEST_SUITE_P(Cadences, FaultMatrix, ::testing::Values(Cadence::Ticks, Cadence::Events));

class PageLoad : public FaultMatrix
{
};
INSTANTIATE_TEST_SUITE_P(Ticks, PageLoad, ::testing::Values(Cadence::Ticks));

TEST_P(FaultMatrix, Reads)
{
    const std::vector<Target> targets{{"loco", {RecordKind::Loco, 9}, 0, {}, 5},
        {"symbol", {RecordKind::FunctionOn, 3}, 0, {}, 3}, {"loco symbol", {RecordKind::LocoSymbol, 1}, 0, {}, 7},
        {"routes", {RecordKind::RouteTable, 0}, 0, {}, 12}};
    for (const Target &target : targets) {
        SpiImage image{};
        const RecordValue right = ReadRecord(image, target.id, [](int) {}).value;
        for (const FaultKind &kind : FaultKinds) {
            for (const int nth : occasions(kind, target.messages)) {
                const std::string row = std::string(target.name) + ", " + kind.name + " " + std::to_string(nth);
                restart(kind, nth);
                SpiImage fresh{};
                fresh.fill(7);
                const Result<RecordValue> read = ReadRecord(fresh, target.id, [](int) {});
                Picture got;
                Picture wanted;
                bool same = read.value == right;
                if (std::holds_alternative<Picture>(right)) { // behind the picture lies what the buffer held
                    got = std::get<Picture>(read.value);
                    wanted = std::get<Picture>(right);
                    got.bytes.resize(static_cast<size_t>(FlashBytesOf(got.geometry)));
                    wanted.bytes.resize(static_cast<size_t>(FlashBytesOf(got.geometry)));
                    same = got == wanted;
                }
                ASSERT_TRUE(same || !read.ok() || toldOfTwo()) << row << ": wrong without a word";
                ASSERT_EQ(flash().state.memory, memory) << row;
                expectNextCommandWorks(row);
            }
        }
    }
}

TEST_P(FaultMatrix, Writes)
{
    const int loco = 9 * 64;
    const int symbol = FktSymbolAddress + 3 * 64;
    const int lokSymbol = LokSymbolAddress + 512;
    const std::vector<Target> targets{{"loco", {RecordKind::Loco, 9}, 512, {{loco, loco + 63}}, 6},
        {"symbol", {RecordKind::FunctionOn, 3}, FktSymbolAddress, {{symbol, symbol + 29}}, 4},
        {"loco symbol", {RecordKind::LocoSymbol, 1}, LokSymbolAddress, {{lokSymbol, lokSymbol + 511}}, 7},
        {"routes", {RecordKind::RouteTable, 0}, RoutesAddress, {{RoutesAddress, RoutesAddress + 511}}, 21},
        {"assignment", {RecordKind::AssignmentTable, 0}, MagZuordAddress, {{0x0E0001, 0x0E0800}}, 139}};
    for (const Target &target : targets) {
        flash().state.memory = memory;
        SpiImage image{};
        RecordValue value = ReadRecord(image, target.id, [](int) {}).value;
        if (auto *record = std::get_if<LocoRecord>(&value))
            record->locoSymbol ^= 5;
        if (auto *picture = std::get_if<Picture>(&value))
            picture->bytes.at(9) ^= 5;
        if (auto *routes = std::get_if<Routes>(&value))
            routes->at(33) ^= 5;
        if (auto *assignment = std::get_if<Assignment>(&value))
            assignment->at(700) ^= 5;
        flash().state.buffer1.fill(0xA5);
        ASSERT_TRUE(WriteRecord(image, target.id, value, Patience::Agreed).ok());
        const std::vector<quint8> wanted = flash().state.memory;
        for (const Patience patience : {Patience::Agreed, Patience::Job}) {
            for (const FaultKind &kind : FaultKinds) {
                if (target.messages > 100 && kind.occasionsAMessage > 1)
                    continue; // the same sequence as the small ones, 140 messages long
                for (const int nth : occasions(kind, target.messages)) {
                    const bool job = patience == Patience::Job;
                    const std::string row =
                        std::string(target.name) + (job ? ", job, " : ", ") + kind.name + " " + std::to_string(nth);
                    restart(kind, nth);
                    SpiImage fresh = image;
                    const PageResult written = WriteRecord(fresh, target.id, value, patience);
                    const Outcome &outcome = written.outcome;
                    ASSERT_TRUE(neighboursUnharmed(target, kind.breaksPage)) << row << ": neighbours harmed";
                    if (outcome.ok()) {
                        ASSERT_EQ(flash().state.memory, wanted) << row << ": wrong without a word";
                    } else if (outcome.how() != End::SecondHandheld) {
                        ASSERT_FALSE(user.boxes.isEmpty()) << row << ": not told";
                    }
                    if (IsUntouched(written.page)) {
                        ASSERT_EQ(flash().state.memory, memory) << row << ": given up, but changed";
                    }
                    expectNextCommandWorks(row);
                }
            }
        }
    }
}

TEST_P(FaultMatrix, Deletes)
{
    const Target target{"delete", {RecordKind::Loco, 9}, 512, {{9 * 64, 9 * 64 + 63}}, 3};
    for (const FaultKind &kind : FaultKinds) {
        for (const int nth : occasions(kind, target.messages)) {
            const std::string row = std::string(kind.name) + " " + std::to_string(nth);
            restart(kind, nth);
            SpiImage image{};
            const Outcome outcome = DeleteLoco(image, 9, Patience::Agreed).outcome;
            ASSERT_TRUE(neighboursUnharmed(target, kind.breaksPage)) << row;
            ASSERT_TRUE(!outcome.ok() || flashBytes(9 * 64, 15) == QByteArray(15, '\xFF')) << row;
            ASSERT_TRUE(outcome.ok() || !user.boxes.isEmpty() || outcome.how() == End::SecondHandheld) << row;
            expectNextCommandWorks(row);
        }
    }
}

/// A settings page that was not read for sure is asked about; after No it stays as it is.
TEST_P(FaultMatrix, SwitchOffTime)
{
    const Target target{"", {}, SettingsAddress, {{SettingsAddress, SettingsAddress + 511}}, 18};
    QByteArray settings;
    for (int i = 0; i < SettingsSize; ++i)
        settings.append(static_cast<char>(i + 100));
    flash().setBytes(SettingsAddress, settings);
    memory = flash().state.memory;
    QByteArray wanted = settings;
    wanted[5] = 0;
    int asked = 0;
    for (const bool mayWrite : {false, true}) {
        for (const FaultKind &kind : FaultKinds) {
            for (const int nth : occasions(kind, target.messages)) {
                const std::string row = std::string(kind.name) + (mayWrite ? ", Ja " : " ") + std::to_string(nth);
                restart(kind, nth);
                SpiImage image{};
                image.fill(7);
                const int before = asked;
                const int programs = executed(0x83);
                const Outcome outcome = ClearSwitchOffTime(image, [&] {
                    ++asked;
                    return mayWrite;
                });
                const bool wasAsked = asked > before;
                ASSERT_TRUE(neighboursUnharmed(target)) << row;
                ASSERT_TRUE(!outcome.ok() || flashBytes(SettingsAddress, SettingsSize) == wanted) << row;
                ASSERT_TRUE(outcome.ok() || wasAsked || !user.boxes.isEmpty() || outcome.how() == End::SecondHandheld)
                    << row;
                if (wasAsked) {
                    ASSERT_EQ(executed(0x83) - programs, mayWrite ? 1 : 0) << row;
                }
                expectNextCommandWorks(row);
            }
        }
    }
    EXPECT_GT(asked, 10);
}

/// Answers of others all the time, from every message of a job on: what the job says it has read is right, or it ends and
/// says so; nothing wrong was handed on as sure.
TEST_P(FaultMatrix, JobsUnderStrangeAnswers)
{
    Plan plan{.steps = {}, .progress = [](const Step &) { return QString(); }, .patience = Patience::Quiet};
    for (const RecordId &id : {RecordId{RecordKind::Loco, 8}, {RecordKind::Loco, 9}, {RecordKind::Loco, 200},
             {RecordKind::FunctionOn, 3}, {RecordKind::LocoSymbol, 1}, {RecordKind::Loco, 10}})
        plan.steps.push_back({StepKind::Read, id, {}, {}});
    flash().setBytes(LocoRecordAddress(200), QByteArray(64, '\xFF'));
    memory = flash().state.memory;
    const Report right = RunJob(plan);
    for (const Disturbance &kind : Disturbances) {
        for (const qint64 delayMs : {1, 5, 15, 40, 60, 90, 119}) {
            for (const int from : {0, 1, 2, 5, 9, 14}) {
                const std::string row =
                    std::string(kind.name) + ", " + std::to_string(delayMs) + " ms, from " + std::to_string(from);
                begin();
                sim::Faults faults;
                faults.foreignPeerSound = kind.foreignSound;
                faults.doubledUs = delayMs * 1'000;
                int seen = 0;
                layout().bus.onEnd = [&](const sim::BusMessage &message) {
                    if (message.sender != sim::Sender::Pc || seen++ != from)
                        return;
                    if (kind.always != nullptr)
                        (faults.*kind.always).probability = 1;
                    layout().faults.set(faults);
                    if (!kind.second)
                        return;
                    sim::Handheld &other = layout().plugSecond();
                    other.settings.answerDelayUs = handheld().settings.answerDelayUs + delayMs * 1'000;
                    if (kind.same)
                        other.flash.state.memory = memory;
                };
                std::vector<JobEntry> handedOn;
                const Report report =
                    RunJob(plan, {{}, [&](const JobEntry &entry) { handedOn.push_back(entry); }, {}});
                layout().bus.onEnd = nullptr;
                layout().unplugSecond();
                layout().faults.set({});
                for (const JobEntry &entry : handedOn) {
                    const auto wanted = std::ranges::find(
                        right.entries, entry.step.id, [](const JobEntry &known) { return known.step.id; });
                    const bool sure = entry.state == RecordState::Done || entry.state == RecordState::Empty;
                    ASSERT_TRUE(!sure || (entry.state == wanted->state && SameContent(*entry.value, *wanted->value)))
                        << row << ": wrong and handed on";
                }
                ASSERT_TRUE(report.end != JobEnd::Complete || handedOn.size() == plan.steps.size()) << row;
                if (kind.second) {
                    ASSERT_EQ(report.end, JobEnd::NoAnswer) << row << ": not noticed";
                } else if (kind.always != &sim::Faults::doubledAnswer) {
                    ASSERT_FALSE(TheMessages().secondHandheld()) << row << ": a false alarm";
                }
            }
        }
    }
}

/// The handheld misses the page load: without a second look seven neighbours would be programmed from buffer 1.
TEST_P(PageLoad, ALostPageLoadIsNoticedAndRepeated)
{
    for (const auto &[misses, patience] : {std::pair(1, Patience::Job), {2, Patience::Job}, {3, Patience::Job},
             {4, Patience::Job}, {1, Patience::Agreed}, {2, Patience::Agreed}, {3, Patience::Agreed}}) {
        flash().state.memory = memory;
        flash().state.buffer1.fill(0xA5);
        user.boxes.clear();
        // Only page loads are missed: the handheld hears again when the question comes.
        int seen = 0;
        layout().bus.onEnd = [&, most = misses](const sim::BusMessage &message) {
            const bool load = message.bytes.size() == 31 && message.bytes.at(6) == 0x53;
            seen += load ? 1 : 0;
            layout().faults.faults.missedRequest.probability = load && seen <= most ? 1 : 0;
        };
        SpiImage image{};
        const LocoRecord record{FitLocoName(QStringLiteral("LOK")), {}, {}, 0, 3};
        const PageResult result = WriteLoco(image, 9, record, patience);
        layout().bus.onEnd = nullptr;
        EXPECT_EQ(user.boxes.constFirst(), QStringLiteral("move_spibuf_to_buf1: Timeout")) << misses;
        EXPECT_EQ(user.boxes.size(), misses > 2 && patience == Patience::Agreed ? 2 : 1) << misses;
        EXPECT_EQ(result.page, misses <= 2 ? PageState::Programmed : PageState::NotLoaded)
            << "repeated twice at most";
        const Target target{"", {RecordKind::Loco, 9}, 512, {{9 * 64, 9 * 64 + 63}}, 6};
        EXPECT_TRUE(neighboursUnharmed(target)) << misses;
        EXPECT_EQ(executed(0x83), misses <= 2 ? 1 : 0);
        flash().state.executed = {};
        layout().faults.set({});
    }
}

/// The handheld is away while the page is to be loaded and comes back for the rest: the load is made sure of.
TEST_P(PageLoad, AHandheldThatComesBackLoadsThePageFirst)
{
    for (const int seconds : {3, 7, 9}) {
        flash().state.memory = memory;
        flash().state.buffer1.fill(0xA5);
        handheld().settings.present = false;
        events.after(seconds * 1'000'000, [this] { handheld().settings.present = true; });
        SpiImage image{};
        const LocoRecord record{FitLocoName(QStringLiteral("LOK")), {}, {}, 0, 3};
        static_cast<void>(WriteLoco(image, 9, record, Patience::Agreed));
        const Target target{"", {RecordKind::Loco, 9}, 512, {{9 * 64, 9 * 64 + 63}}, 6};
        EXPECT_TRUE(neighboursUnharmed(target)) << seconds;
    }
}

} // namespace hr::tests
