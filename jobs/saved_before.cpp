#include "jobs/saved_before.h"

#include "platform/files.h"
#include "platform/world.h"
#include "program/ask.h"

#include <QDir>
#include <QFile>

namespace
{

const auto BeforeEnding = QStringLiteral("-vorher.dds");
const auto TakenBackEnding = QStringLiteral("-zurueckgenommen.dds");

QString Folder()
{
    return KonfPath(QStringLiteral("\\konf\\Sicherungen"));
}

/// Named so that the order of the names is the order in time.
QString NewName(const QString &ending)
{
    const QString front = Folder() + u'/' + TheEvents().now().toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    QString name = front + ending;
    for (int n = 2; QFile::exists(name); ++n)
        name = front + u'-' + QString::number(n) + ending;
    return name;
}

QString TakenBackName(QString fileName)
{
    return fileName.replace(BeforeEnding, TakenBackEnding);
}

void RemoveOldest()
{
    QDir folder(Folder());
    QStringList names = folder.entryList({u'*' + BeforeEnding, u'*' + TakenBackEnding}, QDir::Files, QDir::Name);
    while (names.size() > MostSavedBefore)
        folder.remove(names.takeFirst());
}

} // namespace

QString SaveBefore(const QByteArray &records, bool takesBack)
{
    QDir().mkpath(Folder());
    const QString name = NewName(takesBack ? TakenBackEnding : BeforeEnding);
    if (!ReplaceFile(name, records)) {
        ReportFileUnwritable(name);
        return {};
    }
    RemoveOldest();
    return name;
}

SavedState LoadSavedBefore(const QString &fileName, std::vector<DdsRecord> &records)
{
    const auto file = LoadDds(fileName);
    const DdsContent content = file ? ReadDds(*file) : DdsContent();
    if (file && !content.fault) {
        records = content.records;
        return SavedState::Sound;
    }
    return !file && FileExists(TakenBackName(fileName)) ? SavedState::TakenBack : SavedState::Gone;
}

QString LastSavedBefore()
{
    const QStringList names = QDir(Folder()).entryList({u'*' + BeforeEnding}, QDir::Files, QDir::Name);
    return names.isEmpty() ? QString() : QString(Folder() + u'/' + names.constLast());
}

void MarkAsTakenBack(const QString &fileName)
{
    QFile::rename(fileName, TakenBackName(fileName));
}
