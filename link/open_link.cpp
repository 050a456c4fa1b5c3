#include "link/open_link.h"

#include "link/cadence.h"
#include "link/message_layer.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <array>
#include <functional>

namespace hr::link
{

namespace
{

constexpr double RawTextTimeoutSeconds = 5;
constexpr double PromptTimeoutSeconds = 5;
constexpr double BreakSeconds = 1;
constexpr double SettleSeconds = 0.3;
constexpr int PromptPollMs = 20; // the receive event belongs to the message layer; the set-up looks itself
constexpr int SetupInputLength = 100;
constexpr int BufferSize = 1024;

/// Keeps the message layer's hands off the received bytes while prompts are expected.
class TextMode
{
public:
    TextMode() { TheMessages().setTextMode(true); }
    ~TextMode() { TheMessages().setTextMode(false); }
    TextMode(const TextMode &) = delete;
    TextMode &operator=(const TextMode &) = delete;
};

/// Ends a step of the set-up: what is in the way, or nothing.
Outcome InTheWay()
{
    if (WaitsMustEnd())
        return Outcome(End::ProgramEnds);
    return Comm().isOpen() ? Outcome() : Outcome(End::PortLost);
}

Outcome WaitForPrompt()
{
    const WakeUps looks(PromptPollMs);
    const double start = NowSeconds();
    QByteArray answer;
    for (;;) {
        answer += Comm().read(); // the prompt may come in pieces
        if (answer.contains(']'))
            return {};
        if (Outcome outcome = InTheWay(); !outcome.ok())
            return outcome;
        if (SecondsSince(start) > PromptTimeoutSeconds)
            return Outcome(End::NoAnswer);
        TheEvents().pump();
    }
}

Outcome Command(const QString &command)
{
    Outcome sent = SendRawText(command + u'\r');
    return sent.ok() ? WaitForPrompt() : sent;
}

void SendBreak()
{
    Comm().setBreak(true);
    WaitSeconds(BreakSeconds);
    Comm().setBreak(false);
    WaitSeconds(SettleSeconds);
}

Outcome OpenWithSettings(const QString &settings)
{
    Comm().setSettings(settings);
    return Comm().isOpen() || Comm().open() ? Outcome() : Outcome(End::NotOpened);
}

/// The interface has changed its own speed by now; the port follows.
Outcome SwitchTo19200()
{
    WaitSeconds(SettleSeconds);
    Comm().close();
    Outcome opened = OpenWithSettings(QStringLiteral("19200,n,8,2"));
    return opened.ok() ? opened : Outcome(End::NoAnswer); // the port was open: it is the set-up that failed
}

Outcome ReopenForMessages()
{
    Comm().close();
    Comm().setInputLength(1);
    if (!Comm().open())
        return Outcome(End::NotOpened);
    Comm().setReceiveThreshold(1);
    return {};
}

Outcome OpenForBreak()
{
    if (!Comm().isOpen())
        Comm().setPortName(TheLink().PortNumber.text);
    Outcome opened = OpenWithSettings(QStringLiteral("2400,n,8,2"));
    if (!opened.ok())
        return opened;
    Comm().setInputLength(SetupInputLength);
    SendBreak();
    return {};
}

/// A port in the network is on its way; the port itself knows how long that may take.
Outcome AwaitConnection()
{
    while (Comm().connecting()) {
        if (WaitsMustEnd()) {
            Comm().close();
            return Outcome(End::ProgramEnds);
        }
        TheEvents().pump();
    }
    return Comm().isOpen() ? Outcome() : Outcome(End::NotOpened);
}

Outcome RunOrvanto1Sequence()
{
    const TextMode textMode;
    const std::array<std::function<Outcome()>, 6> steps{OpenForBreak,
        [] { return Command(QStringLiteral("xB19200")); }, SwitchTo19200,
        [] { return Command(QStringLiteral("xRT255")); }, [] { return Command(QStringLiteral("x&LN$55AA")); },
        ReopenForMessages};
    for (const auto &step : steps) {
        if (Outcome outcome = step(); !outcome.ok())
            return outcome;
    }
    return {};
}

} // namespace

Outcome SetupDirectInterface()
{
    Comm().setPortName(TheLink().PortNumber.text);
    Comm().setSettings(QStringLiteral("115200,n,8,1"));
    Comm().setReceiveThreshold(1);
    Comm().setDtr(false);
    Comm().setRts(false);
    Comm().setHandshake(SerialPort::Handshake::None);
    Comm().setInputBufferSize(BufferSize);
    Comm().setInputLength(0);
    Comm().setOutputBufferSize(BufferSize);
    return Comm().open() ? AwaitConnection() : Outcome(End::NotOpened);
}

Outcome SetupOrvanto1Interface()
{
    Outcome outcome = RunOrvanto1Sequence();
    if (outcome.ok())
        return outcome;
    Comm().close();
    const bool notOpened = outcome.how() == End::NotOpened;
    if (!TheLink().LinkLost && !BoxesAreSilent() && !notOpened)
        TheAsk().showBox({QStringLiteral("Zeichenübertragung nicht möglich!"), QStringLiteral("Orvanto 1:")});
    return outcome.brokenOff() || notOpened ? outcome : Outcome(End::NoAnswer);
}

Outcome SendRawText(const QString &text)
{
    const WakeUps looks(PromptPollMs); // CTS tells nobody when it changes
    Comm().discardOutput();
    const double start = NowSeconds();
    const QByteArray bytes = text.toLatin1();
    qsizetype next = 0;
    while (next < bytes.size()) {
        if (Outcome outcome = InTheWay(); !outcome.ok())
            return outcome;
        if (SecondsSince(start) > RawTextTimeoutSeconds)
            return Outcome(End::NotSent);
        if (Comm().cts() && Comm().outputEmpty()) {
            Comm().write(bytes.mid(next++, 1));
            LetEventsRun();
        } else {
            TheEvents().pump();
        }
    }
    return {};
}

Outcome SetUpLink()
{
    TheLink().LinkLost = false;
    BeginConnection();
    if (TheLink().InterfaceType != InterfaceDirect && TheLink().InterfaceType != InterfaceOrvanto1)
        return {}; // kind 2 and no kind at all: nothing to set up
    Outcome outcome =
        TheLink().InterfaceType == InterfaceOrvanto1 ? SetupOrvanto1Interface() : SetupDirectInterface();
    if (outcome.how() == End::NotOpened && !BoxesAreSilent()) {
        const auto text = QStringLiteral("ComPort konnte nicht geöffnet werden!");
        const QString reason = Comm().faultText();
        TheAsk().showBox(
            {reason.isEmpty() ? text : QString(text + u'\r' + reason), QStringLiteral("Fehler"), BoxIcon::Critical});
    }
    return outcome;
}

Outcome OpenLink()
{
    Outcome outcome = SetUpLink();
    if (outcome.ok())
        WriteSettings(TheLink().settings());
    return outcome;
}

void ClosePort()
{
    Comm().close();
    TheLink().endService();
    TheMessages().dropAll();
}

void HandlePortLoss()
{
    TheLink().LinkLost = true;
    ClosePort();
    if (BoxesAreSilent() || TheLink().lossTellers > 0)
        return;
    TheAsk().postBox(
        {QStringLiteral("Die Verbindung zum Anschluss \"%1\" ist abgebrochen!\r"
                        "Bitte Stecker und Interface überprüfen. Der nächste Befehl sucht den Handregler neu.")
                .arg(TheLink().PortNumber.text.trimmed()),
            QStringLiteral("Fehler"), BoxIcon::Critical});
}

TellsPortLoss::TellsPortLoss()
{
    ++TheLink().lossTellers;
}

TellsPortLoss::~TellsPortLoss()
{
    --TheLink().lossTellers;
}

void ResetOpenLink()
{
    TheLink() = {};
}

} // namespace hr::link
