#include "handheld/transfer.h"

#include "platform/run_control.h"
#include "platform/world.h"

namespace
{

constexpr double AnswerTimeoutSeconds = 2;

constexpr quint8 FlagExecute = 0x10;
constexpr quint8 FlagReadBack = 0x20;
constexpr size_t FlagByte = 10;
constexpr size_t LengthByte = 29;
constexpr std::array<size_t, 20> DataBytes{
    6, 7, 8, 9, 11, 12, 13, 14, 16, 17, 18, 19, 21, 22, 23, 24, 26, 27, 28, 29};

constexpr int ChipContinuousRead = 0xE8;
constexpr int ChipPageToBuffer1 = 0x53;
constexpr int ChipBuffer1Write = 0x84;
constexpr int ChipProgramPage = 0x83;
constexpr int ReadCommandLength = 8; // opcode, address, four dummy bytes
constexpr int PageCommandLength = 4; // opcode, address
constexpr int LastReadableIndex = MaxSliceStart + SliceSize - 1;

void LayData(size_t number, int value)
{
    TxMsg.at(DataBytes.at(number - 1)) = static_cast<quint8>(value);
}

void LayStartIndex(int start)
{
    Q_ASSERT(start >= 0 && start <= MaxSliceStart);
    TxMsg.at(15) |= static_cast<quint8>((start >> 6 & 1) << 4);
    TxMsg.at(20) |= static_cast<quint8>((start >> 3 & 7) << 4);
    TxMsg.at(25) |= static_cast<quint8>((start & 7) << 4);
}

void LayChipCommand(int opcode, int byte1, int byte2, int byte3, int executeLength)
{
    BeginTransferMessage();
    LayData(1, opcode);
    LayData(2, byte1);
    LayData(3, byte2);
    LayData(4, byte3);
    TxMsg.at(FlagByte) = FlagExecute;
    TxMsg.at(LengthByte) = static_cast<quint8>(executeLength);
}

int SendAndAwaitAck(const QString &commandName)
{
    LastAckCode = 0;
    SendTransferMessage();
    return AwaitAnswer([] { return LastAckCode == AckAccepted; }, commandName);
}

int PageCommand(int opcode, int address)
{
    LayChipCommand(opcode, (address & 0xFF0000) / 65536, (address & 0xFE00) / 256, 0, PageCommandLength);
    return SendAndAwaitAck(QStringLiteral("move_spibuf_to_buf1"));
}

} // namespace

void BeginTransferMessage()
{
    // Only while the program ends can the wait be cut short; the old message is of no use then.
    if (!PumpUntil([] { return TxLen == -1 || !Comm().isOpen(); }))
        DropPendingMessage();
    TxMsg = {};
    TxMsg.at(0) = OpcodeImmediate;
    TxMsg.at(1) = TransferMessageLength;
    TxMsg.at(2) = 0x08;
    TxMsg.at(3) = 0x66;
    TxMsg.at(4) = 0x33;
}

void SendTransferMessage()
{
    if (!Comm().isOpen() || TxLen != -1 || WaitsMustEnd())
        return;
    PackHighBits();
    TxLen = TransferLastIndex;
}

int AwaitAnswer(const std::function<bool()> &answered, const QString &boxTitle)
{
    const double start = TheEvents().timeOfDay();
    while (!answered()) {
        if (!Comm().isOpen() || WaitsMustEnd())
            return 1;
        if (TheEvents().timeOfDay() - start > AnswerTimeoutSeconds) {
            if (!boxTitle.isEmpty() && !BoxesAreSilent())
                TheFrontend().showBox({QStringLiteral("Timeout"), boxTitle, BoxIcon::Critical});
            AbandonPageSequence();
            return 1;
        }
        TheEvents().pump();
    }
    return 0;
}

void read_flash_to_spibuf(int address, int count, int &status)
{
    Q_ASSERT(ReadPosition + count - 1 <= LastReadableIndex);
    LayChipCommand(
        ChipContinuousRead, address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF, count + ReadCommandLength);
    status = SendAndAwaitAck(QStringLiteral("read_flash_to_spibuf"));
}

void read_spibuf(int start, int &status)
{
    BeginTransferMessage();
    TxMsg.at(FlagByte) = FlagReadBack;
    LayStartIndex(start);
    SpiReadDone = 0;
    SpiReadStart = start;
    SendTransferMessage();
    status = AwaitAnswer([] { return SpiReadDone == 1; }, QStringLiteral("read_spibuf"));
}

void write_to_spibuf(int start, int executeLength, int &status)
{
    BeginTransferMessage();
    for (int i = 0; i < SliceSize; ++i)
        TxMsg.at(DataBytes.at(static_cast<size_t>(i))) =
            static_cast<quint8>(SpiBuf.at(static_cast<size_t>(start + i)));
    if (executeLength != 0) {
        TxMsg.at(FlagByte) = FlagExecute;
        TxMsg.at(LengthByte) = static_cast<quint8>(executeLength);
    }
    LayStartIndex(start);
    status = SendAndAwaitAck(QStringLiteral("write_to_spibuf"));
}

void move_spibuf_to_buf1(int address, int &status)
{
    status = PageCommand(ChipPageToBuffer1, address);
}

void write_buf1_to_flash(int address, int &status)
{
    status = PageCommand(ChipProgramPage, address);
}

int ReadSlices(int first, int last)
{
    int failed = 0;
    for (int start = first; start <= last; start += SliceSize) {
        int status = 0;
        read_spibuf(start, status);
        failed |= status;
    }
    return failed;
}

int ReadFlash(int address, int n)
{
    int status = 0;
    read_flash_to_spibuf(address, n, status);
    const int lastIndex = ReadPosition + n - 1;
    return ReadSlices(0, lastIndex / SliceSize * SliceSize) | status;
}

void LayBufferWrite(int pageOffset)
{
    SpiBuf.at(0) = ChipBuffer1Write;
    SpiBuf.at(1) = 0;
    SpiBuf.at(2) = pageOffset >> 8 & 1;
    SpiBuf.at(3) = pageOffset & 0xFF;
}

int WriteSlices(int last, int executeLength)
{
    int failed = 0;
    for (int start = 0; start <= last; start += SliceSize) {
        int status = 0;
        write_to_spibuf(start, start == last ? executeLength : 0, status);
        failed |= status;
    }
    return failed;
}

void MoveToWritePosition(int lastIndex)
{
    for (size_t i = 0; i <= static_cast<size_t>(lastIndex); ++i)
        SpiBuf.at(WritePosition + i) = SpiBuf.at(ReadPosition + i);
}
