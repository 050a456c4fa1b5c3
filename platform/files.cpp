#include "platform/files.h"

#include "platform/world.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace
{

bool unwritableReported = false;
QString programFolder; // NOLINT(cert-err58-cpp): QString's default constructor does not throw

/// The entry of the folder that matches the name without regard to case, or the name itself.
QString EntryInAnyCase(const QString &folder, const QString &name)
{
    const QDir dir(folder);
    if (dir.exists(name))
        return name;
    const QStringList entries = dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return entry;
    }
    return name;
}

} // namespace

void SetProgramFolder(const QString &folder)
{
    programFolder = folder;
}

QString ProgramFolder()
{
    return programFolder;
}

QString KonfPath(const QString &relative)
{
    QString path = programFolder;
    const QStringList steps = relative.split(u'\\', Qt::SkipEmptyParts);
    for (const QString &step : steps)
        path += u'/' + EntryInAnyCase(path, step);
    return path;
}

bool FileExists(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly);
}

bool ReplaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

void ReportUnwritable(const QString &relative)
{
    if (unwritableReported)
        return;
    unwritableReported = true;
    TheFrontend().showBox({QStringLiteral("Die Datei %1 kann nicht geschrieben werden!\r"
                                          "Das Programm arbeitet weiter, kann sich hier aber nichts merken.")
                               .arg(relative),
        QStringLiteral("Fehler!"), BoxIcon::Critical});
}

void ResetFiles()
{
    unwritableReported = false;
}

QStringList FileNames(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
}
