#include "program/preferences.h"

#include "platform/files.h"
#include "program/ask.h"

#include <QSettings>

namespace hr::program
{

namespace
{

const auto FastKey = QStringLiteral("Verbindung/Schnell");
} // namespace

QString PreferencesPath()
{
    return KonfPath(QStringLiteral("\\konf\\Einstellungen.ini"));
}

bool FastPreferred()
{
    return QSettings(PreferencesPath(), QSettings::IniFormat).value(FastKey, false).toBool();
}

void PreferFast(bool fast)
{
    if (fast == FastPreferred())
        return;
    QSettings settings(PreferencesPath(), QSettings::IniFormat);
    settings.setValue(FastKey, fast);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        ReportUnwritable(QStringLiteral("konf\\Einstellungen.ini"));
}

} // namespace hr::program
