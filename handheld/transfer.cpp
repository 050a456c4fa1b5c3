#include "handheld/transfer.h"

#include "link/exchange.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <algorithm>

namespace
{

constexpr quint8 FlagExecute = 0x10;
constexpr quint8 FlagReadBack = 0x20;
constexpr size_t FlagByte = 10;
constexpr size_t LengthNumber = 20; // D20 carries the execute length

constexpr int ChipContinuousRead = 0xE8;
constexpr int ChipPageToBuffer1 = 0x53;
constexpr int ChipBuffer1Write = 0x84;
constexpr int ChipProgramPage = 0x83;
constexpr int ChipComparePage = 0x60;
constexpr int ChipStatus = 0xD7;
constexpr int StatusReady = 0x80;
constexpr int StatusDiffers = 0x40;
constexpr int ReadCommandLength = 8; // opcode, address, four dummy bytes
constexpr int PageCommandLength = 4; // opcode, address
constexpr int StatusCommandLength = 2;
constexpr int LastReadableIndex = MaxSliceStart + SliceSize - 1;

constexpr int LoadRepeats = 2;    // after the first load
constexpr int StatusLooks = 5;    // until the chip is ready; it compares in less than a millisecond
constexpr int PartRepeats = 1;    // of a job
constexpr int ProgramRepeats = 1; // of a job

void LayStartIndex(Request &request, int start)
{
    Q_ASSERT(start >= 0 && start <= MaxSliceStart);
    request.bytes.at(15) |= static_cast<quint8>((start >> 6 & 1) << 4);
    request.bytes.at(20) |= static_cast<quint8>((start >> 3 & 7) << 4);
    request.bytes.at(25) |= static_cast<quint8>((start & 7) << 4);
}

Request ChipCommand(std::array<int, 4> bytes, int executeLength)
{
    Request request = Request::toHandheld();
    for (size_t i = 0; i < bytes.size(); ++i)
        request.setData(i + 1, bytes.at(i));
    request.bytes.at(FlagByte) = FlagExecute;
    request.setData(LengthNumber, executeLength);
    return request;
}

Request PageCommand(int opcode, int address)
{
    return ChipCommand({opcode, (address & 0xFF0000) / 65536, (address & 0xFE00) / 256, 0}, PageCommandLength);
}

/// Tells the user about a time-out, and names the command in the outcome.
Outcome Told(const Outcome &outcome, const QString &command)
{
    if (outcome.ok())
        return outcome;
    if (outcome.timedOut()) {
        if (!BoxesAreSilent())
            TheAsk().showBox({QStringLiteral("Timeout"), command, BoxIcon::Critical});
        AbandonPageSequence();
    }
    return Outcome(outcome.how(), command);
}

Outcome AskChip(const Request &request, const QString &command)
{
    return Told(ExchangeForAck(request), command);
}

QString PageCommandName()
{
    return QStringLiteral("move_spibuf_to_buf1"); // of both page commands, on purpose
}

Request ReadBackRequest(int start)
{
    Request request = Request::toHandheld();
    request.bytes.at(FlagByte) = FlagReadBack;
    LayStartIndex(request, start);
    return request;
}

/// The chip's status register, read through the handheld's buffer.
Result<int> ReadStatus()
{
    if (Outcome asked = ExchangeForAck(ChipCommand({ChipStatus, 0, 0, 0}, StatusCommandLength)); !asked.ok())
        return {0, asked};
    const auto answer = ExchangeForReadBack(ReadBackRequest(0));
    return {answer.value.at(1), answer.outcome};
}

/// Whether the page is in buffer 1 after a load that nobody acknowledged; the load is repeated until it is.
Outcome SecureLoad(const Outcome &unanswered, int address)
{
    for (int repeat = 0;; ++repeat) {
        const Result<bool> equal = PageEqualsBuffer1(address);
        if (equal.ok() && equal.value)
            return {};
        if (repeat == LoadRepeats || equal.outcome.brokenOff())
            return unanswered;
        const Outcome again = ExchangeForAck(PageCommand(ChipPageToBuffer1, address));
        if (again.ok())
            return {};
        if (!equal.ok())
            return unanswered; // neither question nor load is answered: nobody is there
    }
}

Outcome LoadPage(int address)
{
    Outcome loaded = move_spibuf_to_buf1(address);
    return loaded.timedOut() ? SecureLoad(loaded, address) : loaded;
}

/// The buffer-write command and the part's data.
void LayPart(SpiImage &image, const PagePart &part)
{
    image.at(0) = ChipBuffer1Write;
    image.at(1) = 0;
    image.at(2) = part.offset >> 8 & 1;
    image.at(3) = part.offset & 0xFF;
    std::copy(part.data.begin(), part.data.end(), image.begin() + WritePosition);
}

/// Stores the slices and lets the last one start the execution. Goes on after a time-out.
Outcome WriteSlices(const SpiImage &image, const PagePart &part)
{
    Outcome outcome;
    for (int start = 0; start <= part.lastSlice; start += SliceSize)
        outcome.keep(write_to_spibuf(image, start, start == part.lastSlice ? part.executeLength : 0));
    return outcome;
}

Outcome WritePart(SpiImage &image, const PagePart &part, Patience patience)
{
    LayPart(image, part);
    Outcome written = WriteSlices(image, part);
    // All of it again: what the handheld clocked through the chip has replaced its buffer.
    for (int repeat = 0; repeat < PartRepeats && patience == Patience::Job && written.timedOut(); ++repeat)
        written = WriteSlices(image, part);
    return written;
}

/// A job finds out whether the page was programmed although nobody acknowledged it, and repeats it where it was not.
Outcome SecureProgram(const Outcome &unanswered, int address)
{
    for (int repeat = 0;; ++repeat) {
        const Result<bool> equal = PageEqualsBuffer1(address);
        if (equal.ok() && equal.value)
            return {};
        if (repeat == ProgramRepeats || !equal.ok())
            return unanswered;
        if (ExchangeForAck(PageCommand(ChipProgramPage, address)).ok())
            return {};
    }
}

} // namespace

