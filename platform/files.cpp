#include "platform/files.h"

#include "platform/disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUuid>

#include <filesystem>
#include <system_error>

namespace hr::platform
{

namespace
{

QString programFolder; // NOLINT(cert-err58-cpp): QString's default constructor does not throw
QString dataFolder;    // NOLINT(cert-err58-cpp)

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
    dataFolder = folder;
}

void SetDataFolder(const QString &folder)
{
    dataFolder = folder;
}

QString DataFolder()
{
    return dataFolder;
}

QString ProgramFolder()
{
    return programFolder;
}

QString KonfPath(const QString &relative)
{
    QString path = dataFolder;
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

std::optional<QByteArray> ReadSmallFile(const QString &path, qint64 mostBytes)
{
    const QFileInfo file(path);
    return file.isFile() && file.size() <= mostBytes ? ReadWholeFile(path) : std::nullopt;
}

bool ReplaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && TheDisk().write(file, content) && TheDisk().flush(file)
        && TheDisk().replace(file) && TheDisk().flushFolder(QFileInfo(path).absolutePath());
}

bool ReplaceFileInScannedFolder(const QString &path, const QByteArray &content)
{
    if (QFileInfo::exists(path) && !(QFileInfo(path).isFile() && QFileInfo(path).isWritable()))
        return false;
    const QString beside = KonfPath(QStringLiteral("\\konf"))
        + QStringLiteral("/neu-%1.tmp").arg(QUuid::createUuid().toString(QUuid::Id128));
    if (!ReplaceFile(beside, content))
        return false;
    std::error_code failure;
    std::filesystem::rename(SystemPath(beside), SystemPath(path), failure);
    if (failure)
        QFile::remove(beside);
    return !failure;
}

bool MakeFolder(const QString &folder)
{
    return QFileInfo(folder).isDir()
        || (QDir().mkpath(folder) && TheDisk().flushFolder(QFileInfo(folder).absolutePath()));
}

QString InDataFolder(const QString &path)
{
    const QString front = dataFolder + u'/';
    return path.startsWith(front) ? path.mid(front.size()) : path;
}

QString FromDataFolder(const QString &path)
{
    return path.isEmpty() || QDir::isAbsolutePath(path) ? path : QString(dataFolder + u'/' + path);
}

bool IsSameFile(const QString &one, const QString &other)
{
    // The file system is asked, not the names: on some disks names that differ in case are one file.
    std::error_code failure;
    const bool same = std::filesystem::equivalent(SystemPath(one), SystemPath(other), failure);
    return failure ? QFileInfo(one).absoluteFilePath() == QFileInfo(other).absoluteFilePath() : same;
}

QStringList FileNames(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
}

} // namespace hr::platform
