#include "platform/port_name.h"

#include "platform/text.h"

#include <algorithm>

namespace hr::platform
{

namespace
{
constexpr int HighestPortNumber = 9999;
}

bool IsDemoPort(const QString &portText)
{
    return portText.trimmed().compare(QStringLiteral("Demo"), Qt::CaseInsensitive) == 0;
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

} // namespace hr::platform
