#include "station/download.h"

#include "handheld/flash_map.h"
#include "handheld/text_encoding.h"
#include "link/cadence.h"
#include "link/exchange.h"
#include "link/open_link.h"
#include "platform/text.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/branding.h"
#include "program/run_control.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace hr::station
{

namespace
{

constexpr double QuietSeconds = 1.5;
constexpr double LongestQuietWaitSeconds = 10;
constexpr int QuietPollMs = 100;
constexpr int AckAlreadyDone = 1;

constexpr int CommandFactor = 16; // command values stand in bits 4-6 of collectors 3 to 5

constexpr int RangeFirst = 10;
constexpr int RangeLast = 50;
constexpr int RecordTries = 1 + 5; // a failed read of a part is repeated five times
constexpr int MostRecords = 500;
constexpr int FirstPosition = 7501;
constexpr int RecordFollows = 0;
constexpr int EndOfDatabase = 255;
constexpr size_t NameStart = 3; // D4
constexpr size_t NameBytes = 16;
constexpr int ModesPerByte = 8;
constexpr int MultiUniBit = 0x80;

using Data = SliceBytes; // D1..D20 at index 0..19

struct Commands {
    quint8 c1;
    quint8 c2;
    quint8 c3;
};

constexpr Data EntryData{0, 127, 127, 127, 0, 0, 0, 0, 12, 8, 19, 30, 19, 19, 7, 2, 0, 0, 0, 0};
constexpr Data SecondEntryData{0, 0, 0, 0, 0, 0, 0, 0, 12, 8, 19, 30, 19, 19, 7, 2, 0, 0, 0, 0};
constexpr std::array<quint8, 5> RequestHead{OpcodeImmediate, TransferMessageLength, 0x08, 0x49, 0x4B};
constexpr std::array<quint8, 5> AnswerHead{OpcodePeerTransfer, TransferMessageLength, 0x01, 0x50, 0x43};
/// What the answer to the entry request repeats: byte index and value.
constexpr std::array<std::pair<size_t, int>, 11> EntryAnswer{{{5, 0x70}, {10, 0x70}, {15, 0x30}, {20, 0x70}, {16, 12},
    {17, 8}, {18, 19}, {19, 30}, {21, 19}, {22, 19}, {23, 7}}};

/// A wait of a step ends when the user has confirmed the stop; leaving the download mode goes on all the same.
bool stepsMayStop = false;

bool StopsNow()
{
    return stepsMayStop && StoppableJob::stopRequested();
}

/// Waits for the condition; false after 2 s, at once when the port is lost, waits must end or the user stops.
bool Came(const std::function<bool()> &done)
{
    bool held = false;
    const Outcome outcome = Await([&] { return (held = done()) || StopsNow(); });
    return outcome.ok() && held;
}

/// The working record as a message: head, data, command values.
LocoNetMessage RequestOf(const Data &data, const Commands &commands)
{
    LocoNetMessage message{};
    std::copy(RequestHead.begin(), RequestHead.end(), message.begin());
    LayData(message, data);
    const std::array<quint8, 3> values{commands.c1, commands.c2, commands.c3};
    for (size_t i = 0; i < values.size(); ++i)
        message.at(CollectorPlaces.at(i + 2)) = static_cast<quint8>(values.at(i) * CommandFactor);
    PackHighBits(message);
    return message;
}

/// D1..D20 of a received answer with their bit 7 restored.
Data ReceivedData(const RawAnswer &raw)
{
    LocoNetMessage message{};
    for (size_t i = 0; i < CollectorPlaces.size(); ++i)
        message.at(CollectorPlaces.at(i)) = raw.bytes.at(i);
    Data data{};
    std::copy(raw.bytes.begin() + CollectorPlaces.size(), raw.bytes.end(), data.begin());
    LayData(message, data);
    UnpackHighBits(message);
    return DataOf(message);
}

/// Sends a request and waits until it is out. 0 or InnerNotSent.
int SendRequest(const Data &data, const Commands &commands)
{
    if (const Outcome laid = LayWhenFree(RequestOf(data, commands), TransferLastIndex); !laid.ok())
        return InnerNotSent;
    return Came([] { return TheMessages().slotFree(); }) ? 0 : InnerNotSent;
}

/// Sends a request and returns the acknowledge code in `code`. 0, InnerNotSent or InnerNoAcknowledge.
int ExchangeWithStation(const Data &data, const Commands &commands, int &code)
{
    if (const int inner = SendRequest(data, commands); inner != 0)
        return inner;
    const bool acknowledged = Came([] { return TheMessages().acknowledgeCode().has_value(); });
    code = TheMessages().acknowledgeCode().value_or(0);
    return acknowledged ? 0 : InnerNoAcknowledge;
}

bool IsEntryAnswer(const LocoNetMessage &message)
{
    const bool ours = std::equal(AnswerHead.begin(), AnswerHead.end(), message.begin());
    const bool repeats = std::all_of(EntryAnswer.begin(), EntryAnswer.end(),
        [&](const auto &byte) { return message.at(byte.first) == byte.second; });
    return ours && repeats;
}

/// Waits for the station's answer to the entry request.
bool EntryAnswered()
{
    TheMessages().setDownloadAnswerCheck(IsEntryAnswer);
    const bool answered = Came([] { return !TheMessages().downloadAnswerAwaited(); });
    TheMessages().setDownloadAnswerCheck(nullptr);
    return answered;
}

/// `entered` becomes true when the station has gone into its download mode.
int EnterDownloadMode(bool &entered)
{
    constexpr Commands commands{3, 7, 0};
    int code = 0;
    if (const int inner = ExchangeWithStation(EntryData, commands, code); inner != 0)
        return inner;
    if (code == AckAccepted) {
        entered = true; // also when its answer is lost
        if (!EntryAnswered())
            return InnerNoAnswer;
    } else if (code != AckAlreadyDone) {
        return InnerNoAcknowledge;
    }
    entered = true;
    if (const int inner = ExchangeWithStation(SecondEntryData, commands, code); inner != 0)
        return inner;
    return code == AckAccepted || code == AckAlreadyDone ? 0 : InnerNoAcknowledge;
}

/// Foreign 0xE5 messages may come first; the wait goes on for the station's own answer.
bool StationAnswered()
{
    const auto reply = TheMessages().rawReply();
    if (!reply)
        return false;
    if (reply->head == AnswerHead)
        return true;
    TheMessages().wantRawReply();
    return false;
}

/// One request that needs the acknowledge 127 and an answer.
int RequestStep(const Data &data, const Commands &commands, Data *answer = nullptr)
{
    int code = 0;
    TheMessages().wantRawReply();
    int inner = ExchangeWithStation(data, commands, code);
    if (inner == 0 && code != AckAccepted)
        inner = InnerNoAcknowledge;
    TheMessages().wantRawReply(); // what came before the acknowledge answers an older request
    if (inner == 0 && !Came(StationAnswered))
        inner = InnerNoAnswer;
    if (inner == 0 && answer != nullptr)
        *answer = ReceivedData(*TheMessages().rawReply());
    TheMessages().endRawReply();
    return inner;
}

/// After a failed request its answer may still come, and would pass for the next one's: drops answers until none has
/// come for a while. Traffic of other devices does not prolong the wait, and no traffic keeps it up for good.
void DropLateAnswers()
{
    const double start = NowSeconds();
    double quietSince = start;
    TheMessages().wantRawReply();
    const auto quiet = [&] {
        if (StationAnswered()) {
            TheMessages().wantRawReply();
            quietSince = NowSeconds();
        }
        const bool enough = SecondsSince(quietSince) > QuietSeconds || SecondsSince(start) > LongestQuietWaitSeconds;
        return enough || !Comm().isOpen() || StopsNow();
    };
    const WakeUps looks(QuietPollMs); // silence tells nobody that it goes on
    static_cast<void>(PumpUntil(quiet));
    TheMessages().endRawReply();
}

quint8 HighByte(int value)
{
    return static_cast<quint8>(value >> 8);
}

quint8 LowByte(int value)
{
    return static_cast<quint8>(value);
}

/// One piece of a record. The answer is 0 or 255 in D1 of the first piece; anything else counts as no answer.
int ReadPart(int number, int part, Data &answer)
{
    const int position = FirstPosition + number - 1;
    int inner = 0;
    for (int attempt = 0; attempt < RecordTries; ++attempt) {
        inner = RequestStep({HighByte(position), LowByte(position), static_cast<quint8>(part)}, {3, 1, 5}, &answer);
        const bool strange = part == 0 && answer.at(0) != RecordFollows && answer.at(0) != EndOfDatabase;
        if (inner == 0 && strange)
            inner = InnerNoAnswer;
        if (inner == 0 || !Comm().isOpen() || WaitsMustEnd() || StopsNow())
            break;
        DropLateAnswers();
    }
    return inner;
}

QString NameOf(const Data &answer)
{
    QByteArray bytes;
    for (size_t i = NameStart; i < NameStart + NameBytes; ++i)
        bytes.append(static_cast<char>(answer.at(i)));
    QString name = QString::fromLatin1(bytes);
    return WithoutTrailingBlanks(name.remove(QChar::Null));
}

DownloadedLoco LocoOf(const Data &first, const Data &second)
{
    DownloadedLoco loco;
    loco.address = first.at(1) * 256 + first.at(2);
    loco.stationName = NameOf(first);
    loco.name = WithoutTrailingBlanks(AdaptName(loco.stationName).left(NameLength));
    for (size_t f = 0; f < FunctionCount; ++f)
        loco.modes.at(f) = second.at(f / ModesPerByte) >> (f % ModesPerByte) & 1;
    loco.multiUni = (second.at(3) & MultiUniBit) != 0 ? 1 : 0;
    loco.locoSymbol = second.at(4);
    return loco;
}

void Keep(Download &download, const DownloadedLoco &loco)
{
    if (loco.address >= FirstLoco && loco.address <= LastLoco)
        download.locos.push_back(loco);
    else
        ++download.unusable;
}

/// Reads records until the station has no more; 0 also when the user stops.
int ReadRecords(Download &download)
{
    const StoppableJob job;
    const bool wereStoppable = std::exchange(stepsMayStop, true);
    int inner = 0;
    for (int n = 1; n <= MostRecords && inner == 0 && !StopsNow(); ++n) {
        TheAsk().showProgress(QStringLiteral("Datensatz: ") + QString::number(n));
        Data first{};
        Data second{};
        inner = ReadPart(n, 0, first);
        if (inner != 0 || first.at(0) == EndOfDatabase)
            break;
        inner = ReadPart(n, 1, second);
        if (inner == 0)
            Keep(download, LocoOf(first, second));
    }
    const bool stopped = StopsNow() && CurrentRunState() == RunState::Running;
    stepsMayStop = wereStoppable;
    return stopped ? 0 : inner;
}

int WithBase(int base, int inner)
{
    return inner == 0 ? 0 : base + inner;
}

/// The steps between entering and leaving, up to the first that fails.
int ReadDatabase(Download &download)
{
    if (const int inner = RequestStep({}, {3, 1, 0}); inner != 0)
        return WithBase(BasePreparation, inner);
    if (const int inner = RequestStep({RangeFirst, RangeLast}, {3, 1, 1}); inner != 0)
        return WithBase(BaseRange, inner);
    TheAsk().showProgress(QStringLiteral("Datenbank lesen"));
    if (const int inner = RequestStep({1}, {3, 1, 3}); inner != 0)
        return WithBase(BaseDatabase, inner);
    return WithBase(BaseRecords, ReadRecords(download));
}

/// Also when the program ends: the station would stay in its download mode otherwise.
int LeaveDownloadMode()
{
    const MustFinish exchange;
    return WithBase(BaseLeaving, RequestStep(EntryData, {3, 7, 1}));
}

int RunDownload(Download &download)
{
    bool entered = false;
    if (const int inner = EnterDownloadMode(entered); inner != 0) {
        if (entered) // the station acknowledged its first request: it is in its download mode
            static_cast<void>(LeaveDownloadMode());
        return WithBase(BaseEntry, inner);
    }
    const int status = ReadDatabase(download);
    const int leaving = LeaveDownloadMode();
    return status != 0 ? status : leaving;
}

void ReportFailure(int status)
{
    if (TheLink().LinkLost || BoxesAreSilent())
        return; // the loss has been told
    QString text = QStringLiteral("Fehler beim Lesen der Datenbank:") + NumberText(status);
    if (status < BaseLeaving)
        text = TheBranding().noStationText;
    else if (status < BasePreparation)
        text = QStringLiteral(
            "Alle Lokdaten sind gelesen. Die Zentrale hat nur das Ende der Übertragung nicht bestätigt;\r"
            "falls sie nicht weiterarbeitet, schalten Sie sie bitte aus und wieder ein.");
    TheAsk().showBox({text, QStringLiteral("Achtung!"), BoxIcon::None});
}

} // namespace

Download DownloadLocos()
{
    Download download;
    const TicksOnly
        pace; // an answer that comes together with the acknowledge before it would be taken for an older one
    TheAsk().showProgress(TheBranding().downloadText);
    download.status = RunDownload(download);
    TheMessages().setDownloadAnswerCheck(nullptr); // or 0xE5 messages would not reach the memory transfer any more
    TheMessages().endRawReply();
    TheAsk().hideProgress();
    if (download.status != 0)
        ReportFailure(download.status);
    return download;
}

LocoRecord RecordOfLoco(const DownloadedLoco &loco)
{
    return {FitLocoName(loco.name), {}, loco.modes, loco.multiUni, loco.locoSymbol};
}

} // namespace hr::station
