#include "link/message_layer.h"

#include "link/exchange.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

namespace
{

QString EchoError()
{
    return QStringLiteral("LocoNet Fehler: Message kann nicht gesendet werden!");
}

} // namespace

class MessageLayer : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        handheld().settings.present = false;
    }

    static void lay(const std::vector<int> &bytes)
    {
        LocoNetMessage message{};
        std::copy(bytes.begin(), bytes.end(), message.begin());
        ASSERT_TRUE(LayMessage(message, static_cast<int>(bytes.size()) - 1).ok());
    }

    void receive(const sim::Bytes &bytes)
    {
        layout().injectToPc(bytes);
        events.run(0.049);
    }
};

TEST_F(MessageLayer, SlotIsFreedByTheExactEchoOnly)
{
    lay({0xBF, 1, 2});
    events.run(0.2);
    ASSERT_EQ(layout().bus.log.size(), 1U);
    EXPECT_EQ(layout().bus.log.at(0).bytes, (sim::Bytes{0xBF, 1, 2, 0xFF ^ 0xBF ^ 1 ^ 2}));
    EXPECT_EQ(TxLen, -1);
    EXPECT_EQ(LocoAdrReply, 130);
}

TEST_F(MessageLayer, ADifferentEchoCountsAsNone)
{
    sim::Faults faults;
    faults.changedEcho.nth = 1;
    layout().faults.set(faults);
    user.acceptAnyBox();
    lay({0xBC, 1, 2});
    events.run(1.9);
    EXPECT_EQ(TxLen, 2);
    events.run(0.3);
    EXPECT_EQ(TxLen, -1);
    EXPECT_EQ(user.boxes, QStringList{EchoError()});
    EXPECT_EQ(layout().bus.log.size(), 1U) << "a message is never sent again";
}

TEST_F(MessageLayer, TheEchosChecksumCountsToo)
{
    sim::Faults faults;
    faults.lostEcho.nth = 1;
    layout().faults.set(faults);
    user.acceptAnyBox();
    lay({0xBC, 1, 2});
    events.run(0.3);
    receive({0xBC, 1, 2, 0x00});
    events.run(0.2);
    EXPECT_EQ(TxLen, 2) << "not the echo";
    receive({0xBC, 1, 2, 0xFF ^ 0xBC ^ 1 ^ 2});
    events.run(0.2);
    EXPECT_EQ(TxLen, -1);
}

TEST_F(MessageLayer, EchoTimeLimit)
{
    user.acceptAnyBox();
    strike(&sim::Faults::lostEcho, 1);
    lay({0x82});
    events.run(2.0); // written at the first tick, 50 ms after the start
    EXPECT_TRUE(user.boxes.isEmpty());
    events.run(0.15);
    EXPECT_EQ(user.boxes, QStringList{EchoError()});
}

TEST_F(MessageLayer, AMessageIsLaidOnlyIntoAFreeSlotOfAnOpenPort)
{
    EXPECT_TRUE(LayMessage({0xBF, 1, 2}, 2).ok());
    EXPECT_EQ(LayMessage({0xBF, 3, 4}, 2).how(), End::NotSent);
    EXPECT_EQ(TxMsg.at(1), 1);
    events.run(0.3);
    port.close();
    EXPECT_EQ(LayMessage({0xBF, 3, 4}, 2).how(), End::PortLost);
}

TEST_F(MessageLayer, TheTapSeesEveryMessageWithItsChecksumsVerdict)
{
    QList<std::pair<int, bool>> seen;
    TapTraffic([&](const Traffic &traffic) { seen += {traffic.bytes[0], traffic.checksumRight}; });
    lay({0xBC, 1, 2});
    events.run(0.3);
    receive({0xA0, 1, 2, 0x5C});
    receive({0xA0, 1, 2, 0x5D});
    receive({0x82, 0x7D});
    EXPECT_EQ(seen, (QList<std::pair<int, bool>>{{0xBC, true}, {0xA0, true}, {0xA0, false}, {0x82, true}}));
}

TEST_F(MessageLayer, AnAnswerThatComesLateIsDropped)
{
    handheld().settings.present = true;
    Request first = Request::toHandheld();
    first.bytes.at(10) = 0x20; // a read-back
    Request second = first;
    second.bytes.at(25) = 0x70; // from another place
    for (quint8 i = 0; i < 40; ++i)
        handheld().state.spiBuffer.at(i) = i;
    for (const int delayMs : {1990, 2100, 2200, 2280}) { // behind the request's 60 ms on the line
        handheld().settings.answerDelayUs = delayMs * 1000;
        EXPECT_EQ(ExchangeForReadBack(first).outcome.how(), End::NoAnswer) << delayMs;
        handheld().settings.answerDelayUs = 2'000;
        const auto answer = ExchangeForReadBack(second);
        EXPECT_TRUE(answer.ok()) << delayMs;
        EXPECT_EQ(answer.value.at(0), 7) << delayMs << ": the old answer has 0";
        EXPECT_EQ(ExchangeForReadBack(first).value.at(0), 0);
    }
}

TEST_F(MessageLayer, AnOccupiedSlotIsAwaitedForThreeSeconds)
{
    lay({0xBC, 1, 2});
    TxWaitEcho = true; // for an echo that never comes, and no box that frees it
    TxTime = NowSeconds() + 1'000;
    const double start = NowSeconds();
    EXPECT_EQ(SendOnly(Request::toHandheld()).how(), End::NotSent);
    EXPECT_NEAR(SecondsSince(start), 3, 0.1);
}

