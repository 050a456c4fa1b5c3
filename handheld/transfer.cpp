#include "handheld/transfer.h"

#include "link/cadence.h"
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

constexpr int LoadRepeats = 2;                   // after the first load
constexpr int StatusLooks = 5;                   // until the chip is ready; it compares in less than a millisecond
constexpr int JobRepeats = 1;                    // of a whole page sequence
constexpr int VerifiedRepeats = 3;               // the same; one of them at most after a page that differs
constexpr double RestAfterProgramSeconds = 0.06; // in the fast cadence; at three ticks a message it comes by itself

int quietSteps = 0; // QuietStep objects alive
int silentJobs = 0; // SilentTransfers objects alive

/// A try that is repeated when it fails: it ends at its first failure and tells nobody.
class QuietStep
{
public:
    QuietStep() { ++quietSteps; }
    ~QuietStep() { --quietSteps; }
    QuietStep(const QuietStep &) = delete;
    QuietStep &operator=(const QuietStep &) = delete;
};

Outcome Quietly(const std::function<Outcome()> &step)
{
    const QuietStep quiet;
    return step();
}

/// A quiet try whose first failure is enough.
bool HasFailed(const Outcome &outcome)
{
    return quietSteps + silentJobs > 0 && !outcome.ok();
}

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
        if (!BoxesAreSilent() && quietSteps + silentJobs == 0)
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

/// How a page load ended: the page is in buffer 1, it certainly is not, or nobody can tell.
enum class Loaded { Yes, No, Unknown };

/// After a load that nobody acknowledged: the chip is asked, and the load repeated until the page is there.
Loaded SecureLoad(int address)
{
    for (int repeat = 0;; ++repeat) {
        const Result<bool> equal = PageEqualsBuffer1(address);
        if (equal.ok() && equal.value)
            return Loaded::Yes;
        if (repeat == LoadRepeats || equal.outcome.brokenOff())
            return equal.ok() ? Loaded::No : Loaded::Unknown;
        if (ExchangeForAck(PageCommand(ChipPageToBuffer1, address)).ok())
            return Loaded::Yes;
        if (!equal.ok())
            return Loaded::Unknown; // neither question nor load is answered: nobody is there
    }
}

void TellNothingWritten()
{
    if (BoxesAreSilent())
        return;
    TheAsk().showBox({QStringLiteral("Der Handregler hat die Speicherseite nicht geladen.\r"
                                     "Damit die Nachbarn unversehrt bleiben, wurde sie nicht geschrieben."),
        QStringLiteral("Fehler!"), BoxIcon::Critical});
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

/// Stores the slices and lets the last one start the execution. Goes on after a time-out. The last one is never
/// repeated alone: clocking through the chip leaves the chip's answer in the handheld's buffer.
Outcome WriteSlices(const SpiImage &image, const PagePart &part)
{
    Outcome outcome;
    for (int start = 0; start <= part.lastSlice && !HasFailed(outcome); start += SliceSize)
        outcome.keep(write_to_spibuf(image, start, start == part.lastSlice ? part.executeLength : 0));
    return outcome;
}

Outcome WritePart(SpiImage &image, const PagePart &part)
{
    LayPart(image, part);
    return WriteSlices(image, part);
}

Outcome WriteParts(SpiImage &image, const PageWrite &page)
{
    Outcome outcome;
    for (const PagePart &part : page.parts) {
        if (TransferBrokenOff())
            break;
        outcome.keep(WritePart(image, part));
    }
    return outcome;
}

/// The user is told about each time-out, and the remaining steps are carried out. Only a page that is certainly not in
/// buffer 1 is not programmed.
Outcome ProgramAsAgreed(SpiImage &image, const PageWrite &page)
{
    Outcome outcome = page.loadFirst ? move_spibuf_to_buf1(page.address) : Outcome();
    const Loaded loaded = outcome.timedOut() ? SecureLoad(page.address) : Loaded::Yes;
    if (loaded == Loaded::Yes && outcome.timedOut())
        outcome = {};
    if (loaded != Loaded::No)
        outcome.keep(WriteParts(image, page));
    // It may have come back meanwhile: then the load is made sure of, and the parts are written once more.
    if (loaded == Loaded::Unknown && ExchangeForAck(PageCommand(ChipPageToBuffer1, page.address)).ok())
        outcome = WriteParts(image, page);
    if (loaded == Loaded::No) {
        TellNothingWritten();
        return Outcome(End::GivenUp, outcome.at());
    }
    outcome.keep(write_buf1_to_flash(page.address));
    return outcome;
}

/// After a program without an acknowledge, and always when it is to be verified: does the page hold buffer 1?
Outcome CheckProgrammed(const Outcome &programmed, int address, bool verify)
{
    if (programmed.brokenOff() || (programmed.ok() && !verify))
        return programmed;
    const Result<bool> equal = PageEqualsBuffer1(address); // perhaps only its acknowledge is missing
    if (equal.ok() && equal.value)
        return {};
    if (!programmed.ok())
        return programmed;
    return equal.ok() ? Outcome(End::Differs, PageCommandName()) : equal.outcome;
}

/// One try of a job, or in the fast cadence: a page is programmed only when every step before it was answered.
Outcome TryPage(SpiImage &image, const PageWrite &page, bool verify)
{
    if (page.loadFirst) {
        Outcome loaded = move_spibuf_to_buf1(page.address);
        if (loaded.timedOut() && SecureLoad(page.address) != Loaded::Yes) {
            const End brokenOff = WaitsMustEnd() ? End::ProgramEnds : End::PortLost;
            return Outcome(TransferBrokenOff() ? brokenOff : End::GivenUp, loaded.at());
        }
        if (loaded.brokenOff())
            return loaded;
    }
    for (const PagePart &part : page.parts) {
        Outcome written = WritePart(image, part);
        if (!written.ok())
            return written.brokenOff() ? written : Outcome(End::GivenUp, written.at());
    }
    return CheckProgrammed(write_buf1_to_flash(page.address), page.address, verify);
}

/// A failure behind the page program: the page may be neither as it was nor as it should be.
bool HasProgrammed(const Outcome &outcome)
{
    return outcome.how() == End::Differs || (outcome.timedOut() && outcome.how() != End::GivenUp);
}

/// The whole sequence is tried again from the load: a handheld that was restarted has lost buffer 1.
Outcome ProgramAsJob(SpiImage &image, const PageWrite &page, bool verify)
{
    Outcome outcome;
    int differed = 0;
    for (int repeat = 0; repeat <= (verify ? VerifiedRepeats : JobRepeats); ++repeat) {
        const Outcome tried = TryPage(image, page, verify);
        differed += tried.how() == End::Differs ? 1 : 0;
        // Once a page program was sent and not answered the record stays doubtful, unless a later try succeeds.
        const bool programSent = repeat > 0 && HasProgrammed(outcome);
        outcome = tried.how() == End::GivenUp && programSent ? outcome : tried;
        const bool again = tried.timedOut() || (tried.how() == End::Differs && differed <= JobRepeats);
        if (!again || (tried.how() == End::GivenUp && tried.at() == PageCommandName()))
            break;
    }
    return outcome;
}

} // namespace

