#include "link/message_layer.h"

#include "link/cadence.h"
#include "link/exchange.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

namespace
{

QString EchoError()
{
    return QStringLiteral("LocoNet Fehler: Message kann nicht gesendet werden!");
}

} // namespace

class Messages : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        handheld().settings.present = false;
    }

    static void lay(const std::vector<quint8> &bytes, Expects answer = Expects::Nothing)
    {
        LocoNetMessage message{};
        std::copy(bytes.begin(), bytes.end(), message.begin());
        ASSERT_TRUE(TheMessages().lay(message, static_cast<int>(bytes.size()) - 1, answer).ok());
    }

    static const MessageState &state() { return TheMessages().state(); }

    static Request readBack(int start)
    {
        Request request = Request::toHandheld();
        request.bytes.at(10) = 0x20;
        request.bytes.at(25) = static_cast<quint8>(start << 4);
        return request;
    }

    void receive(const sim::Bytes &bytes)
    {
        layout().injectToPc(bytes);
        events.run(0.049);
    }
};

TEST_F(Messages, SlotIsFreedByTheExactEchoOnly)
{
    lay({0xBF, 1, 2});
    events.run(0.2);
    ASSERT_EQ(layout().bus.log.size(), 1U);
    EXPECT_EQ(layout().bus.log.at(0).bytes, (sim::Bytes{0xBF, 1, 2, 0xFF ^ 0xBF ^ 1 ^ 2}));
    EXPECT_EQ(state().TxLen, -1);
    EXPECT_EQ(state().LocoAdrReply, 130);
}

TEST_F(Messages, ADifferentEchoCountsAsNone)
{
    sim::Faults faults;
    faults.changedEcho.nth = 1;
    layout().faults.set(faults);
    user.acceptAnyBox();
    lay({0xBC, 1, 2});
    events.run(1.9);
    EXPECT_EQ(state().TxLen, 2);
    events.run(0.3);
    EXPECT_EQ(state().TxLen, -1);
    EXPECT_EQ(user.boxes, QStringList{EchoError()});
    EXPECT_EQ(layout().bus.log.size(), 1U) << "a message is never sent again";
}

TEST_F(Messages, TheEchosChecksumCountsToo)
{
    sim::Faults faults;
    faults.lostEcho.nth = 1;
    layout().faults.set(faults);
    user.acceptAnyBox();
    lay({0xBC, 1, 2});
    events.run(0.3);
    receive({0xBC, 1, 2, 0x00});
    events.run(0.2);
    EXPECT_EQ(state().TxLen, 2) << "not the echo";
    receive({0xBC, 1, 2, 0xFF ^ 0xBC ^ 1 ^ 2});
    events.run(0.2);
    EXPECT_EQ(state().TxLen, -1);
}

TEST_F(Messages, EchoTimeLimit)
{
    user.acceptAnyBox();
    strike(&sim::Faults::lostEcho, 1);
    lay({0x82});
    events.run(2.0); // written at the first tick, 50 ms after the start
    EXPECT_TRUE(user.boxes.isEmpty());
    events.run(0.15);
    EXPECT_EQ(user.boxes, QStringList{EchoError()});
}

TEST_F(Messages, AMessageIsLaidOnlyIntoAFreeSlotOfAnOpenPort)
{
    EXPECT_TRUE(TheMessages().lay({0xBF, 1, 2}, 2).ok());
    EXPECT_EQ(TheMessages().lay({0xBF, 3, 4}, 2).how(), End::NotSent);
    EXPECT_EQ(state().TxMsg.at(1), 1);
    events.run(0.3);
    port.close();
    EXPECT_EQ(TheMessages().lay({0xBF, 3, 4}, 2).how(), End::PortLost);
}

TEST_F(Messages, TheTapSeesEveryMessageWithItsChecksumsVerdict)
{
    QList<std::pair<int, bool>> seen;
    const auto tap = TheMessages().tapTraffic([&](const Traffic &traffic) {
        seen += {traffic.bytes[0], traffic.checksumRight};
    });
    lay({0xBC, 1, 2});
    events.run(0.3);
    receive({0xA0, 1, 2, 0x5C});
    receive({0xA0, 1, 2, 0x5D});
    receive({0x82, 0x7D});
    EXPECT_EQ(seen, (QList<std::pair<int, bool>>{{0xBC, true}, {0xA0, true}, {0xA0, false}, {0x82, true}}));
    TheMessages().endTap(tap);
}

