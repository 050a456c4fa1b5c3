#include "link/open_port.h"

#include "link/message_layer.h"
#include "link/settings_file.h"
#include "platform/run_control.h"
#include "platform/world.h"

bool HandreglerGefunden = false;
int SelectionAnswer = 0;
bool SelectionAwaited = false;
bool PortLost = false;

namespace
{

constexpr double RawTextTimeoutSeconds = 5;
constexpr double PromptTimeoutSeconds = 5;
constexpr double BreakSeconds = 1;
constexpr double SettleSeconds = 0.3;
constexpr qint64 PromptPollUs = 20000; // the receive event belongs to the message layer; the set-up looks itself
constexpr int SetupInputLength = 100;
constexpr int BufferSize = 1024;

/// Keeps the message layer's hands off the received bytes while prompts are expected.
class TextMode
{
public:
    TextMode() { PortInTextMode = true; }
    ~TextMode() { PortInTextMode = false; }
    TextMode(const TextMode &) = delete;
    TextMode &operator=(const TextMode &) = delete;
};

bool WaitForPrompt()
{
    const double start = TheEvents().timeOfDay();
    QByteArray answer;
    const auto settled = [&] {
        answer += Comm().read();
        return answer.contains(']') || SecondsSince(start) > PromptTimeoutSeconds || !Comm().isOpen();
    };
    while (!settled()) {
        if (WaitsMustEnd())
            return false;
        TheEvents().after(PromptPollUs, [] {});
        TheEvents().pump();
    }
    return answer.contains(']');
}

bool CommandAnswered(const QString &command)
{
    int status = 1;
    SendRawText(command + u'\r', status);
    return status == 0 && WaitForPrompt();
}

void SendBreak()
{
    Comm().setBreak(true);
    WaitSeconds(BreakSeconds);
    Comm().setBreak(false);
    WaitSeconds(SettleSeconds);
}

bool OpenWithSettings(const QString &settings)
{
    Comm().setSettings(settings);
    return Comm().isOpen() || Comm().open();
}

bool SwitchTo19200()
{
    WaitSeconds(SettleSeconds);
    Comm().close();
    return OpenWithSettings(QStringLiteral("19200,n,8,2"));
}

bool ReopenForMessages()
{
    Comm().close();
    Comm().setInputLength(1);
    if (!Comm().open())
        return false;
    Comm().setReceiveThreshold(1);
    return true;
}

bool RunOrvanto1Sequence()
{
    const TextMode textMode;
    if (!Comm().isOpen())
        Comm().setPortName(PortNumber.text);
    if (!OpenWithSettings(QStringLiteral("2400,n,8,2")))
        return false;
    Comm().setInputLength(SetupInputLength);
    SendBreak();
    return CommandAnswered(QStringLiteral("xB19200")) && SwitchTo19200() && CommandAnswered(QStringLiteral("xRT255"))
        && CommandAnswered(QStringLiteral("x&LN$55AA")) && ReopenForMessages();
}

void ReportFailedOpen()
{
    TheFrontend().showBox(
        {QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"), BoxIcon::Critical});
}

bool SetUpInterface()
{
    int status = 0; // kind 2 and no kind at all: nothing to set up
    PortLost = false;
    if (InterfaceType == InterfaceOrvanto1)
        SetupOrvanto1Interface(status);
    else if (InterfaceType == InterfaceDirect)
        SetupDirectInterface(status);
    if (status != 0 && InterfaceType == InterfaceDirect)
        ReportFailedOpen();
    return status == 0;
}

} // namespace

void SetupDirectInterface(int &status)
{
    Comm().setPortName(PortNumber.text);
    Comm().setSettings(QStringLiteral("115200,n,8,1"));
    Comm().setReceiveThreshold(1);
    Comm().setDtr(false);
    Comm().setRts(false);
    Comm().setHandshake(SerialPort::Handshake::None);
    Comm().setInputBufferSize(BufferSize);
    Comm().setInputLength(0);
    Comm().setOutputBufferSize(BufferSize);
    status = Comm().open() ? 0 : 1;
}

void SetupOrvanto1Interface(int &status)
{
    status = RunOrvanto1Sequence() ? 0 : 1;
    if (status == 0)
        return;
    Comm().close();
    if (!PortLost && !BoxesAreSilent())
        TheFrontend().showBox({QStringLiteral("Zeichenübertragung nicht möglich!"), QStringLiteral("Orvanto 1:")});
}

void SendRawText(const QString &text, int &status)
{
    Comm().discardOutput();
    status = 1;
    const double start = TheEvents().timeOfDay();
    const QByteArray bytes = text.toLatin1();
    qsizetype next = 0;
    while (next < bytes.size()) {
        if (SecondsSince(start) > RawTextTimeoutSeconds || WaitsMustEnd() || !Comm().isOpen())
            return;
        if (Comm().cts() && Comm().outputEmpty()) {
            Comm().write(bytes.mid(next++, 1));
            LetEventsRun();
            continue;
        }
        TheEvents().after(PromptPollUs, [] {});
        TheEvents().pump();
    }
    status = 0;
}

void OpenPort(int &status)
{
    status = 0;
    if (Comm().isOpen()) {
        ClosePort();
        return;
    }
    while (!SetUpInterface()) {
        TheFrontend().hideProgress();
        if (WaitsMustEnd() || !AskForSelection()) {
            status = 1;
            return;
        }
    }
    WriteSettings();
}

void ClosePort()
{
    Comm().close();
    HandreglerGefunden = false;
    DropPendingMessage();
}

bool AskForSelection()
{
    SelectionAnswer = 0;
    SelectionAwaited = true;
    TheFrontend().showSelectionWindow();
    const bool answered = PumpUntil([] { return SelectionAnswer != 0; });
    SelectionAwaited = false;
    TheFrontend().hideSelectionWindow();
    if (answered && SelectionAnswer == 1)
        return true;
    RequestEnd();
    return false;
}

void HandlePortLoss()
{
    PortLost = true;
    ClosePort();
    if (BoxesAreSilent())
        return;
    TheFrontend().postBox(
        {QStringLiteral("Die Verbindung zum Anschluss \"%1\" ist abgebrochen!\r"
                        "Bitte Stecker und Interface überprüfen. Der nächste Befehl sucht den Handregler neu.")
                .arg(PortNumber.text.trimmed()),
            QStringLiteral("Fehler"), BoxIcon::Critical});
}

void ResetOpenPort()
{
    HandreglerGefunden = false;
    SelectionAnswer = 0;
    SelectionAwaited = false;
    PortLost = false;
}
