#include "handheld/loco_record.h"

#include "handheld/flash_map.h"
#include "handheld/options.h"
#include "handheld/symbol_storage.h"
#include "handheld/transfer.h"
#include "link/open_port.h"
#include "platform/run_control.h"
#include "tests/support/virtual_world.h"

class LocoRecords : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        for (int address = 0; address < 1024; address += 2)
            flash().setBytes(address, QByteArray("\x0A\x27", 2)); // "A " everywhere
    }

    static void layRecord()
    {
        SetCurrentLocoRecord({FitLocoName(QStringLiteral("Lok ä")), {}, {}, 1, 17});
        for (size_t f = 1; f < FunctionCount; ++f)
            FktSymbol.at(f) = static_cast<int>(f) * 10;
        for (const size_t f : {0U, 7U, 8U, 23U, 24U})
            FktModus.at(f) = 1;
    }

    /// Counts the page programs of the chip.
    int programs() { return flash().state.executed.at(0x83); }
};

TEST_F(LocoRecords, AWriteChangesItsSixtyFourBytesOnly)
{
    const QByteArray before = flashBytes(0, 2048);
    layRecord();
    SpiBuf.fill(0xAB); // bytes that the record does not define come from here
    EXPECT_EQ(WriteLocoRecord(9), 0);
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

    const LocoRecord written = CurrentLocoRecord();
    ResetLocoRecord();
    EXPECT_EQ(ReadLocoRecord(9), 0);
    EXPECT_EQ(LokName, QStringLiteral("LOK Ä                "));
    EXPECT_EQ(FktSymbol, written.symbols);
    EXPECT_EQ(FktModus, written.modes);
    EXPECT_EQ(MultiUni, 1);
    EXPECT_EQ(LokSymbol, 17);
}

TEST_F(LocoRecords, RecordsLieAtSixtyFourTimesTheirAddress)
{
    for (const auto &[loco, address] : {std::pair(1, 64), std::pair(8, 512), std::pair(9999, 639936)}) {
        layRecord();
        EXPECT_EQ(WriteLocoRecord(loco), 0);
        EXPECT_EQ(flashBytes(address, 4), QByteArray("\x15\x18\x14\x27", 4));
    }
}

TEST_F(LocoRecords, AnEmptyRecordIsReadWithOneSlice)
{
    EXPECT_EQ(ReadLocoRecord(500), 0);
    EXPECT_EQ(LokName, QString(21, QChar(0xFF)));
    EXPECT_EQ(handheld().state.readBacks, 1);
    EXPECT_EQ(WriteLocoRecord(12), 0);
    EXPECT_EQ(flashBytes(768, 21), QByteArray(21, '\xFF'));
}

TEST_F(LocoRecords, DeleteTakesThreeMessagesAndEmptiesOnlyItsRecord)
{
    const QByteArray before = flashBytes(0, 1024);
    EXPECT_EQ(DeleteLocoRecord(3), 0);
    EXPECT_EQ(messagesOnBus(0xED), 3);
    EXPECT_EQ(flashBytes(192, 15), QByteArray(15, '\xFF'));
    EXPECT_EQ(flashBytes(0, 192), before.left(192));
    EXPECT_EQ(flashBytes(256, 768), before.mid(256));
}

TEST_F(LocoRecords, ATimeoutDoesNotStopAReadOrWrite)
{
    sim::Faults faults;
    faults.lostAck.nth = 2;
    layout().faults.set(faults);
    user.expect(QStringLiteral("Timeout"), QStringLiteral("write_to_spibuf"));
    layRecord();
    EXPECT_EQ(WriteLocoRecord(9), 1);
    EXPECT_EQ(messagesOnBus(0xED), 6);
    EXPECT_EQ(programs(), 1);
}

TEST_F(LocoRecords, ClearAllDeletesUntilSomethingStopsIt)
{
    events.limitSeconds = 10'000;
    layout().bus.keepLog = false;
    ClearAllLocoRecords();
    EXPECT_EQ(programs(), 9999);
    EXPECT_EQ(user.progress.constLast(), QStringLiteral("Lösche Lok 9999"));
    EXPECT_NEAR(static_cast<double>(events.nowUs) / 60e6, 75, 6); // minutes
}

TEST_F(LocoRecords, ClearAllEndsWithAFailureAStopAHangUpAndTheProgram)
{
    struct Row {
        std::function<void()> event;
        bool timeout;
    };
    const Row rows[] = {{[this] { handheld().settings.present = false; }, true}, {ConfirmStop, false},
        {[this] { port.hangUp(); }, false}, {RequestEnd, false}};
    for (const Row &row : rows) {
        const int before = programs();
        user.acceptAnyBox();
        events.after(3'000'000, row.event);
        ClearAllLocoRecords();
        EXPECT_LT(programs() - before, 8);
        EXPECT_EQ(user.boxes.join(u'|').contains(QStringLiteral("Timeout")), row.timeout);
        user.boxes.clear();
        handheld().settings.present = true;
        port.replug();
        if (!port.isOpen()) {
            ASSERT_TRUE(port.open());
        }
    }
}

