#include "handheld/chip_commands.h"

#include "link/cadence.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr quint8 FlagExecute = 0x10;
constexpr quint8 FlagReadBack = 0x20;
constexpr size_t FlagByte = 10;
constexpr size_t LengthNumber = 20; // D20 carries the execute length

constexpr quint8 ChipContinuousRead = 0xE8;
constexpr quint8 ChipPageToBuffer1 = 0x53;
constexpr quint8 ChipBuffer1Write = 0x84;
constexpr quint8 ChipProgramPage = 0x83;
constexpr quint8 ChipComparePage = 0x60;
constexpr quint8 ChipStatus = 0xD7;
constexpr quint8 StatusReady = 0x80;
constexpr quint8 StatusDiffers = 0x40;
constexpr int ReadCommandLength = 8; // opcode, address, four dummy bytes
constexpr int PageCommandLength = 4; // opcode, address
constexpr int StatusCommandLength = 2;
constexpr int LastReadableIndex = MaxSliceStart + SliceSize - 1;

constexpr int StatusLooks = 5;                   // until the chip is ready; it compares in less than a millisecond
constexpr double RestAfterProgramSeconds = 0.06; // in the fast cadence; at three ticks a message it comes by itself

void LayStartIndex(Request &request, int start)
{
    Q_ASSERT(start >= 0 && start <= MaxSliceStart);
    request.bytes.at(15) |= static_cast<quint8>((start >> 6 & 1) << 4);
    request.bytes.at(20) |= static_cast<quint8>((start >> 3 & 7) << 4);
    request.bytes.at(25) |= static_cast<quint8>((start & 7) << 4);
}

Request ChipCommand(quint8 opcode, int address, int executeLength)
{
    Request request = Request::toHandheld();
    request.setData(1, opcode);
    request.setData(2, address >> 16 & 0xFF);
    request.setData(3, address >> 8 & 0xFF);
    request.setData(4, address & 0xFF);
    request.bytes.at(FlagByte) = FlagExecute;
    request.setData(LengthNumber, executeLength);
    return request;
}

Request PageCommand(quint8 opcode, int address)
{
    return ChipCommand(opcode, address & 0xFFFE00, PageCommandLength);
}

Request ReadBackRequest(int start)
{
    Request request = Request::toHandheld();
    request.bytes.at(FlagByte) = FlagReadBack;
    LayStartIndex(request, start);
    return request;
}

/// Tells the user about a time-out, and names the command in the outcome.
Outcome Told(const Outcome &outcome, const QString &command, const Patience &patience)
{
    if (outcome.ok())
        return outcome;
    if (outcome.timedOut()) {
        if (!BoxesAreSilent() && patience.tells == Tells::Yes)
            TheAsk().showBox({QStringLiteral("Timeout"), command, BoxIcon::Critical});
        AbandonPageSequence();
    }
    return Outcome(outcome.how(), command);
}

Outcome AskChip(const Request &request, const QString &command, const Patience &patience)
{
    return Told(ExchangeForAck(request, patience.tells), command, patience);
}

QString PageCommandName()
{
    return QStringLiteral("move_spibuf_to_buf1"); // of both page commands, on purpose
}

/// The chip's status register, read through the handheld's buffer.
Result<quint8> ReadStatus()
{
    if (Outcome asked = ExchangeForAck(ChipCommand(ChipStatus, 0, StatusCommandLength), Tells::No); !asked.ok())
        return {0, asked};
    const auto answer = ExchangeForReadBack(ReadBackRequest(0), Tells::No);
    return {answer.value.at(1), answer.outcome};
}

} // namespace

Outcome read_flash_to_spibuf(int address, int count, const Patience &patience)
{
    Q_ASSERT(ReadPosition + count - 1 <= LastReadableIndex);
    return AskChip(ChipCommand(ChipContinuousRead, address, count + ReadCommandLength),
        QStringLiteral("read_flash_to_spibuf"), patience);
}

Outcome read_spibuf(SpiImage &image, int start, const Patience &patience)
{
    const auto answer = ExchangeForReadBack(ReadBackRequest(start), patience.tells);
    if (answer.ok() || answer.outcome.how() == End::Damaged)
        std::copy(answer.value.begin(), answer.value.end(), image.begin() + start);
    return Told(answer.outcome, QStringLiteral("read_spibuf"), patience);
}

Outcome write_to_spibuf(const SpiImage &image, int start, int executeLength, const Patience &patience)
{
    Request request = Request::toHandheld();
    for (size_t i = 0; i < SliceSize; ++i)
        request.setData(i + 1, image.at(static_cast<size_t>(start) + i));
    if (executeLength != 0) {
        request.bytes.at(FlagByte) = FlagExecute;
        request.setData(LengthNumber, executeLength);
    }
    LayStartIndex(request, start);
    return AskChip(request, QStringLiteral("write_to_spibuf"), patience);
}

Outcome move_spibuf_to_buf1(int address, const Patience &patience)
{
    return AskChip(PageCommand(ChipPageToBuffer1, address), PageCommandName(), patience);
}

Outcome write_buf1_to_flash(int address, const Patience &patience)
{
    Outcome programmed = AskChip(PageCommand(ChipProgramPage, address), PageCommandName(), patience);
    if (CurrentCadence() == Cadence::Events)
        RestLine(RestAfterProgramSeconds);
    return programmed;
}

Result<bool> PageEqualsBuffer1(int address)
{
    if (Outcome asked = ExchangeForAck(PageCommand(ChipComparePage, address), Tells::No); !asked.ok())
        return {false, asked};
    for (int look = 0; look < StatusLooks; ++look) {
        const Result<quint8> status = ReadStatus();
        if (status.outcome.how() == End::Damaged)
            continue; // looking once more harms nobody
        if (!status.ok())
            return {false, status.outcome};
        if ((status.value & StatusReady) != 0)
            return {(status.value & StatusDiffers) == 0, {}};
    }
    return {false, Outcome(End::NoAnswer)};
}

void LayBufferWrite(SpiImage &image, int pageOffset)
{
    image.at(0) = ChipBuffer1Write;
    image.at(1) = 0;
    image.at(2) = static_cast<quint8>(pageOffset >> 8 & 1);
    image.at(3) = static_cast<quint8>(pageOffset & 0xFF);
}

bool TransferBrokenOff()
{
    return !Comm().isOpen() || WaitsMustEnd() || TheMessages().secondHandheld();
}

} // namespace hr::handheld
