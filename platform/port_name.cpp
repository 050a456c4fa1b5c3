#include "platform/port_name.h"

#include "platform/text.h"

#include <QRegularExpression>

#include <algorithm>

namespace hr::platform
{

namespace
{
constexpr int HighestPortNumber = 9999;
constexpr int HighestNetworkPort = 65535;
} // namespace

bool IsDemoPort(const QString &portText)
{
    return portText.trimmed().compare(QStringLiteral("Demo"), Qt::CaseInsensitive) == 0;
}

std::optional<NetworkPort> NetworkPortOf(const QString &portText)
{
    static const QRegularExpression device(
        QStringLiteral("[/\\\\]|^com\\d*:?$"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression place(QStringLiteral("^(?:\\[([^\\]]+)\\]|([^:\\[\\]\\s]+)):(\\d*)$"));
    const auto raw = QStringLiteral("raw:");
    QString text = portText.trimmed();
    if (!text.contains(u':') || device.match(text).hasMatch())
        return {};
    NetworkPort port;
    port.plainBytes = text.startsWith(raw, Qt::CaseInsensitive) && text.indexOf(u':', raw.size()) >= 0;
    if (port.plainBytes)
        text.remove(0, raw.size());
    const auto match = place.match(text);
    if (!match.hasMatch())
        return port;
    port.host = match.captured(1) + match.captured(2);
    const QString number = match.captured(3);
    const int value = number.isEmpty() ? StandardNetworkPort : number.size() > 5 ? 0 : number.toInt();
    port.port = value <= HighestNetworkPort ? value : 0;
    return port;
}

QString PortDevice(const QString &portText)
{
    QString name = portText.trimmed();
    const bool isNumber =
        !name.isEmpty() && std::all_of(name.begin(), name.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!isNumber)
        return name;
    const int number = Val(name);
    if (number < 1 || number > HighestPortNumber)
        return {};
#ifdef Q_OS_WIN
    return QStringLiteral("COM%1").arg(number);
#else
    return QStringLiteral("/dev/ttyS%1").arg(number - 1);
#endif
}

QString PortPath(const QString &portText)
{
    const QString device = PortDevice(portText);
    if (NetworkPortOf(portText))
        return device;
#ifdef Q_OS_WIN
    return device;
#else
    return device.isEmpty() || device.startsWith(u'/') ? device : QStringLiteral("/dev/") + device;
#endif
}

} // namespace hr::platform
