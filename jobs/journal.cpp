#include "jobs/journal.h"

#include "handheld/backup/number_list.h"
#include "jobs/checked_lines.h"
#include "jobs/saved_state.h"
#include "platform/disk.h"
#include "platform/files.h"
#include "platform/world.h"
#include "program/ask.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

namespace hr::jobs
{

namespace
{

const auto FormatWord = QStringLiteral("handregler-fortschritt ");
const auto FirstLine = QStringLiteral("handregler-fortschritt 2");
const auto JobWord = QStringLiteral("auftrag");
const auto HandheldWord = QStringLiteral("handregler");
const auto BegunWord = QStringLiteral("begonnen");
const auto RecordsWord = QStringLiteral("saetze");
const auto SnapshotWord = QStringLiteral("vorher");
const auto FinishedWord = QStringLiteral("fertig");
const auto DataWord = QStringLiteral("daten");
const auto EmptyWord = QStringLiteral("leer");

constexpr qint64 LargestJournal = qint64{64} * 1024 * 1024;

/// "1:1-5,8 3:7 5:0"
QString RecordsLine(const std::vector<RecordId> &records)
{
    std::map<RecordKind, std::vector<int>> numbers;
    for (const RecordId &id : records)
        numbers[id.kind].push_back(id.number);
    QStringList parts;
    for (const auto &[kind, list] : numbers)
        parts += QString::number(ByteOfKind(kind)) + u':' + ShortList(list, QString());
    return parts.join(u' ');
}

bool TakeRecords(std::set<RecordId> &records, const QString &rest)
{
    for (const QString &part : rest.split(u' ', Qt::SkipEmptyParts)) {
        const QString kind = part.section(u':', 0, 0);
        NumberList numbers(part.section(u':', 1));
        for (int n = numbers.next(); n >= 0; n = numbers.next()) {
            const auto id = IdOf(kind + u' ' + QString::number(n));
            if (!id)
                return false;
            records.insert(*id);
        }
    }
    return true;
}

void TakeData(JournalContent &content, const QString &rest)
{
    const DdsContent data = ReadDds(QByteArray::fromHex(rest.toLatin1()));
    if (!data.fault && data.records.size() == 1)
        content.read.push_back(data.records.front());
}

/// Takes one line behind the head. What is not understood does not count.
void TakeLine(JournalContent &content, const QString &line)
{
    const QString word = line.section(u' ', 0, 0);
    const QString rest = line.section(u' ', 1);
    const auto id = word == FinishedWord || word == EmptyWord ? IdOf(rest) : std::nullopt;
    if (id)
        (word == FinishedWord ? content.finished : content.empty).push_back(*id);
    else if (word == DataWord)
        TakeData(content, rest);
    else if (word == SnapshotWord)
        content.snapshot = FromDataFolder(rest);
    else if (word == BegunWord)
        content.begun = QDateTime::fromString(rest, Qt::ISODate);
    else if (word == RecordsWord && !TakeRecords(content.records, rest))
        content.records.clear();
}

const auto JournalEnding = QStringLiteral(".fortschritt");

QString NameInDataFolder(const QString &fileName)
{
    constexpr qsizetype digits = 8;
    const QFileInfo file(fileName);
    const QByteArray path = file.absoluteFilePath().toUtf8();
    const QByteArray sum = QCryptographicHash::hash(path, QCryptographicHash::Md5).toHex().left(digits);
    return KonfPath(QStringLiteral("\\konf\\Sicherungen")) + u'/' + QString::fromLatin1(sum) + u'-' + file.fileName()
        + JournalEnding;
}

bool TakesFiles(const QString &folder)
{
    return QTemporaryFile(folder + QStringLiteral("/handregler-XXXXXX")).open();
}

BoxText FaultBox(const QString &text)
{
    return {text, QStringLiteral("Fehler!"), BoxIcon::Critical};
}

} // namespace

QString JobName(const QString &verb, const QByteArray &about)
{
    const QByteArray sum = QCryptographicHash::hash(about, QCryptographicHash::Sha256).toHex();
    return verb + u' ' + QString::fromLatin1(sum);
}

QString HandheldName(const HandheldInfo &info)
{
    return QStringList{info.type, info.version, info.date}.join(u' ');
}

QString JournalName(const QString &fileName)
{
    QString beside = fileName + JournalEnding;
    if (QFile::exists(beside))
        return beside;
    const QString elsewhere = NameInDataFolder(fileName);
    return QFile::exists(elsewhere) || !TakesFiles(QFileInfo(fileName).absolutePath()) ? elsewhere : beside;
}

QStringList FilesWithJournal(const QString &folder)
{
    QStringList files = QDir(folder).entryList({u'*' + JournalEnding}, QDir::Files, QDir::Time);
    for (QString &name : files)
        name = QDir(folder).filePath(name.chopped(JournalEnding.size()));
    return files;
}

std::optional<JournalContent> ReadJournal(const QString &fileName)
{
    QFile file(JournalName(fileName));
    if (!file.exists())
        return {};
    JournalContent content;
    if (!file.open(QIODevice::ReadOnly) || file.size() > LargestJournal)
        return content;
    const QByteArray bytes = file.readAll();
    content.otherVersion =
        bytes.startsWith(FormatWord.toUtf8()) && !bytes.startsWith(QByteArray(FirstLine.toUtf8() + ' '));
    const QStringList lines = ReadCheckedLines(bytes).texts;
    const bool named = lines.size() >= 3 && lines.at(0) == FirstLine && lines.at(1).startsWith(JobWord + u' ')
        && lines.at(2).startsWith(HandheldWord + u' ');
    if (!named || content.otherVersion)
        return content;
    content.head = {lines.at(1).section(u' ', 1), lines.at(2).section(u' ', 1)};
    for (const QString &line : lines.mid(3))
        TakeLine(content, line);
    return content;
}

Earlier EarlierPart(const QString &fileName, const JournalHead &head, JournalContent &content)
{
    const auto found = ReadJournal(fileName);
    if (!found)
        return Earlier::None;
    content = *found;
    if (content.otherVersion)
        return Earlier::OtherVersion;
    if (content.head.job.isEmpty())
        return Earlier::Damaged;
    if (content.head.job != head.job)
        return Earlier::OtherJob;
    return content.head.handheld == head.handheld ? Earlier::Fits : Earlier::OtherHandheld;
}

QString EarlierFault(Earlier earlier, const QString &fileName)
{
    QString reason;
    if (earlier == Earlier::Damaged)
        reason = QStringLiteral("Er ist beschädigt.");
    else if (earlier == Earlier::OtherVersion)
        reason = QStringLiteral("Er stammt von einer anderen Version dieses Programms.");
    else if (earlier == Earlier::OtherJob)
        reason = QStringLiteral("Er gehört zu einem anderen Auftrag, oder die Datei wurde seither geändert.");
    else if (earlier == Earlier::OtherHandheld)
        reason = QStringLiteral("Er gehört zu einem anderen Handregler.");
    if (reason.isEmpty())
        return {};
    return QStringLiteral("Der Fortschritt %1 passt nicht. %2")
        .arg(QDir::toNativeSeparators(JournalName(fileName)), reason);
}

Journal::Journal(const QString &fileName)
    : file(JournalName(fileName)), lock(JournalName(fileName) + QStringLiteral(".lock"))
{
    lock.setStaleLockTime(0); // a job may take hours; a dead program's lock is noticed by its process number
}

Journal::~Journal()
{
    file.close();
    lock.unlock();
}

/// Nobody here can know whether the program on the other computer still runs. True when the user says that it does not; the
/// lock is gone then.
bool Journal::isOfAnotherComputer()
{
    qint64 process = 0;
    QString computer;
    QString program;
    // The case of its name is no difference: one system tells it in two ways.
    if (!lock.getLockInfo(&process, &computer, &program)
        || computer.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0)
        return false;
    const QString name = file.fileName() + QStringLiteral(".lock");
    const QString question =
        QStringLiteral("Der Fortschritt %1 ist vom Programm %2 auf dem Computer %3 belegt (Datei %4).\r"
                       "Läuft dort gewiss keines mehr, und soll er übernommen werden?")
            .arg(QDir::toNativeSeparators(file.fileName()), program, computer, QDir::toNativeSeparators(name));
    return TheAsk().askYesNo({question, QStringLiteral("Achtung!"), BoxIcon::Critical, true}, false)
        && QFile::remove(name);
}

bool Journal::lockIt()
{
    if (lock.tryLock(0) || (isOfAnotherComputer() && lock.tryLock(0)))
        return true;
    if (lock.error() == QLockFile::LockFailedError) {
        TheAsk().showBox(FaultBox(QStringLiteral("Ein anderes Programm arbeitet gerade mit dem Fortschritt %1.")
                                      .arg(QDir::toNativeSeparators(file.fileName()))));
    } else {
        ReportFileUnwritable(file.fileName());
    }
    return false;
}

bool Journal::begin(const JournalHead &head, const std::vector<RecordId> &records)
{
    MakeFolder(QFileInfo(file).absolutePath());
    if (!lockIt())
        return false;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        ReportFileUnwritable(file.fileName());
        return false;
    }
    line(FirstLine);
    line(JobWord + u' ' + head.job);
    line(HandheldWord + u' ' + head.handheld);
    line(BegunWord + u' ' + TheEvents().now().toString(Qt::ISODate));
    if (!records.empty())
        line(RecordsWord + u' ' + RecordsLine(records));
    writes = writes && TheDisk().flush(file) && TheDisk().flushFolder(QFileInfo(file).absolutePath());
    if (!writes)
        ReportFileUnwritable(file.fileName());
    return writes;
}

