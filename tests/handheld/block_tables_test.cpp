#include "handheld/block_tables.h"

#include "handheld/flash_map.h"
#include "handheld/record_kinds.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <algorithm>
#include <random>
#include <vector>

namespace hr::tests
{

namespace
{

/// A table with its operations, the flash bytes that are its own, and what a write costs.
struct Block {
    const char *name;
    std::function<Result<std::vector<int>>()> read;
    std::function<Outcome(const std::vector<int> &)> write;
    int address, bytes;
    int loads, bufferWrites, programs; // with loads, the write must leave the rest of its pages
};

template <typename Table> Result<std::vector<int>> AsVector(const Result<Table> &read)
{
    return {{read.value.begin(), read.value.end()}, read.outcome};
}

template <typename Table> Table AsTable(const std::vector<int> &values)
{
    Table table{};
    std::ranges::copy(values, table.begin());
    return table;
}

constexpr qsizetype AssignmentBytes = 5 * qsizetype(FlashPageSize);

QByteArray TableBytes(const std::vector<int> &table)
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

    std::array<Block, 3> blocks()
    {
        const auto agreed = Patience::Agreed;
        const auto quiet = [](int) {};
        return {Block{"routes", [this] { return AsVector(ReadRouteTable(image)); },
                    [=, this](const auto &v) { return WriteRouteTable(image, AsTable<Routes>(v), agreed).outcome; },
                    0x3F0204, 320, 0, 4, 1},
            Block{"list", [this] { return AsVector(ReadAccessoryList(image)); },
                [=, this](
                    const auto &v) { return WriteAccessoryList(image, AsTable<AccessoryList>(v), agreed).outcome; },
                0x3F0808, 256, 0, 4, 1},
            Block{"assignment", [=, this] { return AsVector(ReadAssignment(image, quiet)); },
                [=, this](const auto &v) { return WriteAssignment(image, AsTable<Assignment>(v), agreed).outcome; },
                0x0E0001, 2048, 5, 33, 5}};
    }