SilentTransfers::SilentTransfers()
{
    ++silentJobs;
}

SilentTransfers::~SilentTransfers()
{
    --silentJobs;
}

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
    // Bytes that are damaged twice are taken; the outcome says that they are doubtful.
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
    Outcome programmed = AskChip(PageCommand(ChipProgramPage, address), PageCommandName());
    if (CurrentCadence() == Cadence::Events)
        RestLine(RestAfterProgramSeconds);
    return programmed;
}

Result<bool> PageEqualsBuffer1(int address)
{
    if (Outcome asked = ExchangeForAck(PageCommand(ChipComparePage, address)); !asked.ok())
        return {false, asked};
    for (int look = 0; look < StatusLooks; ++look) {
        const Result<int> status = ReadStatus();
        if (status.outcome.how() == End::Damaged)
            continue; // looking once more harms nobody
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
    for (int start = first; start <= last && !HasFailed(outcome); start += SliceSize)
        outcome.keep(read_spibuf(image, start));
    return outcome;
}

Outcome RunStep(const std::function<Outcome()> &step, const std::function<Outcome()> &lastTry)
{
    if (CurrentCadence() == Cadence::Ticks || quietSteps > 0)
        return quietSteps > 0 ? step() : (lastTry ? lastTry() : step());
    for (int repeat = 0; repeat <= 1; ++repeat) {
        Outcome outcome = Quietly(step);
        const bool again = outcome.timedOut() || (outcome.how() == End::Differs && repeat == 0);
        if (!again || BoxesAreSilent())
            return outcome;
    }
    FallBackToTicks();
    return lastTry ? lastTry() : step();
}

Outcome ReadFlash(SpiImage &image, int address, int n)
{
    return RunStep([&] {
        Outcome outcome = read_flash_to_spibuf(address, n);
        const int lastIndex = ReadPosition + n - 1;
        if (!HasFailed(outcome))
            outcome.keep(ReadSlices(image, 0, lastIndex / SliceSize * SliceSize));
        return outcome;
    });
}

void MoveToWritePosition(SpiImage &image, int lastIndex)
{
    for (size_t i = 0; i <= static_cast<size_t>(lastIndex); ++i)
        image.at(WritePosition + i) = image.at(ReadPosition + i);
}

Outcome ProgramPage(SpiImage &image, const PageWrite &page, Patience patience)
{
    const PageSequence sequence;
    const bool verify = patience == Patience::Verified;
    Outcome doubt; // of a page program that was sent and not answered
    const auto fast = [&] {
        Outcome tried = TryPage(image, page, verify);
        if (HasProgrammed(tried))
            doubt = tried;
        return tried;
    };
    Outcome outcome = RunStep(fast, [&] {
        return patience == Patience::Agreed ? ProgramAsAgreed(image, page) : ProgramAsJob(image, page, verify);
    });
    return outcome.how() == End::GivenUp && !doubt.ok() ? doubt : outcome;
}

bool TransferBrokenOff()
{
    return !Comm().isOpen() || WaitsMustEnd();
}
