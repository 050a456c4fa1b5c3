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
QString NewName()
{
    const QString front = Folder() + u'/' + TheEvents().now().toString(QStringLiteral("yyyy-MM-dd-HHmmss"));
    QString name = front + BeforeEnding;
    for (int n = 2; QFile::exists(name); ++n)
        name = front + u'-' + QString::number(n) + BeforeEnding;
    return name;
}

void RemoveOldest()
{
    QDir folder(Folder());
    QStringList names = folder.entryList({u'*' + BeforeEnding, u'*' + TakenBackEnding}, QDir::Files, QDir::Name);
    while (names.size() > MostSavedBefore)
        folder.remove(names.takeFirst());
}

} // namespace

QString SaveBefore(const QByteArray &records)
{
    QDir().mkpath(Folder());
    const QString name = NewName();
    if (!ReplaceFile(name, records)) {
        ReportFileUnwritable(name);
        return {};
    }
    RemoveOldest();
    return name;
}

QString LastSavedBefore()
{
    const QStringList names = QDir(Folder()).entryList({u'*' + BeforeEnding}, QDir::Files, QDir::Name);
    return names.isEmpty() ? QString() : QString(Folder() + u'/' + names.constLast());
}

void MarkAsTakenBack(const QString &fileName)
{
    QString taken = fileName;
    QFile::rename(fileName, taken.replace(BeforeEnding, TakenBackEnding));
}