Outcome read_flash_to_spibuf(int address, int count)
{
    Q_ASSERT(ReadPosition + count - 1 <= LastReadableIndex);
    return AskChip(ChipCommand({ChipContinuousRead, address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF},
                       count + ReadCommandLength),
        QStringLiteral("read_flash_to_spibuf"));
}

Outcome read_spibuf(SpiImage &image, int start)
{
    const auto answer = ExchangeForReadBack(ReadBackRequest(start));
    // Damaged bytes are taken, as the handheld's own software takes them; the outcome says that they are doubtful.
    if (answer.ok() || answer.outcome.how() == End::Damaged)
        std::copy(answer.value.begin(), answer.value.end(), image.begin() + start);
    return Told(answer.outcome, QStringLiteral("read_spibuf"));
}

Outcome write_to_spibuf(const SpiImage &image, int start, int executeLength)
{
    Request request = Request::toHandheld();
    for (size_t i = 0; i < SliceSize; ++i)
        request.setData(i + 1, image.at(static_cast<size_t>(start) + i));
    if (executeLength != 0) {
        request.bytes.at(FlagByte) = FlagExecute;
        request.setData(LengthNumber, executeLength);
    }
    LayStartIndex(request, start);
    return AskChip(request, QStringLiteral("write_to_spibuf"));
}

Outcome move_spibuf_to_buf1(int address)
{
    return AskChip(PageCommand(ChipPageToBuffer1, address), PageCommandName());
}

Outcome write_buf1_to_flash(int address)
{
    return AskChip(PageCommand(ChipProgramPage, address), PageCommandName());
}

Result<bool> PageEqualsBuffer1(int address)
{
    if (Outcome asked = ExchangeForAck(PageCommand(ChipComparePage, address)); !asked.ok())
        return {false, asked};
    for (int look = 0; look < StatusLooks; ++look) {
        const Result<int> status = ReadStatus();
        if (!status.ok())
            return {false, status.outcome};
        if ((status.value & StatusReady) != 0)
            return {(status.value & StatusDiffers) == 0, {}};
    }
    return {false, Outcome(End::NoAnswer)};
}

Outcome ReadSlices(SpiImage &image, int first, int last)
{
    Outcome outcome;
    for (int start = first; start <= last; start += SliceSize)
        outcome.keep(read_spibuf(image, start));
    return outcome;
}

Outcome ReadFlash(SpiImage &image, int address, int n)
{
    Outcome outcome = read_flash_to_spibuf(address, n);
    const int lastIndex = ReadPosition + n - 1;
    outcome.keep(ReadSlices(image, 0, lastIndex / SliceSize * SliceSize));
    return outcome;
}

void MoveToWritePosition(SpiImage &image, int lastIndex)
{
    for (size_t i = 0; i <= static_cast<size_t>(lastIndex); ++i)
        image.at(WritePosition + i) = image.at(ReadPosition + i);
}

Outcome ProgramPage(SpiImage &image, const PageWrite &page, Patience patience)
{
    const PageSequence sequence;
    const bool job = patience == Patience::Job;
    Outcome outcome;
    if (page.loadFirst)
        outcome = LoadPage(page.address);
    for (const PagePart &part : page.parts) {
        if ((job && !outcome.ok()) || TransferBrokenOff())
            break;
        outcome.keep(WritePart(image, part, patience));
    }
    if (job && !outcome.ok())
        return outcome.timedOut() ? Outcome(End::GivenUp, outcome.at()) : outcome;
    Outcome programmed = write_buf1_to_flash(page.address);
    if (job && programmed.timedOut())
        programmed = SecureProgram(programmed, page.address);
    outcome.keep(programmed);
    return outcome;
}

bool TransferBrokenOff()
{
    return !Comm().isOpen() || WaitsMustEnd();
}
