#include "jobs/undo_snapshot.h"

#include "handheld/backup/dds_file.h"
#include "platform/disk.h"
#include "platform/files.h"
#include "platform/world.h"
#include "program/ask.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace hr::jobs
{

namespace
{

const auto BeforeMark = QStringLiteral("-vorher");
const auto TakenBackMark = QStringLiteral("-zurueckgenommen");
const auto BytesEnding = QStringLiteral(".bytes");
const auto DdsEnding = QStringLiteral(".dds");
constexpr int NumberDigits = 6;

QString Folder()
{
    return KonfPath(QStringLiteral("\\konf\\Sicherungen"));
}

/// The running number of a name; 0 for those of an older version.
int NumberOf(const QString &name)
{
    bool isNumber = false;
    const int number = name.section(u'-', 0, 0).toInt(&isNumber);
    return isNumber && name.indexOf(u'-') == NumberDigits ? number : 0;
}

/// The names of all snapshots with such a mark, the newest first; without the ending, each once.
QStringList Stems(const QString &mark)
{
    QStringList stems;
    const QStringList files =
        QDir(Folder()).entryList({u'*' + mark + BytesEnding, u'*' + mark + DdsEnding}, QDir::Files);
    for (const QString &file : files)
        stems += file.left(file.lastIndexOf(u'.'));
    std::ranges::sort(stems, [](const QString &one, const QString &other) {
        return std::pair(NumberOf(one), one) > std::pair(NumberOf(other), other);
    });
    stems.removeDuplicates();
    return stems;
}

/// The file that counts of a snapshot: an older version wrote only a backup file.
QString FileOf(const QString &stem)
{
    const QString bytes = Folder() + u'/' + stem + BytesEnding;
    return FileExists(bytes) ? bytes : QString(Folder() + u'/' + stem + DdsEnding);
}

/// A name that no other program takes at the same moment: its number is reserved by a file that only one can create.
class NewName
{
public:
    explicit NewName(const QString &mark)
    {
        const QStringList all = Stems(BeforeMark) + Stems(TakenBackMark);
        int number = 1;
        for (const QString &taken : all)
            number = std::max(number, NumberOf(taken) + 1);
        for (bool reserved = false; !reserved; ++number) {
            const QString front = QString::number(number).rightJustified(NumberDigits, u'0');
            reservation.setFileName(Folder() + u'/' + front + QStringLiteral(".nummer"));
            reserved = reservation.open(QIODevice::NewOnly) || !reservation.exists(); // a folder that takes nothing
            stem = Folder() + u'/' + front + TheEvents().now().toString(QStringLiteral("-yyyy-MM-dd-HHmmss")) + mark;
        }
    }
    ~NewName() { reservation.remove(); }
    NewName(const NewName &) = delete;
    NewName &operator=(const NewName &) = delete;

    QString stem;

private:
    QFile reservation;
};

/// The records that a backup file can hold.
QByteArray DdsOf(const SavedState &state)
{
    QByteArray file;
    for (const auto &[id, bytes] : state.before) {
        if (RowOf(id.kind).backupBytes > 0)
            file += PackRecord(id, ValueOf({id, bytes}));
    }
    return file;
}

bool IsNeeded(const QString &stem)
{
    const QString journal = LoadUndoSnapshot(FileOf(stem)).state.journal;
    return !journal.isEmpty() && FileExists(FromDataFolder(journal));
}

void RemoveFiles(const QString &stem)
{
    for (const QString &ending : {DdsEnding, BytesEnding})
        TheDisk().remove(Folder() + u'/' + stem + ending);
}

void RemoveOldest()
{
    for (const QString &mark : {BeforeMark, TakenBackMark}) {
        QStringList stems = Stems(mark);
        while (stems.size() > MostUndoSnapshots) {
            const QString oldest = stems.takeLast();
            if (!IsNeeded(oldest))
                RemoveFiles(oldest);
        }
    }
}

QString TakenBackName(const QString &fileName)
{
    const QFileInfo file(fileName);
    return file.path() + u'/' + file.fileName().replace(BeforeMark, TakenBackMark); // folders may be called so too
}

/// What an older version has saved: whole pages as well, but only what a backup file can say.
LoadedSnapshot LoadOldSnapshot(const QString &fileName)
{
    const auto file = LoadDds(fileName);
    const DdsContent content = file ? ReadDds(*file) : DdsContent();
    LoadedSnapshot loaded{content.fault ? SnapshotState::Damaged : SnapshotState::Sound, {}, false};
    LocoBytes erased{};
    erased.fill(EmptyByte);
    for (const DdsRecord &record : content.records) {
        const QByteArray bytes = SavedRecordOf(record.id, UnpackRecord(record), erased).bytes;
        loaded.state.before.insert_or_assign(record.id, bytes);
    }
    const auto pattern = QStringLiteral("yyyy-MM-dd-HHmmss");
    const auto time = QDateTime::fromString(QFileInfo(fileName).fileName().left(pattern.size()), pattern);
    loaded.state.time = time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return loaded;
}

} // namespace

QString SaveUndoSnapshot(const SavedState &state, SnapshotOf what)
{
    MakeFolder(Folder());
    const NewName name(what == SnapshotOf::TakeBack ? TakenBackMark : BeforeMark);
    QString fileName = name.stem + BytesEnding;
    const QByteArray file = SavedStateFile(state);
    const QByteArray dds = DdsOf(state);
    const bool written = (dds.isEmpty() || ReplaceFile(name.stem + DdsEnding, dds)) && ReplaceFile(fileName, file)
        && ReadWholeFile(fileName) == file;
    if (!written) {
        TheDisk().remove(fileName);
        ReportFileUnwritable(fileName);
        return {};
    }
    return fileName;
}

QStringList UndoSnapshots()
{
    QStringList names;
    for (const QString &stem : Stems(BeforeMark))
        names += FileOf(stem);
    return names;
}

int SnapshotNumber(const QString &fileName)
{
    return NumberOf(QFileInfo(fileName).fileName());
}

LoadedSnapshot LoadUndoSnapshot(const QString &fileName)
{
    const auto file = ReadWholeFile(fileName);
    if (!file)
        return {FileExists(TakenBackName(fileName)) ? SnapshotState::TakenBack : SnapshotState::Gone, {}, false};
    if (fileName.endsWith(DdsEnding))
        return LoadOldSnapshot(fileName);
    const ReadState read = ReadSavedState(*file);
    return {read.sound ? SnapshotState::Sound : SnapshotState::Damaged, read.state, read.foreign};
}

bool MarkAsTakenBack(const QString &fileName)
{
    const QString replaced = FromDataFolder(LoadUndoSnapshot(fileName).state.replaces);
    const QString stem = fileName.left(fileName.lastIndexOf(u'.'));
    bool marked = true;
    for (const QString &ending : {DdsEnding, BytesEnding})
        marked =
            (!FileExists(stem + ending) || TheDisk().rename(stem + ending, TakenBackName(stem + ending))) && marked;
    const bool isAlone = replaced.isEmpty() || replaced == fileName || !FileExists(replaced);
    return (isAlone || MarkAsTakenBack(replaced)) && marked;
}

void TidySnapshots(const SavedState &completed)
{
    if (!completed.replaces.isEmpty())
        RemoveFiles(QFileInfo(completed.replaces).completeBaseName());
    RemoveOldest();
}

} // namespace hr::jobs
