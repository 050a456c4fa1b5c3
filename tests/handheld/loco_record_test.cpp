#include "handheld/loco_record.h"

#include "handheld/flash_map.h"
#include "handheld/page_sequence.h"
#include "handheld/symbol_storage.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

class LocoRecords : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        for (int address = 0; address < 1024; address += 2)
            flash().setBytes(address, QByteArray("\x0A\x27", 2)); // "A " everywhere
    }

    static LocoRecord someRecord(int symbol = 17)
    {
        LocoRecord record{FitLocoName(QStringLiteral("Lok ä")), {}, {}, 1, symbol};
        for (size_t f = 1; f < FunctionCount; ++f)
            record.symbols.at(f) = static_cast<int>(f) * 10;
        for (const size_t f : {0U, 7U, 8U, 23U, 24U})
            record.modes.at(f) = 1;
        return record;
    }

    Outcome write(int loco, const LocoRecord &record)
    {
        return WriteLoco(image, loco, record, Patience::Agreed).outcome;
    }

    int programs() { return executed(0x83); }

    SpiImage image{};
};

TEST_F(LocoRecords, AWriteChangesItsSixtyFourBytesOnly)
{
    const QByteArray before = flashBytes(0, 2048);
    image.fill(0xAB); // bytes that the record does not define come from here
    EXPECT_TRUE(write(9, someRecord()).ok());
    QByteArray expected = before;
    QByteArray record(64, '\xAB');
    const char name[] = {21, 24, 20, 39, 36};
    record.replace(0, 21, QByteArray(name, 5).append(16, 39));
    record.replace(28, 4, QByteArray("\x81\x01\x80\x81", 4));
    for (int f = 1; f <= 24; ++f)
        record[32 + f] = static_cast<char>(f * 10);
    record[61] = 17;
    expected.replace(576, 64, record);
    EXPECT_EQ(flashBytes(0, 2048).toHex(' ').toStdString(), expected.toHex(' ').toStdString());
    EXPECT_EQ(programs(), 1);

    const Result<LocoRecord> read = ReadLoco(image, 9);
    EXPECT_TRUE(read.ok());
    LocoRecord wanted = someRecord();
    wanted.name = QStringLiteral("LOK Ä                ");
    EXPECT_EQ(read.value, wanted);
}

TEST_F(LocoRecords, AnEmptyRecordIsReadWithOneSlice)
{
    const Result<LocoRecord> read = ReadLoco(image, 500);
    EXPECT_EQ(read.value.name, QString(21, QChar(0xFF)));
    EXPECT_EQ(handheld().state.readBacks, 1);
    EXPECT_TRUE(write(12, read.value).ok());
    EXPECT_EQ(flashBytes(768, 21), QByteArray(21, '\xFF'));
}

TEST_F(LocoRecords, DeleteTakesThreeMessagesAndEmptiesOnlyItsRecord)
{
    const QByteArray before = flashBytes(0, 1024);
    EXPECT_TRUE(DeleteLoco(image, 3, Patience::Agreed).ok());
    EXPECT_EQ(messagesOnBus(0xED), 3);
    EXPECT_EQ(flashBytes(192, 15), QByteArray(15, '\xFF'));
    EXPECT_EQ(flashBytes(0, 192), before.left(192));
    EXPECT_EQ(flashBytes(256, 768), before.mid(256));
}

TEST_F(LocoRecords, ATimeoutDoesNotStopASingleWrite)
{
    strike(&sim::Faults::lostAck, 2);
    user.expect(QStringLiteral("Timeout"), QStringLiteral("write_to_spibuf"));
    EXPECT_EQ(write(9, someRecord()).how(), End::NoAnswer);
    EXPECT_EQ(messagesOnBus(0xED), 6);
    EXPECT_EQ(programs(), 1);
}

TEST_F(LocoRecords, TheEndOfTheProgramNeverCutsAPageSequence)
{
    for (int delayMs = 0; delayMs < 1200; delayMs += 50) {
        ResetRunControl();
        const QByteArray before = flashBytes(512, 64);
        const int symbol = delayMs / 50 + 1;
        events.after(delayMs * 1000, RequestEnd);
        const int programsBefore = programs();
        EXPECT_TRUE(write(8, someRecord(symbol)).ok()) << delayMs;
        EXPECT_EQ(programs(), programsBefore + 1);
        EXPECT_EQ(static_cast<int>(flashBytes(512, 64).at(61)), symbol);
        EXPECT_NE(flashBytes(512, 64), before);
    }
    const int count = programs(); // a sequence that has not begun does not begin any more
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
    EXPECT_EQ(write(8, someRecord()).how(), End::ProgramEnds);
    EXPECT_EQ(programs(), count);
}

TEST_F(LocoRecords, HangUpAtAnyMessageLeavesTheOldPageOrTheNew)
{
    for (int n = 1; n <= 6; ++n) {
        const QByteArray before = flashBytes(512, 512);
        strike(&sim::Faults::hangUp, n);
        user.acceptAnyBox();
        EXPECT_EQ(write(8, someRecord(40 + n)).how(), End::PortLost);
        EXPECT_EQ(flashBytes(512, 512), before) << n;
        layout().faults.set({});
        port.replug();
        ASSERT_TRUE(port.open());
    }
}

TEST_F(LocoRecords, SymbolsMoveWithinTheirSlots)
{
    struct Row {
        SymbolKind kind;
        int number;
        int half;
        int address;
        int size;
    };
    const Row rows[] = {{SymbolKind::Loco, 63, 0, 0x110000 + 63 * 512, 98},
        {SymbolKind::Function, 255, 1, 0x0F3FE0, 30}, {SymbolKind::Function, 0, 0, 0x0F0000, 30},
        {SymbolKind::Accessory, 28, 1, 0x0F8000 + 28 * 64 + 32, 30}};
    for (const Row &row : rows) {
        const QByteArray before = flashBytes(row.address - 64, 256);
        Picture picture = EmptyPicture(row.kind);
        for (size_t i = 0; i < picture.bytes.size(); ++i)
            picture.bytes.at(i) = 255 - static_cast<int>(i);
        EXPECT_TRUE(WritePicture(image, row.kind, row.number, row.half, picture, Patience::Agreed).ok());
        const QByteArray after = flashBytes(row.address - 64, 256);
        EXPECT_EQ(after.left(64), before.left(64));
        if (row.kind != SymbolKind::Loco) {
            EXPECT_EQ(after.mid(64 + row.size), before.mid(64 + row.size));
        }
        const Result<Picture> read = ReadPicture(image, row.kind, row.number, row.half);
        EXPECT_TRUE(read.ok());
        for (size_t i = 0; i < static_cast<size_t>(row.size); ++i)
            EXPECT_EQ(read.value.bytes.at(i), picture.bytes.at(i));
        EXPECT_EQ(read.value.bytes.size(), static_cast<size_t>(BackupBytesOf(row.kind)));
    }
}

TEST_F(LocoRecords, TheStartImageTakesItsBytesOnly)
{
    QByteArray page = flashBytes(StartImageAddress, 512);
    Picture picture{StartImageGeometry, {}};
    for (int i = 0; i < 262; ++i) {
        picture.bytes.push_back((i * 3) & 0xFF);
        page[i] = static_cast<char>(i * 3);
    }
    EXPECT_TRUE(WriteStartPicture(image, picture, Patience::Agreed).ok());
    EXPECT_EQ(flashBytes(StartImageAddress, 512), page);
    EXPECT_EQ(ReadStartPicture(image).value, picture);
}

} // namespace hr::tests
