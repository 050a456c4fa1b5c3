#include "program/recent_files.h"

#include "program/preferences.h"

#include <QFileInfo>
#include <QSettings>

namespace hr::program
{

namespace
{

QSettings Settings()
{
    return QSettings(PreferencesPath(), QSettings::IniFormat);
}

QString Key()
{
    return QStringLiteral("Dateien/zuletzt");
}

/// The list without a file, by its full name.
QStringList Without(const QString &fileName)
{
    QStringList files = RecentFiles();
    files.removeAll(QFileInfo(fileName).absoluteFilePath());
    return files;
}

} // namespace

QStringList RecentFiles()
{
    return Settings().value(Key()).toStringList();
}

void NoteRecentFile(const QString &fileName)
{
    QStringList files = Without(fileName);
    files.prepend(QFileInfo(fileName).absoluteFilePath());
    Settings().setValue(Key(), files.first(qMin(files.size(), MostRecentFiles)));
}

void ForgetRecentFile(const QString &fileName)
{
    Settings().setValue(Key(), Without(fileName));
}

} // namespace hr::program
