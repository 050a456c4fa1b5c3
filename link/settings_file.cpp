#include "link/settings_file.h"

#include "platform/files.h"
#include "platform/text.h"

#include <QFile>
#include <QStringList>

#include <algorithm>

PortValue PortNumber;
int InterfaceType = InterfaceNone;

namespace
{

QString SettingsPath()
{
    return KonfPath(QStringLiteral("\\konf\\ComPort.inf"));
}

/// One field: a quoted text keeps its blanks, a bare one loses them and ends at a comma.
PortValue ParseField(const QString &line)
{
    const QString field = line.trimmed();
    if (field.startsWith(u'"')) {
        const qsizetype end = field.indexOf(u'"', 1);
        return {field.mid(1, end < 0 ? -1 : end - 1), false};
    }
    const QString bare = field.section(u',', 0, 0).trimmed();
    const bool digits = std::all_of(bare.begin(), bare.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return {bare, digits && !bare.isEmpty()};
}

QString FieldText(const PortValue &value)
{
    return value.isNumber || value.text.isEmpty() ? value.text : u'"' + value.text + u'"';
}

} // namespace

void ReadSettings()
{
    QFile file(SettingsPath());
    ParseSettings(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
}

void ParseSettings(const QByteArray &content)
{
    PortNumber = {};
    InterfaceType = InterfaceNone;
    const QStringList lines = ScreenLines(QString::fromLatin1(content)).split(u'\n');
    PortNumber = ParseField(lines.at(0));
    const int kind = lines.size() > 1 ? Val(ParseField(lines.at(1)).text) : InterfaceNone;
    if (kind >= InterfaceOrvanto1 && kind <= InterfaceDirect)
        InterfaceType = kind;
}

void WriteSettings()
{
    const QString kind = InterfaceType == InterfaceNone ? QString() : QString::number(InterfaceType);
    const QString content = FieldText(PortNumber) + u"\r\n" + kind + u"\r\n";
    if (!ReplaceFile(SettingsPath(), content.toLatin1()))
        ReportUnwritable(QStringLiteral("konf\\ComPort.inf"));
}

void ResetSettings()
{
    PortNumber = {};
    InterfaceType = InterfaceNone;
}
