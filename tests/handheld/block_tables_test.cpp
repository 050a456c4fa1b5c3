#include "handheld/block_tables.h"

#include "handheld/flash_map.h"
#include "platform/run_control.h"
#include "platform/world.h"
#include "tests/support/virtual_world.h"

#include <algorithm>
#include <random>
#include <span>
#include <vector>

namespace
{

/// A table with its operations, the flash bytes that are its own, and what a write costs.
struct Block {
    const char *name;
    int (*read)();
    int (*write)();
    std::span<int> table;
    int address, bytes;
    int loads, bufferWrites, programs; // with loads, the write must leave the rest of its pages
};

std::array<Block, 3> Blocks()
{
    return {Block{"routes", ReadRoutes, WriteRoutes, std::span(FsDaten).subspan(0, 320), 0x3F0204, 320, 0, 4, 1},
        Block{"list", ReadMagListe, WriteMagListe, std::span(MagListeDaten).subspan(0, 256), 0x3F0808, 256, 0, 4, 1},
        Block{"assignment", ReadMagZuordnung, WriteMagZuordnung, std::span(MagZuordDaten).subspan(1, 2048), 0x0E0001,
            2048, 5, 33, 5}};
}

constexpr qsizetype AssignmentBytes = 5 * qsizetype(FlashPageSize);

QByteArray TableBytes(std::span<const int> table)
{
    QByteArray bytes;
    for (const int value : table)
        bytes += static_cast<char>(value);
    return bytes;
}

} // namespace

class BlockTables : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        std::mt19937 dice(7);
        for (const int start : {MagZuordAddress, RoutesAddress, MagListeAddress}) {
            QByteArray content(AssignmentBytes, '\0');
            std::generate(content.begin(), content.end(), [&dice] { return static_cast<char>(dice()); });
            flash().setBytes(start, content);
        }
    }

    void strike(sim::Fault sim::Faults::*fault, int nth)
    {
        sim::Faults faults;
        (faults.*fault).nth = nth;
        layout().faults.set(faults);
    }

    int executed(int opcode) { return flash().state.executed.at(static_cast<size_t>(opcode)); }
};

TEST_F(BlockTables, AreReadAndWrittenByteForByte)
{
    for (const Block &block : Blocks()) {
        SCOPED_TRACE(block.name);
        const auto own = [&] { return flashBytes(block.address, block.bytes); };
        const QByteArray before = own();
        std::vector<quint8> whole = flash().state.memory;
        EXPECT_EQ(block.read(), 0);
        EXPECT_EQ(TableBytes(block.table), before);
        EXPECT_EQ(block.write(), 0);
        EXPECT_EQ(own(), before);
        EXPECT_TRUE(block.loads == 0 || flash().state.memory == whole);

        flash().state.executed = {};
        for (size_t i = 0; i < block.table.size(); ++i)
            whole.at(static_cast<size_t>(block.address) + i) = static_cast<quint8>(block.table[i] ^= 0xFF);
        EXPECT_EQ(block.write(), 0);
        EXPECT_EQ(own(), TableBytes(block.table));
        EXPECT_TRUE(block.loads == 0 || flash().state.memory == whole);
        EXPECT_EQ(executed(0x53), block.loads);
        EXPECT_EQ(executed(0x84), block.bufferWrites);
        EXPECT_EQ(executed(0x83), block.programs);
    }
    EXPECT_EQ(user.progress.size(), 32 + 2 * 33);
    EXPECT_EQ(user.progress.at(32), QStringLiteral("Schreibe Fahrstraßen 0"));
    EXPECT_EQ(user.progress.constLast(), QStringLiteral("Schreibe Fahrstraßen 32"));
}

TEST_F(BlockTables, ATimeoutIsShownAndTheRestGoesOn)
{
    for (const Block &block : Blocks()) {
        strike(&sim::Faults::lostAck, 2);
        user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
        EXPECT_EQ(block.read(), 1) << block.name;
        EXPECT_EQ(TableBytes(block.table), flashBytes(block.address, block.bytes)) << block.name;
        std::ranges::fill(block.table, 0x5A);
        strike(&sim::Faults::lostAck, 2);
        user.expect(QStringLiteral("Timeout"), QStringLiteral("write_to_spibuf"));
        EXPECT_EQ(block.write(), 1) << block.name;
        EXPECT_EQ(flashBytes(block.address, block.bytes), QByteArray(block.bytes, '\x5A')) << block.name;
    }
}

TEST_F(BlockTables, AReadBrokenOffLeavesTheTable)
{
    user.acceptAnyBox();
    for (const Block &block : Blocks()) {
        for (const int message : {1, 6, 20}) {
            std::ranges::fill(block.table, 77);
            strike(&sim::Faults::hangUp, message);
            const double start = events.timeOfDay();
            EXPECT_EQ(block.read(), 1) << block.name;
            EXPECT_LT(SecondsSince(start), 20 * 0.2) << block.name;
            EXPECT_EQ(std::ranges::count(block.table, 77), block.bytes) << block.name;
            events.run(0.1); // the loss is told
            layout().faults.set({});
            port.replug();
            EXPECT_TRUE(port.open());
        }
    }
    EXPECT_EQ(user.boxes.size(), 9); // each loss is told once, and nothing else
}

TEST_F(BlockTables, TheProgramsEndFinishesTheStartedPageOnly)
{
    for (const double seconds : {0.5, 3.8, 7.1, 13.7}) {
        flash().setBytes(MagZuordAddress, QByteArray(AssignmentBytes, '\x01'));
        MagZuordDaten.fill(2);
        events.after(static_cast<qint64>(seconds * 1e6), RequestEnd);
        EXPECT_EQ(WriteMagZuordnung(), 1);
        EXPECT_EQ(flash().state.programmingPage, MagZuordAddress / FlashPageSize + executed(0x83) - 1);
        EXPECT_EQ(flashBytes(MagZuordAddress, AssignmentBytes).count('\x02'), executed(0x83) * 512 - 1);
        EXPECT_EQ(executed(0x53), executed(0x83));
        flash().state.executed = {};
        ResetRunControl();
    }
}
