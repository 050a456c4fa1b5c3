#include "program/settings_file.h"

#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace hr::program
{

namespace
{

std::optional<LinkSettings> unsaved; // the file could not be written: holds until the program ends

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

LinkSettings ParseSettings(const QByteArray &content)
{
    LinkSettings settings;
    QString rest = ScreenLines(QString::fromLatin1(content));
    settings.port = TakeField(rest);
    const int kind = Val(TakeField(rest).text);
    if (kind >= InterfaceOrvanto1 && kind <= InterfaceDirect)
        settings.interfaceType = kind;
    return settings;
}

LinkSettings ReadSettings()
{
    return unsaved ? *unsaved : ParseSettings(ReadWholeFile(SettingsPath()).value_or(QByteArray()));
}

void WriteSettings(const LinkSettings &settings)
{
    const QString kind =
        settings.interfaceType == InterfaceNone ? QString() : QString::number(settings.interfaceType);
    const QString content = FieldText(settings.port) + u"\r\n" + kind + u"\r\n";
    unsaved.reset();
    if (ReplaceFile(SettingsPath(), content.toLatin1()))
        return;
    unsaved = settings;
    ReportUnwritable(QStringLiteral("konf\\ComPort.inf"));
}

void ResetSettings()
{
    unsaved.reset();
}

} // namespace hr::program
