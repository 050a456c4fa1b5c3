#include "platform/text.h"

#include <limits>

namespace hr::platform
{

int Val(const QString &text)
{
    constexpr qint64 highest = std::numeric_limits<int>::max();
    qint64 value = 0;
    bool inNumber = false;
    for (const QChar c : text) {
        if (!inNumber && c == u' ')
            continue;
        if (c < u'0' || c > u'9')
            break;
        inNumber = true;
        value = qMin(value * 10 + (c.unicode() - u'0'), highest);
    }
    return static_cast<int>(value);
}

QString UpperLatin1(const QString &text)
{
    constexpr char16_t divisionSign = 0xF7;
    constexpr char16_t caseDistance = 0x20;
    QString result = text;
    for (QChar &c : result) {
        const char16_t u = c.unicode();
        const bool plain = u >= u'a' && u <= u'z';
        const bool accented = u >= 0xE0 && u <= 0xFE && u != divisionSign;
        if (plain || accented)
            c = QChar(static_cast<char16_t>(u - caseDistance));
    }
    return result;
}

QString NumberText(int number)
{
    return u' ' + QString::number(number);
}

QString WithoutTrailingBlanks(QString text)
{
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

QString ScreenLines(const QString &text)
{
    QString result = text;
    result.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    result.replace(u'\r', u'\n');
    return result;
}

} // namespace hr::platform
