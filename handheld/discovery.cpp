#include "handheld/discovery.h"

#include "handheld/flash_map.h"
#include "handheld/transfer.h"
#include "link/branding.h"
#include "link/open_port.h"
#include "link/settings_file.h"
#include "link/text_encoding.h"
#include "platform/run_control.h"
#include "platform/text.h"
#include "platform/world.h"

QString HandheldVersion;
QString HandheldDate;
QString HandheldType;
QString HandheldKind;

namespace
{

constexpr int TextBlockSize = 8192;
constexpr int TextEntrySize = 32;
constexpr int TextLengthLimit = 22; // length bytes from here on mean "no text"
constexpr int FirstStateText = 51;
constexpr int SecondStateText = 52;
constexpr size_t TypeIndex = 5;
constexpr size_t TypeLength = 5;

QString Decimal(size_t index)
{
    return QString::number(SpiBuf.at(index));
}

QString TypeNumber()
{
    QString type;
    for (size_t i = TypeIndex; i < TypeIndex + TypeLength; ++i) {
        const int byte = SpiBuf.at(i);
        type += byte < 10 ? QString::number(byte) : QString(QChar(static_cast<char16_t>(byte)));
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

void ShowInTitle()
{
    QString title = TheBranding().windowTitle + QStringLiteral(" : Vers: ");
    if (HandheldVersion.isEmpty())
        title += QStringLiteral("unbekannt");
    else
        title += HandheldVersion + QStringLiteral(" vom ") + HandheldDate + QStringLiteral(" Type: ") + HandheldType;
    TheFrontend().setMainWindowTitle(title);
}

void ReportNoHandheld()
{
    if (PortLost || BoxesAreSilent())
        return;
    TheFrontend().showBox({QStringLiteral("Handregler antwortet nicht!\rAnschluss überprüfen!"),
        QStringLiteral("Achtung"), BoxIcon::Critical});
}

void Identify()
{
    ReadHandheldInfo(HandheldVersion, HandheldDate, HandheldType);
    HandheldKind = KindOfType(HandheldType);
}

} // namespace

bool PortReady()
{
    if (Comm().isOpen())
        return true;
    int status = 0;
    OpenPort(status);
    if (status != 0)
        return false;
    if (!Comm().isOpen() && InterfaceType != InterfaceNone) {
        TheFrontend().showBox(
            {QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"), BoxIcon::Critical});
    }
    return Comm().isOpen();
}

void SetNormalMode(bool noWait, int &status)
{
    BeginTransferMessage();
    TxMsg.at(5) = 0x70;
    TxMsg.at(10) = 0x30;
    TxMsg.at(15) = 0x10;
    TxMsg.at(20) = 0x50;
    TxMsg.at(25) = 0x60;
    LastAckCode = 0;
    SendTransferMessage();
    status = noWait ? 0 : AwaitAnswer([] { return LastAckCode == AckAccepted; }, QString());
}

void ReadHandheldInfo(QString &version, QString &date, QString &type)
{
    BeginTransferMessage();
    TxMsg.at(10) = 0x30;
    SpiReadDone = 0;
    SpiReadStart = 0;
    SendTransferMessage();
    if (AwaitAnswer([] { return SpiReadDone == 1; }, QStringLiteral("read_spibuf")) != 0) {
        version = date = type = QString();
        return;
    }
    version = Decimal(0) + u'.' + Decimal(1);
    date = Decimal(2) + u'.' + Decimal(3) + u'.' + Decimal(4);
    type = TypeNumber();
}

QString ReadHandheldText(int block, int number)
{
    const int address = TextTableAddress + block * TextBlockSize + number * TextEntrySize;
    int status = 0;
    read_flash_to_spibuf(address, TextEntrySize, status);
    for (const int start : {0, SliceSize}) {
        if (status == 0)
            read_spibuf(start, status);
    }
    const int length = SpiBuf.at(ReadPosition);
    if (status != 0 || length >= TextLengthLimit)
        return {};
    return DecodeName(SpiBuf, ReadPosition + 1, length);
}

void ConnectHandheld()
{
    HandheldVersion = HandheldDate = HandheldType = HandheldKind = QString();
    if (!PortReady())
        return;
    int status = 1;
    SetNormalMode(false, status);
    if (status == 0) {
        HandreglerGefunden = true;
        Identify();
    } else {
        ReportNoHandheld();
    }
    ShowInTitle();
}

bool HandheldConnected()
{
    if (!HandreglerGefunden) {
        const auto shown = SpiBuf;
        ConnectHandheld();
        SpiBuf = shown;
    }
    return HandreglerGefunden && !WaitsMustEnd();
}

void CloseHandheld()
{
    if (!HandreglerGefunden)
        return;
    int status = 0;
    SetNormalMode(false, status);
    WaitSeconds(LastTrafficSeconds);
    HandreglerGefunden = false;
}

void ResetDiscovery()
{
    HandheldVersion = HandheldDate = HandheldType = HandheldKind = QString();
}