/// Up to five seconds after its request: the next question of the same kind waits for it, however many follow.
TEST_F(Messages, AnAnswerThatComesLateIsNeverTheNextOnes)
{
    handheld().settings.present = true;
    for (quint8 i = 0; i < 40; ++i)
        handheld().state.spiBuffer.at(i) = i;
    user.acceptAnyBox();
    for (const Cadence cadence : {Cadence::Ticks, Cadence::Events}) {
        ChooseCadence(cadence);
        for (const int delayMs : {1990, 2100, 2280, 2900, 4000, 4900}) { // behind the request's 60 ms on the line
            for (const int slow : {1, 2, 3}) {
                handheld().settings.answerDelayUs = delayMs * 1000;
                for (int i = 0; i < slow; ++i)
                    EXPECT_EQ(ExchangeForReadBack(readBack(0)).outcome.how(), End::NoAnswer) << delayMs;
                handheld().settings.answerDelayUs = 2'000;
                const auto answer = ExchangeForReadBack(readBack(7));
                EXPECT_TRUE(answer.ok()) << delayMs << ' ' << slow;
                EXPECT_EQ(answer.value.at(0), 7) << delayMs << ": the old answer has 0";
                EXPECT_EQ(ExchangeForReadBack(readBack(0)).value.at(0), 0);
            }
        }
        EXPECT_FALSE(TheMessages().secondHandheld()) << "late is not strange";
    }
}

TEST_F(Messages, AnOccupiedSlotIsAwaitedForThreeSeconds)
{
    TheLink().InterfaceType = InterfaceOrvanto1; // CTS keeps the message in the slot
    layout().holdCts(60'000'000);
    user.acceptAnyBox();
    lay({0xBC, 1, 2});
    events.run(0.2);
    const double start = NowSeconds();
    EXPECT_EQ(SendOnly(Request::toHandheld()).how(), End::NotSent);
    EXPECT_NEAR(SecondsSince(start), 3, 0.1);
}

TEST_F(Messages, ForeignMessageBeforeTheEchoChangesNothing)
{
    lay({0xBC, 1, 2});
    events.run(0.051);
    EXPECT_TRUE(state().TxWaitEcho);
    layout().injectToPc({0xA0, 1, 2, 3});
    layout().faults.set({});
    events.run(0.2);
    EXPECT_EQ(state().TxLen, -1);
    EXPECT_FALSE(state().TxWaitEcho);
}

TEST_F(Messages, OnlyTheFirstMessageAfterTheEchoIsTheAnswer)
{
    struct Row {
        sim::Bytes message;
        int code;
    };
    const Row rows[] = {{{0xB4, 0x6D, 0x7F, 0x59}, 0x7F}, {{0xB4, 0x3D, 0x7F, 0x09}, 0}, {{0x82, 0x7D}, 0}};
    for (const Row &row : rows) {
        lay({0xED, 6, 3, 4, 5});
        events.run(0.2);
        ASSERT_TRUE(state().AwaitingAck);
        receive(row.message);
        events.run(0.1);
        EXPECT_EQ(state().LastAckCode, row.code);
        EXPECT_FALSE(state().AwaitingAck);
        receive({0xB4, 0x6D, 0x11, 0x37});
        events.run(0.1);
        EXPECT_EQ(state().LastAckCode, row.code) << "a late acknowledge must not count";
    }
}

/// In the fast cadence only another request between ends the wait: its acknowledge would pass for ours.
TEST_F(Messages, TheFastCadenceWaitsForTheAcknowledgeBehindTrafficOfOthers)
{
    ChooseCadence(Cadence::Events);
    for (const auto &[foreign, code] :
        {std::pair(sim::Bytes{0xB2, 0x15, 0x70}, 0x7F), {sim::Bytes{0xED, 5, 1, 2}, 0}}) {
        lay({0xED, 6, 3, 4, 5});
        events.run(0.2);
        receive(sim::WithChecksum(foreign));
        receive({0xB4, 0x6D, 0x7F, 0x59});
        EXPECT_EQ(state().LastAckCode, code);
    }
}

