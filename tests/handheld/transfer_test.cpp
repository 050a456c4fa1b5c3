#include "handheld/page_sequence.h"

#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <numeric>

namespace hr::tests
{

class Transfer : public VirtualWorld
{
protected:
    void SetUp() override { connectDirectly(); }

    /// Every command once, and the name its time-out box is titled with.
    struct Command {
        const char *title;
        std::function<Outcome()> run;
    };
    static std::vector<Command> commands()
    {
        return {{"read_flash_to_spibuf", [] { return read_flash_to_spibuf(0x1234, 10); }},
            {"read_spibuf",
                [] {
                    SpiImage image{};
                    return read_spibuf(image, 20);
                }},
            {"write_to_spibuf", [] { return write_to_spibuf({}, 0, 0); }},
            {"move_spibuf_to_buf1", [] { return move_spibuf_to_buf1(512); }},
            {"move_spibuf_to_buf1", [] { return write_buf1_to_flash(0x200000); }}};
    }

    SpiImage image{};

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
    std::iota(image.begin(), image.end(), 100); // 100, 101, ... crosses 127 at index 28
    EXPECT_TRUE(write_to_spibuf(image, 60, 68).ok());
    sim::Bytes expected = message({{5, 0x0F}, {10, 0x1F}, {15, 0x0F}, {20, 0x7F}, {25, 0x47}, {29, 68}});
    const size_t data[] = {6, 7, 8, 9, 11, 12, 13, 14, 16, 17, 18, 19, 21, 22, 23, 24, 26, 27, 28};
    for (size_t i = 0; i < 19; ++i)
        expected.at(data[i]) = static_cast<quint8>((160 + i) & 0x7F);
    expected.pop_back();
    expected = sim::WithChecksum(expected);
    EXPECT_EQ(layout().bus.log.at(0).bytes, expected);

    layout().bus.log.clear();
    EXPECT_TRUE(read_flash_to_spibuf(0x3F8081, 128).ok());
    EXPECT_EQ(layout().bus.log.at(0).bytes,
        message({{5, 0x0D}, {6, 0x68}, {7, 0x3F}, {8, 0x00}, {9, 0x01}, {10, 0x10}, {25, 0x08}, {29, 0x08}}));
    layout().bus.log.clear();
    EXPECT_TRUE(read_spibuf(image, 127).ok());
    EXPECT_EQ(layout().bus.log.at(0).bytes, message({{10, 0x20}, {15, 0x10}, {20, 0x70}, {25, 0x70}}));
    layout().bus.log.clear();
    EXPECT_TRUE(write_buf1_to_flash(0x0F3FE0).ok());
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
        EXPECT_TRUE(ReadFlash(image, 0x010000 + 450, n).ok());
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(image.at(static_cast<size_t>(8 + i)), static_cast<quint8>(content.at(450 + i))) << n;
    }
}

TEST_F(Transfer, ThreeTicksAMessageOnAQuietBus)
{
    const int ticks = events.ticks;
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(ReadFlash(image, 0, 64).ok());
    EXPECT_LE(events.ticks - ticks, 10 * 5 * 3);
}

TEST_F(Transfer, SilenceEndsEachCommandAfterTwoSecondsWithItsName)
{
    handheld().settings.present = false;
    for (const Command &command : commands()) {
        events.run(5); // so long the line is left alone after the command before
        const double start = NowSeconds();
        user.expect(QStringLiteral("Timeout"), QString::fromUtf8(command.title));
        const Outcome outcome = command.run();
        EXPECT_EQ(outcome.how(), End::NoAnswer);
        EXPECT_EQ(outcome.at(), QString::fromUtf8(command.title));
        EXPECT_NEAR(SecondsSince(start), 2.03, 0.03) << command.title;
    }
    handheld().settings.present = true;
    EXPECT_TRUE(read_spibuf(image, 0).ok());
}

TEST_F(Transfer, OnlyCode127EndsTheWait)
{
    handheld().settings.ackCode = 0x7E;
    user.expect(QStringLiteral("Timeout"), QStringLiteral("move_spibuf_to_buf1"));
    EXPECT_EQ(move_spibuf_to_buf1(0).how(), End::Refused);
}

TEST_F(Transfer, TheChipTellsWhetherPageAndBufferAreEqual)
{
    EXPECT_TRUE(move_spibuf_to_buf1(1024).ok());
    EXPECT_TRUE(PageEqualsBuffer1(1024).value);
    flash().setBytes(1500, "x");
    EXPECT_FALSE(PageEqualsBuffer1(1024).value);
    EXPECT_TRUE(PageEqualsBuffer1(1024).ok());
    handheld().settings.present = false;
    EXPECT_FALSE(PageEqualsBuffer1(1024).ok()); // without a box
}

TEST_F(Transfer, HangUpEndsEachCommandAtOnceWithOneMessage)
{
    for (const Command &command : commands()) {
        handheld().settings.present = false;
        events.after(300'000, [this] { port.hangUp(); });
        user.acceptAnyBox();
        user.boxes.clear();
        const double start = NowSeconds();
        EXPECT_EQ(command.run().how(), End::PortLost);
        EXPECT_LT(SecondsSince(start), 0.5);
        events.run(3);
        EXPECT_EQ(user.boxes.size(), 1) << command.title;
        EXPECT_FALSE(TheLink().HandreglerGefunden);
        port.replug();
        handheld().settings.present = true;
        ASSERT_TRUE(port.open());
        EXPECT_TRUE(read_spibuf(image, 0).ok());
    }
}

TEST_F(Transfer, LateAndTornTrafficIsUnderstood)
{
    sim::Faults faults;
    faults.tornEcho.nth = 1;
    faults.foreignBeforeEcho.nth = 2;
    faults.lateByte.nth = 90;
    layout().faults.set(faults);
    EXPECT_TRUE(ReadFlash(image, 0, 64).ok());
}

} // namespace hr::tests
