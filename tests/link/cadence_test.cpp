#include "link/cadence.h"

#include "handheld/record_kinds.h"
#include "jobs/backup.h"
#include "link/exchange.h"
#include "link/open_link.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

class FastCadence : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        ChooseCadence(Cadence::Events);
    }

    static Request readBack()
    {
        Request request = Request::toHandheld();
        request.bytes.at(10) = 0x20;
        return request;
    }

    static Outcome writeLoco()
    {
        SpiImage image{};
        return WriteLoco(image, 9, {FitLocoName(QStringLiteral("LOK")), {}, {}, 0, 3}, Patience::Agreed).outcome;
    }
};

TEST_F(FastCadence, APageProgramIsFollowedByARestOf60Ms)
{
    ASSERT_TRUE(writeLoco().ok());
    const qint64 acknowledged = layout().bus.log.back().endUs();
    ASSERT_TRUE(ExchangeForReadBack(readBack()).ok());
    const qint64 next = layout().bus.log.at(layout().bus.log.size() - 2).startUs;
    EXPECT_GE(next - acknowledged, 60'000);
    EXPECT_LE(next - acknowledged, 65'000);
}

/// Ticks believe an acknowledge with a wrong checksum, as agreed; the fast cadence asks again.
TEST_F(FastCadence, AnAnswerWithAWrongChecksumIsNotBelieved)
{
    handheld().settings.present = false;
    for (const auto &[cadence, end] : {std::pair(Cadence::Ticks, End::Done), {Cadence::Events, End::NoAnswer}}) {
        ChooseCadence(cadence);
        events.after(500'000, [this] { layout().injectToPc({0xB4, 0x6D, 0x7F, 0x00}); });
        EXPECT_EQ(ExchangeForAck(Request::toHandheld()).how(), end);
    }
}

TEST_F(FastCadence, AStepIsRepeatedOnceWithoutABox)
{
    strike(&sim::Faults::lostAck, 2);
    EXPECT_TRUE(writeLoco().ok());
    EXPECT_EQ(CurrentCadence(), Cadence::Events);
    EXPECT_TRUE(user.boxes.isEmpty());
}

TEST_F(FastCadence, ASecondFailureEndsItForTheConnectionAndIsToldOnce)
{
    user.acceptAnyBox();
    int seen = 0;
    layout().bus.onEnd = [&](const sim::BusMessage &message) { // the first two flash reads are missed
        const bool read = message.sender == sim::Sender::Pc && message.bytes.at(6) == (0xE8 & 0x7F);
        layout().faults.faults.missedRequest.probability = read && ++seen <= 2 ? 1 : 0;
    };
    SpiImage image{};
    EXPECT_TRUE(ReadLoco(image, 3).ok()) << "the last try, in the slow cadence";
    events.run(0.1);
    ASSERT_EQ(user.boxes.size(), 1);
    EXPECT_TRUE(user.boxes.at(0).contains(QStringLiteral("Schnelle Übertragung abgeschaltet: ")));
    EXPECT_EQ(CurrentCadence(), Cadence::Ticks);
    EXPECT_EQ(ChosenCadence(), Cadence::Events);
    ClosePort();
    TheLink().use({{QStringLiteral("3"), true}, InterfaceDirect});
    ASSERT_TRUE(OpenLink().ok());
    EXPECT_EQ(CurrentCadence(), Cadence::Events) << "a new connection, a new try";
}

/// A handheld that is restarted answers with an empty buffer: what was begun before is read again from its beginning.
TEST_F(FastCadence, ARestartInTheMiddleOfAReadIsNotReadAsZeros)
{
    flash().setBytes(LocoRecordAddress(9), QByteArray(64, '\x0A'));
    SpiImage image{};
    const LocoRecord right = ReadLoco(image, 9).value;
    const auto before = layout().bus.log.size();
    layout().bus.onEnd = [&](const sim::BusMessage &) {
        if (layout().bus.log.size() == before + 4) {
            handheld().cutPower(events.nowUs);
            events.after(1'000'000, [this] { handheld().restorePower(); });
        }
    };
    const auto read = ReadLoco(image, 9);
    EXPECT_TRUE(read.ok());
    EXPECT_EQ(read.value, right);
}

TEST_F(FastCadence, ABurstIsHandledWholeAndInOrder)
{
    for (const int second : {1, 2, 3})
        layout().injectToPc(sim::WithChecksum({0xBF, 0, static_cast<quint8>(second)}));
    events.run(0.01);
    EXPECT_EQ(TheMessages().state().LocoAdrReply, 3);
}

TEST_F(FastCadence, AShortSearchReadsNeighboursTogether)
{
    for (const int loco : {7, 8, 30})
        flash().setBytes(LocoRecordAddress(loco), QByteArray(64, '\x0A'));
    BackupSelection search;
    search.lokSuche = true;
    search.lokSucheStart = 6;
    search.lokSucheStop = 31;
    const QString file = folder.filePath(QStringLiteral("a.dds"));
    const BackupOutcome fast = Backup(file, search);
    EXPECT_EQ(fast.found, (std::vector<int>{7, 8, 30}));
    EXPECT_LE(messagesOnBus(0xED), 13 * 3 + 3 * 4);
    EXPECT_EQ(fast.end, JobEnd::Complete);
}

TEST_F(FastCadence, NoTimerRunsWhenNothingIsUnderWay)
{
    for (const auto cadence : {Cadence::Ticks, Cadence::Events}) {
        ChooseCadence(cadence);
        ASSERT_TRUE(ExchangeForReadBack(readBack()).ok());
        EXPECT_GT(events.timersRunning(), 0U);
        events.run(3);
        EXPECT_EQ(events.timersRunning(), 0U);
    }
}

} // namespace hr::tests