TEST_F(MessageLayer, ForeignMessageBeforeTheEchoChangesNothing)
{
    lay({0xBC, 1, 2});
    events.run(0.051);
    EXPECT_TRUE(TxWaitEcho);
    layout().injectToPc({0xA0, 1, 2, 3});
    layout().faults.set({});
    events.run(0.2);
    EXPECT_EQ(TxLen, -1);
    EXPECT_FALSE(TxWaitEcho);
}

TEST_F(MessageLayer, OnlyTheFirstMessageAfterTheEchoIsTheAnswer)
{
    struct Row {
        sim::Bytes message;
        int code;
    };
    const Row rows[] = {{{0xB4, 0x6D, 0x7F, 0x59}, 0x7F}, {{0xB4, 0x3D, 0x7F, 0x09}, -7}, {{0x82, 0x7D}, -7}};
    for (const Row &row : rows) {
        LastAckCode = -7;
        AwaitingAck = true;
        AckOpcode = OpcodeImmediate;
        receive(row.message);
        events.run(0.1);
        EXPECT_EQ(LastAckCode, row.code);
        EXPECT_FALSE(AwaitingAck);
        receive({0xB4, 0x6D, 0x11, 0x37});
        events.run(0.1);
        EXPECT_EQ(LastAckCode, row.code) << "a late acknowledge must not count";
    }
}

TEST_F(MessageLayer, BrokenInputIsSkippedAndTheNextMessageUnderstood)
{
    const sim::Bytes inputs[] = {{0x01, 0x02, 0x7F}, {0xE5}, {0xE5, 0x00}, {0xE5, 0x41, 1, 2}, {0xE5, 0x01, 5, 5, 5},
        {0xE5, 0x1F, 1, 2, 3}, {0xB4}, {0xA0, 1}, sim::Bytes(300, 0x33), sim::Bytes(300, 0xFF)};
    int address = 1;
    for (const sim::Bytes &input : inputs) {
        receive(input);
        receive({0xBF, 0, static_cast<quint8>(++address), 0});
        events.run(0.3);
        EXPECT_EQ(LocoAdrReply, address);
        EXPECT_TRUE(RxEmpty);
    }
    sim::Bytes endless{0xE5, 0x01};
    endless.resize(200, 0x11);
    receive(endless); // a message that states the length 1 must not run over its slot
    EXPECT_FALSE(RxInMessage);
}

TEST_F(MessageLayer, OneMessageIsDispatchedATickAndAFullRingKeepsTheNewest)
{
    sim::Bytes burst;
    for (quint8 n = 1; n <= 40; ++n)
        burst.insert(burst.end(), {0xBF, 0, n, 0});
    port.close();
    port.open();
    const int before = events.ticks;
    RxEmpty = true;
    layout().injectToPc(burst);
    events.run(0.02);
    while (RxEmpty)
        events.pump();
    const int first = LocoAdrReply;
    events.run(3);
    EXPECT_LT(first, 5);
    EXPECT_EQ(LocoAdrReply, 40) << "the newest message survives";
    EXPECT_TRUE(RxEmpty);
    EXPECT_FALSE(RxOverflow);
    EXPECT_GT(events.ticks - before, 30);
}

TEST_F(MessageLayer, OtherPeerTransfersAreNoReadBack)
{
    sim::Bytes answer(30, 0);
    answer.at(0) = 0xE5;
    answer.at(1) = 0x1F;
    receive(sim::WithChecksum(answer));
    events.run(0.1);
    EXPECT_EQ(SpiReadDone, 0) << "nobody has asked";
    SpiReadWanted = true;
    receive({0xE5, 0x10, 0x22, 0x22, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    events.run(0.1);
    EXPECT_EQ(SpiReadDone, 0);
    answer.push_back(0x11); // a wrong checksum: taken, and known to be doubtful
    receive(answer);
    events.run(0.1);
    EXPECT_EQ(SpiReadDone, 1);
    EXPECT_FALSE(SpiReadSound);
}

TEST_F(MessageLayer, CtsHoldsUpAMessageForThreeSecondsAtMost)
{
    InterfaceType = InterfaceOrvanto1;
    layout().holdCts(2'500'000);
    lay({0xBC, 1, 2});
    events.run(2.4);
    EXPECT_FALSE(TxWaitEcho);
    EXPECT_TRUE(layout().bus.log.empty());
    events.run(0.4);
    EXPECT_EQ(layout().bus.log.size(), 1U);
    EXPECT_EQ(TxLen, -1);

    user.acceptAnyBox();
    layout().holdCts(60'000'000);
    lay({0xBC, 1, 2});
    events.run(2.9);
    EXPECT_FALSE(TxWaitEcho);
    events.run(2.4);
    EXPECT_EQ(user.boxes, QStringList{EchoError()});
    EXPECT_EQ(layout().bus.log.size(), 1U);
}

TEST_F(MessageLayer, HighBitsTravelInTheCollectors)
{
    TxMsg = {};
    TxMsg.at(10) = 0x30;
    for (const size_t i : {6U, 9U, 12U, 29U})
        TxMsg.at(i) = 0xF1;
    LocoNetMessage plain = TxMsg;
    PackHighBits(TxMsg);
    EXPECT_EQ(TxMsg.at(5), 0b1001);
    EXPECT_EQ(TxMsg.at(10), 0x32) << "command bits stay";
    EXPECT_EQ(TxMsg.at(25), 0b1000);
    EXPECT_EQ(TxMsg.at(6), 0x71);
    LocoNetMessage received = TxMsg;
    UnpackHighBits(received);
    for (const size_t i : {6U, 9U, 12U, 29U, 7U})
        EXPECT_EQ(received.at(i), plain.at(i));
}
