#include "platform/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>

namespace
{

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

std::filesystem::path SystemPath(const QString &path)
{
    return {path.toStdU16String()};
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

std::optional<QByteArray> ReadWholeFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

bool ReplaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

bool ReplaceFileInScannedFolder(const QString &path, const QByteArray &content)
{
    QTemporaryFile file(KonfPath(QStringLiteral("\\konf")) + QStringLiteral("/neu-XXXXXX.tmp"));
    if (!file.open() || file.write(content) != content.size() || !file.flush())
        return false;
    // A file of its own has the usual rights; a temporary one only those of its owner.
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    file.close();
    std::error_code failure;
    std::filesystem::rename(SystemPath(file.fileName()), SystemPath(path), failure);
    if (failure)
        return false; // the temporary file goes with its object
    file.setAutoRemove(false);
    return true;
}

bool IsSameFile(const QString &one, const QString &other)
{
    const QFileInfo first(one);
    const QFileInfo second(other);
    if (first.exists() && second.exists())
        return first == second;
    return first.absoluteFilePath() == second.absoluteFilePath();
}

QStringList FileNames(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
}