TEST_F(LocoRecords, TheEndOfTheProgramNeverCutsAPageSequence)
{
    for (int delayMs = 0; delayMs < 1200; delayMs += 50) {
        ResetRunControl();
        const QByteArray before = flashBytes(512, 64);
        layRecord();
        LokSymbol = delayMs / 50 + 1;
        events.after(delayMs * 1000, RequestEnd);
        const int programsBefore = programs();
        const int status = WriteLocoRecord(8);
        EXPECT_EQ(status, 0) << delayMs;
        EXPECT_EQ(programs(), programsBefore + 1);
        EXPECT_EQ(static_cast<int>(flashBytes(512, 64).at(61)), LokSymbol);
        EXPECT_NE(flashBytes(512, 64), before);
    }
    const int count = programs(); // a sequence that has not begun does not begin any more
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
    EXPECT_EQ(WriteLocoRecord(8), 1);
    EXPECT_EQ(programs(), count);
}

TEST_F(LocoRecords, HangUpAtAnyMessageLeavesTheOldPageOrTheNew)
{
    for (int n = 1; n <= 6; ++n) {
        const QByteArray before = flashBytes(512, 512);
        layRecord();
        LokSymbol = 40 + n;
        sim::Faults faults;
        faults.hangUp.nth = n;
        layout().faults.set(faults);
        user.acceptAnyBox();
        EXPECT_EQ(WriteLocoRecord(8), 1);
        EXPECT_EQ(flashBytes(512, 512), before) << n;
        layout().faults.set({});
        port.replug();
        ASSERT_TRUE(port.open());
    }
    EXPECT_EQ(WriteLocoRecord(8), 0);
    EXPECT_EQ(static_cast<int>(flashBytes(512, 64).at(61)), 46);
}

TEST_F(LocoRecords, SwitchOffTimeIsTheOnlyByteChanged)
{
    QByteArray settings;
    for (int i = 0; i < 128; ++i)
        settings.append(static_cast<char>(i + 100));
    flash().setBytes(SettingsAddress, settings);
    ClearSwitchOffTime();
    settings[5] = 0;
    EXPECT_EQ(flashBytes(SettingsAddress, 128), settings);
    EXPECT_EQ(user.progress, QStringList{QStringLiteral("Abschaltzeit ändern")});
    EXPECT_FALSE(user.progressVisible);
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
        for (int i = 0; i < row.size; ++i)
            SpiBuf.at(static_cast<size_t>(4 + i)) = 255 - i;
        EXPECT_EQ(WriteSymbol(row.kind, row.number, row.half), 0);
        const QByteArray after = flashBytes(row.address - 64, 256);
        EXPECT_EQ(after.left(64), before.left(64));
        if (row.kind != SymbolKind::Loco) {
            EXPECT_EQ(after.mid(64 + row.size), before.mid(64 + row.size));
        }
        SpiBuf.fill(0);
        EXPECT_EQ(ReadSymbol(row.kind, row.number, row.half), 0);
        for (int i = 0; i < row.size; ++i)
            EXPECT_EQ(SpiBuf.at(static_cast<size_t>(4 + i)), 255 - i);
    }
}

TEST_F(LocoRecords, StartImageAndSymbolReset)
{
    QByteArray page = flashBytes(StartImageAddress, 512);
    for (int i = 0; i < 262; ++i) {
        SpiBuf.at(static_cast<size_t>(4 + i)) = (i * 3) & 0xFF;
        page[i] = static_cast<char>(i * 3);
    }
    EXPECT_EQ(WriteStartImage(), 0);
    EXPECT_EQ(flashBytes(StartImageAddress, 512), page);
    SpiBuf.fill(0);
    EXPECT_EQ(ReadStartImage(), 0);
    for (int i = 0; i < 262; ++i)
        EXPECT_EQ(SpiBuf.at(static_cast<size_t>(4 + i)), (i * 3) & 0xFF);

    flash().setBytes(FktSymbolAddress, QByteArray(256 * 64, '\x55'));
    ResetFktSymbols();
    EXPECT_EQ(flashBytes(FktSymbolAddress, 164 * 64), QByteArray(164 * 64, '\x55'));
    const QByteArray half = QByteArray("\x06\x0D", 2) + QByteArray(28, '\0') + QByteArray(2, '\x55');
    EXPECT_EQ(flashBytes(FktSymbolAddress + 164 * 64, 92 * 64), half.repeated(184));
    EXPECT_EQ(user.progress.constFirst(), QStringLiteral("Fktsym. 164"));
    EXPECT_EQ(user.progress.constLast(), QStringLiteral("Fktsym. 255"));
}
