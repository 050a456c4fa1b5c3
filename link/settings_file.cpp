#include "link/settings_file.h"

#include "platform/files.h"
#include "platform/text.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>

PortValue PortNumber;
int InterfaceType = InterfaceNone;

namespace
{

bool unsaved = false;

QString SettingsPath()
{
    return KonfPath(QStringLiteral("\\konf\\ComPort.inf"));
}

/// Takes the next field off the content: a quoted text keeps its blanks, a bare one loses them; a comma or the end of
/// the line ends it.
PortValue TakeField(QString &content)
{
    const qsizetype first = content.indexOf(QRegularExpression(QStringLiteral("[^ \t]")));
    const bool quoted = first >= 0 && content.at(first) == u'"';
    const qsizetype textEnd = quoted ? content.indexOf(u'"', first + 1) : 0;
    const qsizetype end = content.indexOf(QRegularExpression(QStringLiteral("[,\n]")), qMax<qsizetype>(textEnd, 0));
    const QString field = content.left(end).trimmed();
    content = end < 0 ? QString() : content.mid(end + 1);
    if (quoted)
        return {field.section(u'"', 1, 1), false};
    const bool digits = std::all_of(field.begin(), field.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return {field, digits && !field.isEmpty()};
}

QString FieldText(const PortValue &value)
{
    return value.isNumber || value.text.isEmpty() ? value.text : u'"' + value.text + u'"';
}

} // namespace

void ReadSettings()
{
    if (unsaved)
        return; // the file could not be written: what was chosen holds for this run
    QFile file(SettingsPath());
    ParseSettings(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
}

void ParseSettings(const QByteArray &content)
{
    PortNumber = {};
    InterfaceType = InterfaceNone;
    QString rest = ScreenLines(QString::fromLatin1(content));
    PortNumber = TakeField(rest);
    const int kind = Val(TakeField(rest).text);
    if (kind >= InterfaceOrvanto1 && kind <= InterfaceDirect)
        InterfaceType = kind;
}

void WriteSettings()
{
    const QString kind = InterfaceType == InterfaceNone ? QString() : QString::number(InterfaceType);
    const QString content = FieldText(PortNumber) + u"\r\n" + kind + u"\r\n";
    unsaved = !ReplaceFile(SettingsPath(), content.toLatin1());
    if (unsaved)
        ReportUnwritable(QStringLiteral("konf\\ComPort.inf"));
}

void ResetSettings()
{
    unsaved = false;
    PortNumber = {};
    InterfaceType = InterfaceNone;
}