    SpiImage image{};
};

TEST_F(BlockTables, AreReadAndWrittenByteForByte)
{
    for (const Block &block : blocks()) {
        SCOPED_TRACE(block.name);
        const auto own = [&] { return flashBytes(block.address, block.bytes); };
        const QByteArray before = own();
        std::vector<quint8> whole = flash().state.memory;
        std::vector<int> table = block.read().value;
        EXPECT_EQ(TableBytes(table), before);
        EXPECT_TRUE(block.write(table).ok());
        EXPECT_EQ(own(), before);
        EXPECT_TRUE(block.loads == 0 || flash().state.memory == whole);

        flash().state.executed = {};
        for (size_t i = 0; i < table.size(); ++i)
            whole.at(static_cast<size_t>(block.address) + i) = static_cast<quint8>(table.at(i) ^= 0xFF);
        EXPECT_TRUE(block.write(table).ok());
        EXPECT_EQ(own(), TableBytes(table));
        EXPECT_TRUE(block.loads == 0 || flash().state.memory == whole);
        EXPECT_EQ(executed(0x53), block.loads);
        EXPECT_EQ(executed(0x84), block.bufferWrites);
        EXPECT_EQ(executed(0x83), block.programs);
    }
}

TEST_F(BlockTables, ATimeoutIsShownAndTheRestGoesOn)
{
    for (const Block &block : blocks()) {
        strike(&sim::Faults::lostAck, 2);
        user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
        const auto read = block.read();
        EXPECT_EQ(read.outcome.how(), End::NoAnswer) << block.name;
        EXPECT_EQ(TableBytes(read.value), flashBytes(block.address, block.bytes)) << block.name;
        strike(&sim::Faults::lostAck, 2);
        user.expect(QStringLiteral("Timeout"), QStringLiteral("write_to_spibuf"));
        EXPECT_EQ(block.write(std::vector<int>(read.value.size(), 0x5A)).how(), End::NoAnswer) << block.name;
        EXPECT_EQ(flashBytes(block.address, block.bytes), QByteArray(block.bytes, '\x5A')) << block.name;
    }
}

TEST_F(BlockTables, AHangUpEndsAReadAtOnce)
{
    user.acceptAnyBox();
    for (const Block &block : blocks()) {
        for (const int message : {1, 6, 20}) {
            strike(&sim::Faults::hangUp, message);
            const double start = NowSeconds();
            EXPECT_TRUE(block.read().outcome.brokenOff()) << block.name;
            EXPECT_LT(SecondsSince(start), 20 * 0.2) << block.name;
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
    Assignment twos{};
    twos.fill(2);
    for (const double seconds : {0.5, 3.8, 7.1, 13.7}) {
        flash().setBytes(MagZuordAddress, QByteArray(AssignmentBytes, '\x01'));
        events.after(static_cast<qint64>(seconds * 1e6), RequestEnd);
        EXPECT_EQ(WriteAssignment(image, twos, Patience::Agreed).outcome.how(), End::ProgramEnds);
        EXPECT_EQ(flash().state.programmingPage, MagZuordAddress / FlashPageSize + executed(0x83) - 1);
        EXPECT_EQ(flashBytes(MagZuordAddress, AssignmentBytes).count('\x02'), executed(0x83) * 512 - 1);
        EXPECT_EQ(executed(0x53), executed(0x83));
        flash().state.executed = {};
        ResetRunControl();
    }
}

/// The chip says that a page was not loaded: that page is not programmed and no further one is begun.
TEST_F(BlockTables, AnAssignmentEndsAtAPageThatIsNotLoaded)
{
    Assignment twos{};
    twos.fill(2);
    for (const int goodPages : {0, 2}) {
        flash().setBytes(MagZuordAddress, QByteArray(AssignmentBytes, '\x01'));
        flash().state.buffer1.fill(0xA5);
        int loads = 0;
        layout().bus.onEnd = [&](const sim::BusMessage &message) {
            const bool load = message.bytes.size() == 31 && message.bytes.at(6) == 0x53;
            loads += load ? 1 : 0;
            layout().faults.faults.missedRequest.probability = load && loads > goodPages ? 1 : 0;
        };
        user.expect(QStringLiteral("Timeout"), QStringLiteral("move_spibuf_to_buf1"));
        user.expect(QStringLiteral("Der Handregler hat die Speicherseite nicht geladen.\r"
                                   "Damit die Nachbarn unversehrt bleiben, wurde sie nicht geschrieben."),
            QStringLiteral("Fehler!"));
        const PageState how = WriteAssignment(image, twos, Patience::Agreed).page;
        layout().bus.onEnd = nullptr;
        layout().faults.set({});
        EXPECT_EQ(how, goodPages == 0 ? PageState::NotLoaded : PageState::Unanswered);
        EXPECT_EQ(executed(0x83), goodPages);
        EXPECT_EQ(flashBytes(MagZuordAddress, AssignmentBytes).count('\xA5'), 0);
        flash().state.executed = {};
    }
}

/// As agreed the rest of the page is what buffer 1 holds; a job that loses nothing keeps it.
TEST_F(BlockTables, ACarefulWriteKeepsTheRestOfAPageThatIsNotLoadedAsAgreed)
{
    const std::pair<RecordId, RecordValue> rows[] = {{{RecordKind::RouteTable, 0}, Routes()},
        {{RecordKind::PlaceTable, 0}, AccessoryList()},
        {{RecordKind::LocoSymbol, 2}, EmptyPicture(SymbolKind::Loco)}};
    for (const auto &[id, value] : rows) {
        for (const bool careful : {false, true}) {
            flash().setBytes(PageAddressOf(id), QByteArray(512, '\x77'));
            flash().state.buffer1.fill(0xA5);
            const Patience patience = careful ? Patience::Verified : Patience::Agreed;
            EXPECT_TRUE(WriteRecord(image, id, value, patience).ok());
            EXPECT_EQ(flashBytes(PageAddressOf(id) + 500, 12), QByteArray(12, careful ? '\x77' : '\xA5'));
        }
    }
}

} // namespace hr::tests