bool Journal::goOn()
{
    if (!lockIt())
        return false;
    if (!file.open(QIODevice::ReadWrite)) {
        ReportFileUnwritable(file.fileName());
        return false;
    }
    const qint64 whole = file.readAll().lastIndexOf('\n') + 1;
    if (file.resize(whole) && file.seek(whole)) // what was half written is written again
        return true;
    ReportFileUnwritable(file.fileName());
    return false;
}

void Journal::line(const QString &text)
{
    const QByteArray bytes = CheckedLine(text);
    writes = writes && TheDisk().write(file, bytes);
}

/// On the disk when this returns. What was only read can be read again.
void Journal::lineForSure(const QString &text)
{
    line(text);
    writes = writes && TheDisk().flush(file);
}

void Journal::snapshot(const QString &snapshotFile)
{
    lineForSure(SnapshotWord + u' ' + InDataFolder(snapshotFile));
}

void Journal::finished(const RecordId &id)
{
    lineForSure(FinishedWord + u' ' + IdText(id));
}

void Journal::read(const RecordId &id, const RecordValue &value)
{
    line(DataWord + u' ' + QString::fromLatin1(PackRecord(id, value).toHex()));
}

void Journal::readEmpty(const RecordId &id)
{
    line(EmptyWord + u' ' + IdText(id));
}

void Journal::remove()
{
    file.close();
    TheDisk().remove(file.fileName());
    lock.unlock();
}

} // namespace hr::jobs
