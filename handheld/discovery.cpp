#include "handheld/discovery.h"

#include "handheld/flash_map.h"
#include "handheld/flash_read.h"
#include "handheld/known_locos.h"
#include "handheld/text_encoding.h"
#include "link/exchange.h"
#include "link/open_link.h"
#include "platform/text.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

namespace hr::handheld
{

namespace
{

constexpr int TextBlockSize = 8192;
constexpr int TextEntrySize = 32;
constexpr int TextLengthLimit = 22; // length bytes from here on mean "no text"
constexpr int FirstStateText = 51;
constexpr int SecondStateText = 52;
constexpr size_t TypeIndex = 5;
constexpr size_t TypeLength = 5;

constexpr double LastTrafficSeconds = 0.5; // pause after the handheld was sent back

/// A call went out and nothing says that the handheld was sent back: it may be in service though none counts as found.
bool calledWithoutAnswer = false;

/// How many answer is of no importance any more.
void ExpectOneHandheld()
{
    TheMessages().onSecondHandheld(nullptr);
    TheMessages().forgetSecondHandheld();
}

BoxText SecondHandheldBox()
{
    return {QStringLiteral("Es antwortet mehr als ein Handregler. Bitte nur einen verbinden."),
        QStringLiteral("Achtung"), BoxIcon::Critical};
}

/// Later than in a search: the one that answers cannot be told from the other any more. The next command searches anew.
void LoseBoth()
{
    TheLink().endService();
    calledWithoutAnswer = true; // the end of the program sends both back
    if (!BoxesAreSilent())
        TheAsk().postBox(SecondHandheldBox());
}

QString Decimal(int byte)
{
    return QString::number(byte);
}

QString TypeNumber(const SliceBytes &answer)
{
    QString type;
    for (size_t i = TypeIndex; i < TypeIndex + TypeLength; ++i) {
        const quint8 byte = answer.at(i);
        type += byte < 10 ? QString::number(byte) : QString(QChar(byte));
    }
    return type;
}

bool Contains(const QString &text, const QString &word)
{
    return UpperLatin1(text).contains(word);
}

/// Type 51200 was built as both kinds; its display texts tell which one it is. The later test wins.
QString KindFromTexts()
{
    const QString first = ReadHandheldText(0, FirstStateText);
    const QString second = ReadHandheldText(0, SecondStateText);
    QString kind;
    if (Contains(first, QStringLiteral("FREI")) && Contains(second, QStringLiteral("BELEGT")))
        kind = QStringLiteral("Funk-HR");
    if (Contains(first, QStringLiteral("ROT")) && Contains(second, QStringLiteral("GRÜN")))
        kind = QStringLiteral("Digital-Set");
    return kind;
}

QString KindOfType(const QString &type)
{
    if (type == u"51200")
        return KindFromTexts();
    if (type == u"51201")
        return QStringLiteral("Funk-HR");
    if (type == u"51202")
        return QStringLiteral("Digital-Set");
    return {};
}

void ReportNoHandheld()
{
    if (TheLink().LinkLost || BoxesAreSilent())
        return;
    TheAsk().showBox({QStringLiteral("Handregler antwortet nicht!\rAnschluss überprüfen!"), QStringLiteral("Achtung"),
        BoxIcon::Critical});
}

Request NormalModeRequest()
{
    Request request = Request::toHandheld();
    constexpr std::array<std::pair<size_t, quint8>, 5> pattern{
        {{5, 0x70}, {10, 0x30}, {15, 0x10}, {20, 0x50}, {25, 0x60}}};
    for (const auto &[index, value] : pattern)
        request.bytes.at(index) = value;
    return request;
}

/// Calls the handheld; remembers when it was called and the end of the program cuts the wait for its answer short.
Outcome Call()
{
    Outcome laid = SetNormalMode(true);
    if (!laid.ok())
        return laid;
    Outcome answered = AwaitAck();
    calledWithoutAnswer = answered.how() == End::ProgramEnds && TheMessages().hasGoneOut();
    return answered;
}

/// Waits until the laid message has left, also under CTS; false when it can't.
bool LeavesInTime()
{
    if (Await([] { return TheMessages().hasGoneOut(); }, SlotSeconds + AnswerSeconds).ok())
        return true;
    TheMessages().giveUp(false);
    return false;
}

} // namespace

Outcome SetNormalMode(bool noWait)
{
    return noWait ? SendOnly(NormalModeRequest()) : ExchangeForAck(NormalModeRequest());
}

Result<HandheldInfo> ReadHandheldInfo()
{
    Request request = Request::toHandheld();
    request.bytes.at(10) = 0x30;
    Result<SliceBytes> answer;
    answer.outcome = RunStep(Patience::Agreed, [&](const Patience &manner) {
        answer = ExchangeForReadBack(request, manner.tells);
        return answer.outcome;
    });
    if (answer.outcome.timedOut() && !BoxesAreSilent())
        TheAsk().showBox({QStringLiteral("Timeout"), QStringLiteral("read_spibuf"), BoxIcon::Critical});
    if (!answer.ok())
        return {{}, answer.outcome}; // also a damaged one: nobody is to be taken for somebody else
    const auto &bytes = answer.value;
    const QString version = Decimal(bytes.at(0)) + u'.' + Decimal(bytes.at(1));
    const QString date = Decimal(bytes.at(2)) + u'.' + Decimal(bytes.at(3)) + u'.' + Decimal(bytes.at(4));
    return {{version, date, TypeNumber(bytes), {}}, answer.outcome};
}

QString ReadHandheldText(int block, int number)
{
    SpiImage image{};
    const int address = TextTableAddress + block * TextBlockSize + number * TextEntrySize;
    Outcome outcome = RunStep(Patience::Agreed, [&](const Patience &manner) {
        Outcome read = read_flash_to_spibuf(address, TextEntrySize, manner);
        for (const int start : {0, SliceSize}) {
            if (read.ok())
                read = read_spibuf(image, start, manner);
        }
        return read;
    });
    const int length = image.at(ReadPosition);
    if (!outcome.ok() || length >= TextLengthLimit)
        return {};
    return DecodeName(image, ReadPosition + 1, length);
}

namespace
{

/// Both answer, and nobody can tell them apart: they are sent back, which one message does.
Result<HandheldInfo> GiveBothUp()
{
    TheLink().HandreglerGefunden = true; // so that they are sent back
    static_cast<void>(SendHandheldBack());
    if (!BoxesAreSilent())
        TheAsk().showBox(SecondHandheldBox());
    return {{}, Outcome(End::SecondHandheld)};
}

} // namespace

Result<HandheldInfo> FindHandheld()
{
    ExpectOneHandheld(); // what the search finds out it tells itself
    const Outcome called = Call();
    if (called.how() == End::SecondHandheld)
        return GiveBothUp();
    if (!called.ok()) {
        ReportNoHandheld();
        return {{}, called};
    }
    TheLink().HandreglerGefunden = true;
    ForgetKnownLocos(); // it may be another one
    HandheldInfo info = ReadHandheldInfo().value;
    if (!OnlyOneAnswers())
        return GiveBothUp();
    info.kind = KindOfType(info.type);
    if (TheMessages().secondHandheld())
        return GiveBothUp();
    TheMessages().onSecondHandheld(LoseBoth);
    return {info, called};
}

Outcome SendHandheldBack()
{
    if (!TheLink().HandreglerGefunden && !calledWithoutAnswer)
        return {};
    const MustFinish exchange; // behind a closed port, or without the program, it would stay in service
    calledWithoutAnswer = false;
    TheLink().endService(); // at once: nobody sends it back a second time
    ExpectOneHandheld();
    Outcome outcome = SetNormalMode(false);
    if (outcome.how() == End::NotSent) // an older message held the slot; it is given up by now
        outcome = SetNormalMode(false);
    WaitSeconds(LastTrafficSeconds);
    return outcome;
}

Outcome SendHandheldBackNoWait()
{
    const MustFinish exchange;
    ExpectOneHandheld();
    Outcome laid = SetNormalMode(true);
    if (!laid.ok())
        return laid;
    if (!LeavesInTime())
        return Outcome(End::NotSent); // still in service: the end of the program tries again
    TheLink().endService();
    WaitSeconds(LastTrafficSeconds);
    return laid;
}

void ResetDiscovery()
{
    ForgetKnownLocos();
    calledWithoutAnswer = false;
}

} // namespace hr::handheld