/// Before the echo an answer is held; the echo drops it, and only when none came until the limit it counts.
TEST_F(Messages, AnAnswerCountsOnlyBehindTheEchoOrWhenTheEchoIsLost)
{
    handheld().settings.present = true;
    handheld().state.spiBuffer.at(0) = 99;
    sim::Bytes foreign(30, 0);
    for (const auto &[index, value] : {std::pair(0, 0xE5), {1, 0x1F}, {2, 8}, {3, 0x66}, {4, 0x33}, {6, 11}})
        foreign.at(static_cast<size_t>(index)) = static_cast<quint8>(value);
    user.acceptAnyBox();
    for (const Cadence cadence : {Cadence::Ticks, Cadence::Events}) {
        ChooseCadence(cadence);
        layout().injectToPc(sim::WithChecksum(foreign), 1'000); // while the request is on its way
        auto answer = ExchangeForReadBack(readBack(0));
        EXPECT_TRUE(answer.ok());
        EXPECT_EQ(answer.value.at(0), 99) << "not the held one";
        strike(&sim::Faults::lostEcho, 1);
        const double start = NowSeconds();
        answer = ExchangeForReadBack(readBack(0));
        EXPECT_TRUE(answer.ok()) << "the echo alone was lost";
        EXPECT_EQ(answer.value.at(0), 99);
        EXPECT_NEAR(SecondsSince(start), 2, 0.1);
        events.run(2); // or it would be a second handheld's
        strike(&sim::Faults::lostEcho, 1);
        layout().injectToPc(sim::WithChecksum(foreign), 1'000);
        EXPECT_EQ(ExchangeForReadBack(readBack(0)).outcome.how(), End::NoAnswer) << "two: nobody knows which";
        events.run(6);
    }
}

TEST_F(Messages, BrokenInputIsSkippedAndTheNextMessageUnderstood)
{
    const sim::Bytes inputs[] = {{0x01, 0x02, 0x7F}, {0xE5}, {0xE5, 0x00}, {0xE5, 0x41, 1, 2}, {0xE5, 0x01, 5, 5, 5},
        {0xE5, 0x1F, 1, 2, 3}, {0xB4}, {0xA0, 1}, sim::Bytes(300, 0x33), sim::Bytes(300, 0xFF)};
    int address = 1;
    for (const sim::Bytes &input : inputs) {
        receive(input);
        receive({0xBF, 0, static_cast<quint8>(++address), 0});
        events.run(0.3);
        EXPECT_EQ(state().LocoAdrReply, address);
        EXPECT_TRUE(state().RxEmpty);
    }
    sim::Bytes endless{0xE5, 0x01};
    endless.resize(200, 0x11);
    receive(endless); // a message that states the length 1 must not run over its slot
    EXPECT_FALSE(state().RxInMessage);
}

TEST_F(Messages, OneMessageIsDispatchedATickAndAFullRingKeepsTheNewest)
{
    sim::Bytes burst;
    for (quint8 n = 1; n <= 40; ++n)
        burst.insert(burst.end(), {0xBF, 0, n, 0});
    port.close();
    port.open();
    const int before = events.ticks;
    layout().injectToPc(burst);
    events.run(0.02);
    while (state().RxEmpty)
        events.pump();
    const int first = state().LocoAdrReply;
    events.run(3);
    EXPECT_LT(first, 5);
    EXPECT_EQ(state().LocoAdrReply, 40) << "the newest message survives";
    EXPECT_TRUE(state().RxEmpty);
    EXPECT_FALSE(state().RxOverflow);
    EXPECT_GT(events.ticks - before, 30);
}

/// A damaged answer is asked for again; the true one of the first question is then neither taken nor a wonder.
TEST_F(Messages, TheRepetitionOfAQuestionIsNoSecondHandheld)
{
    handheld().settings.present = true;
    handheld().state.spiBuffer.at(0) = 99;
    sim::Bytes damaged(31, 0);
    for (const auto &[index, value] : {std::pair(0, 0xE5), {1, 0x1F}, {2, 8}, {3, 0x66}, {4, 0x33}, {6, 11}})
        damaged.at(static_cast<size_t>(index)) = static_cast<quint8>(value);
    layout().bus.onEnd = [&, seen = 0](const sim::BusMessage &message) mutable {
        if (message.sender == sim::Sender::Pc && ++seen == 1)
            layout().inject(damaged);
    };
    const auto answer = ExchangeForReadBack(readBack(0));
    EXPECT_TRUE(answer.ok());
    EXPECT_EQ(answer.value.at(0), 99);
    EXPECT_TRUE(OnlyOneAnswers(1));
    layout().bus.onEnd = nullptr;
}

TEST_F(Messages, OtherPeerTransfersAreNoReadBack)
{
    sim::Bytes answer(30, 0);
    answer.at(0) = 0xE5;
    answer.at(1) = 0x1F;
    lay({0xED, 6, 3, 4, 5}, Expects::ReadBack);
    events.run(0.2);
    receive(sim::WithChecksum(answer)); // of another device
    receive({0xE5, 0x10, 0x22, 0x66, 0x33, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    events.run(0.2);
    EXPECT_FALSE(TheMessages().readBack());
    answer.at(3) = 0x66;
    answer.at(4) = 0x33;
    answer.push_back(0x11); // a wrong checksum: taken, and known to be doubtful
    receive(answer);
    events.run(0.1);
    ASSERT_TRUE(TheMessages().readBack());
    EXPECT_FALSE(TheMessages().readBack()->sound);
}

/// A second answer, or a second acknowledge to one request, is another handheld's; once is enough to believe nobody.
TEST_F(Messages, WhatNobodyWaitsForIsASecondHandhelds)
{
    handheld().settings.present = true;
    const sim::Bytes ack{0xB4, 0x6D, 0x7F, 0x59};
    struct Row {
        const char *what;
        Request request;
        qint64 delayUs; // of one more acknowledge
        bool foreign;   // a request of another PC before it
        bool strange;
    };
    Request store = Request::toHandheld();
    const Row rows[] = {{"at once", store, 1'000, false, true}, {"later", store, 120'000, false, true},
        {"much later", store, 1'500'000, false, false}, {"another PC's", store, 50'000, true, false},
        {"after a read-back it may be usual", readBack(0), 20'000, false, false}};
    for (const Row &row : rows) {
        TheMessages().forgetSecondHandheld();
        int told = 0;
        TheMessages().onSecondHandheld([&told] { ++told; });
        if (row.request.bytes.at(10) == 0)
            EXPECT_TRUE(ExchangeForAck(row.request).ok());
        else
            EXPECT_TRUE(ExchangeForReadBack(row.request).ok());
        if (row.foreign)
            layout().injectToPc(sim::WithChecksum({0xED, 5, 1, 2}), 1'000);
        layout().injectToPc(ack, row.delayUs);
        layout().injectToPc(ack, row.delayUs + 1'000);
        EXPECT_EQ(OnlyOneAnswers(2), !row.strange) << row.what;
        events.run(0.2); // the second one more is not told again
        EXPECT_EQ(told, row.strange ? 1 : 0) << row.what;
        EXPECT_EQ(ExchangeForAck(store).how(), row.strange ? End::SecondHandheld : End::Done) << row.what;
        events.run(2);
    }
}

TEST_F(Messages, CtsHoldsUpAMessageForThreeSecondsAtMost)
{
    TheLink().InterfaceType = InterfaceOrvanto1;
    layout().holdCts(2'500'000);
    lay({0xBC, 1, 2});
    events.run(2.4);
    EXPECT_FALSE(state().TxWaitEcho);
    EXPECT_TRUE(layout().bus.log.empty());
    events.run(0.4);
    EXPECT_EQ(layout().bus.log.size(), 1U);
    EXPECT_EQ(state().TxLen, -1);

    user.acceptAnyBox();
    layout().holdCts(60'000'000);
    lay({0xBC, 1, 2});
    events.run(2.9);
    EXPECT_FALSE(state().TxWaitEcho);
    events.run(2.4);
    EXPECT_EQ(user.boxes, QStringList{EchoError()});
    EXPECT_EQ(layout().bus.log.size(), 1U);
}

TEST_F(Messages, HighBitsTravelInTheCollectors)
{
    LocoNetMessage plain{};
    plain.at(10) = 0x30;
    for (const size_t i : {6U, 9U, 12U, 29U})
        plain.at(i) = 0xF1;
    LocoNetMessage packed = plain;
    PackHighBits(packed);
    EXPECT_EQ(packed.at(5), 0b1001);
    EXPECT_EQ(packed.at(10), 0x32) << "command bits stay";
    EXPECT_EQ(packed.at(25), 0b1000);
    EXPECT_EQ(packed.at(6), 0x71);
    UnpackHighBits(packed);
    EXPECT_EQ(DataOf(packed), DataOf(plain));
}

} // namespace hr::tests
