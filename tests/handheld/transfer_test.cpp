#include "handheld/transfer.h"

#include "link/open_port.h"
#include "platform/run_control.h"
#include "tests/support/virtual_world.h"

#include <numeric>

class Transfer : public VirtualWorld
{
protected:
    void SetUp() override { connectDirectly(); }

    /// Every command once, with its status and the name its time-out box is titled with.
    struct Command {
        const char *title;
        std::function<void(int &)> run;
    };
    static std::vector<Command> commands()
    {
        return {{"read_flash_to_spibuf", [](int &status) { read_flash_to_spibuf(0x1234, 10, status); }},
            {"read_spibuf", [](int &status) { read_spibuf(20, status); }},
            {"write_to_spibuf", [](int &status) { write_to_spibuf(0, 0, status); }},
            {"move_spibuf_to_buf1", [](int &status) { move_spibuf_to_buf1(512, status); }},
            {"move_spibuf_to_buf1", [](int &status) { write_buf1_to_flash(0x200000, status); }}};
    }

    static sim::Bytes message(std::initializer_list<std::pair<size_t, int>> bytes)
    {
        sim::Bytes m(30, 0);
        m.at(0) = 0xED;
        m.at(1) = 0x1F;
        m.at(2) = 0x08;
        m.at(3) = 0x66;
        m.at(4) = 0x33;
        for (const auto &[index, value] : bytes)
            m.at(index) = static_cast<quint8>(value);
        return sim::WithChecksum(m);
    }
};

TEST_F(Transfer, MessagesAreLaidByteForByte)
{
    std::iota(SpiBuf.begin(), SpiBuf.end(), 100); // 100, 101, ... crosses 127 at index 28
    int status = 1;
    write_to_spibuf(60, 68, status);
    EXPECT_EQ(status, 0);
    sim::Bytes expected = message({{5, 0x0F}, {10, 0x1F}, {15, 0x0F}, {20, 0x7F}, {25, 0x47}, {29, 68}});
    const size_t data[] = {6, 7, 8, 9, 11, 12, 13, 14, 16, 17, 18, 19, 21, 22, 23, 24, 26, 27, 28};
    for (size_t i = 0; i < 19; ++i)
        expected.at(data[i]) = static_cast<quint8>((160 + i) & 0x7F);
    expected.pop_back();
    expected = sim::WithChecksum(expected);
    EXPECT_EQ(layout().bus.log.at(0).bytes, expected);

    layout().bus.log.clear();
    read_flash_to_spibuf(0x3F8081, 128, status);
    EXPECT_EQ(layout().bus.log.at(0).bytes,
        message({{5, 0x0D}, {6, 0x68}, {7, 0x3F}, {8, 0x00}, {9, 0x01}, {10, 0x10}, {25, 0x08}, {29, 0x08}}));
    layout().bus.log.clear();
    read_spibuf(127, status);
    EXPECT_EQ(layout().bus.log.at(0).bytes, message({{10, 0x20}, {15, 0x10}, {20, 0x70}, {25, 0x70}}));
    layout().bus.log.clear();
    write_buf1_to_flash(0x0F3FE0, status);
    EXPECT_EQ(
        layout().bus.log.at(0).bytes, message({{5, 0x01}, {6, 0x03}, {7, 0x0F}, {8, 0x3E}, {10, 0x10}, {29, 4}}));
}

TEST_F(Transfer, ReadsTheBytesThatAreThere)
{
    QByteArray content;
    for (int i = 0; i < 600; ++i)
        content.append(static_cast<char>(i * 7));
    flash().setBytes(0x010000, content);
    for (const int n : {1, 30, 64, 98, 128}) {
        EXPECT_EQ(ReadFlash(0x010000 + 450, n), 0);
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(SpiBuf.at(static_cast<size_t>(8 + i)), static_cast<quint8>(content.at(450 + i))) << n;
    }
}

