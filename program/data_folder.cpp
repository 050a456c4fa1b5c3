#include "program/data_folder.h"

#include "platform/files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QMap>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace hr::program
{

namespace
{

const auto FolderName = QStringLiteral("handregler-tool");
const auto ListName = QStringLiteral("/.geliefert");
const auto Konf = QStringLiteral("/konf");
const auto InstalledMark = QStringLiteral("/installiert.txt");

/// Tried, because rights alone do not tell (a read-only disk, a folder of the system).
bool CanBeWritten(const QString &folder)
{
    QTemporaryFile probe(folder + QStringLiteral("/probe-XXXXXX"));
    return probe.open();
}

QString SumOf(const QByteArray &content)
{
    return QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
}

QMap<QString, QString> DeliveredFiles(const QString &konf)
{
    QMap<QString, QString> files;
    const QString text = QString::fromUtf8(ReadWholeFile(konf + ListName).value_or(QByteArray()));
    for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts))
        files.insert(line.section(u' ', 1), line.section(u' ', 0, 0));
    return files;
}

/// Brings one installed file to the user; the sum is what was delivered last (empty: never).
void Deliver(const QByteArray &content, const QString &target, const QString &deliveredSum)
{
    const auto present = ReadWholeFile(target);
    const bool untouched = present && SumOf(*present) == deliveredSum;
    const bool isNew = !present && deliveredSum.isEmpty();
    if (untouched || isNew) {
        QDir().mkpath(QFileInfo(target).path());
        static_cast<void>(ReplaceFile(target, content)); // an old help text is no reason not to start
    }
}

void Fill(const QString &installedKonf, const QString &ownKonf)
{
    QMap<QString, QString> delivered = DeliveredFiles(ownKonf);
    const QMap<QString, QString> before = delivered;
    const QDir source(installedKonf);
    QDirIterator files(installedKonf, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = source.relativeFilePath(files.next());
        const auto content = ReadWholeFile(files.filePath());
        if (!content || SumOf(*content) == delivered.value(name))
            continue; // known already: also when the user has deleted it
        Deliver(*content, ownKonf + u'/' + name, delivered.value(name));
        delivered.insert(name, SumOf(*content));
    }
    if (delivered == before)
        return;
    QString text;
    for (auto file = delivered.cbegin(); file != delivered.cend(); ++file)
        text += file.value() + u' ' + file.key() + u'\n';
    static_cast<void>(ReplaceFile(ownKonf + ListName, text.toUtf8()));
}

} // namespace

void UseDataFolder(const QString &programFolder)
{
    SetProgramFolder(programFolder);
    const QString own = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' + FolderName;
    SetDataFolder(ChooseDataFolder(programFolder, own));
}

QString ChooseDataFolder(const QString &programFolder, const QString &ownFolder)
{
    const bool hasKonf = QDir(programFolder + Konf).exists();
    const bool installed = FileExists(programFolder + InstalledMark);
    if (!installed && CanBeWritten(hasKonf ? programFolder + Konf : programFolder))
        return programFolder;
    return FillDataFolder(programFolder, ownFolder) ? ownFolder : programFolder;
}

bool FillDataFolder(const QString &programFolder, const QString &ownFolder)
{
    if (!QDir().mkpath(ownFolder + Konf) || !CanBeWritten(ownFolder + Konf))
        return false;
    Fill(programFolder + Konf, ownFolder + Konf);
    return true;
}

} // namespace hr::program