TEST_F(Transfer, ThreeTicksAMessageOnAQuietBus)
{
    const int ticks = events.ticks;
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(ReadFlash(0, 64), 0);
    EXPECT_LE(events.ticks - ticks, 10 * 5 * 3);
}

TEST_F(Transfer, SilenceEndsEachCommandAfterTwoSecondsWithItsName)
{
    handheld().settings.present = false;
    for (const Command &command : commands()) {
        const double start = events.timeOfDay();
        user.expect(QStringLiteral("Timeout"), QString::fromUtf8(command.title));
        int status = 0;
        command.run(status);
        EXPECT_EQ(status, 1);
        EXPECT_NEAR(events.timeOfDay() - start, 2.03, 0.03) << command.title;
    }
    handheld().settings.present = true;
    int status = 1;
    read_spibuf(0, status);
    EXPECT_EQ(status, 0);
}

TEST_F(Transfer, OnlyCode127EndsTheWait)
{
    handheld().settings.ackCode = 0x7E;
    user.expect(QStringLiteral("Timeout"), QStringLiteral("move_spibuf_to_buf1"));
    int status = 0;
    move_spibuf_to_buf1(0, status);
    EXPECT_EQ(status, 1);
}

TEST_F(Transfer, AWaitAcrossMidnightEndsOnlyWithTheAnswer)
{
    handheld().settings.answerDelayUs = 30'000'000;
    events.setTimeOfDay(86'399.5);
    int status = 1;
    move_spibuf_to_buf1(0, status);
    EXPECT_EQ(status, 0);
}

TEST_F(Transfer, HangUpEndsEachCommandAtOnceWithOneMessage)
{
    for (const Command &command : commands()) {
        handheld().settings.present = false;
        events.after(300'000, [this] { port.hangUp(); });
        user.acceptAnyBox();
        user.boxes.clear();
        const double start = events.timeOfDay();
        int status = 0;
        command.run(status);
        EXPECT_EQ(status, 1);
        EXPECT_LT(events.timeOfDay() - start, 0.5);
        events.run(3);
        EXPECT_EQ(user.boxes.size(), 1) << command.title;
        EXPECT_FALSE(HandreglerGefunden);
        port.replug();
        handheld().settings.present = true;
        ASSERT_TRUE(port.open());
        read_spibuf(0, status);
        EXPECT_EQ(status, 0);
    }
}

TEST_F(Transfer, FaultsOfTheLineEndInATimeoutAndTheNextCommandWorks)
{
    using Setter = void (*)(sim::Faults &);
    const Setter setters[] = {[](sim::Faults &f) { f.lostEcho.nth = 1; }, [](sim::Faults &f) { f.lostAck.nth = 1; },
        [](sim::Faults &f) { f.otherAck.nth = 1; }, [](sim::Faults &f) { f.changedEcho.nth = 1; },
        [](sim::Faults &f) { f.lostByte.nth = 3; }, [](sim::Faults &f) { f.doubledByte.nth = 7; },
        [](sim::Faults &f) { f.foreignAfterEcho.nth = 1; }};
    for (const Setter set : setters) {
        sim::Faults faults;
        set(faults);
        layout().faults.set(faults);
        user.acceptAnyBox();
        int status = 0;
        move_spibuf_to_buf1(1024, status);
        EXPECT_EQ(status, 1);
        EXPECT_TRUE(user.boxes.contains(QStringLiteral("move_spibuf_to_buf1: Timeout")));
        layout().faults.set({});
        events.run(0.5);
        EXPECT_EQ(ReadFlash(0, 64), 0);
    }
}

TEST_F(Transfer, LateAndTornTrafficIsUnderstood)
{
    sim::Faults faults;
    faults.tornEcho.nth = 1;
    faults.foreignBeforeEcho.nth = 2;
    faults.lateByte.nth = 90;
    layout().faults.set(faults);
    EXPECT_EQ(ReadFlash(0, 64), 0);
}
