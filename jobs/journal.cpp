#include "jobs/journal.h"

#include "platform/files.h"
#include "program/ask.h"

#include <QCryptographicHash>
#include <QDir>

namespace
{

const auto FirstLine = QStringLiteral("handregler-fortschritt 1");
const auto JobWord = QStringLiteral("auftrag");
const auto HandheldWord = QStringLiteral("handregler");
const auto BeforeWord = QStringLiteral("vorher");
const auto PageWord = QStringLiteral("seite");
const auto PageEndWord = QStringLiteral("seitenende");
const auto FinishedWord = QStringLiteral("fertig");
const auto DataWord = QStringLiteral("daten");
const auto EmptyWord = QStringLiteral("leer");
const auto AnewWord = QStringLiteral("neu");

constexpr qint64 LargestJournal = 64 * 1024 * 1024;

QString IdText(const RecordId &id)
{
    return QString::number(ByteOfKind(id.kind)) + u' ' + QString::number(id.number);
}

std::optional<RecordId> IdOf(const QString &text)
{
    bool isNumber = false;
    const auto kind = KindOfByte(text.section(u' ', 0, 0).toInt()); // 0, no kind, where it is no number
    const int number = text.section(u' ', 1).toInt(&isNumber);
    const bool sound = kind && isNumber && number >= RowOf(*kind).lowest && number <= RowOf(*kind).highest;
    return sound ? std::optional(RecordId{*kind, number}) : std::nullopt;
}

/// Takes one line; false when it is none of a journal.
bool TakeRecord(JournalContent &content, const QString &word, const QString &rest)
{
    if (word == DataWord) {
        const DdsContent data = ReadDds(QByteArray::fromHex(rest.toLatin1()));
        content.read.insert(content.read.end(), data.records.begin(), data.records.end());
        return !data.fault && data.records.size() == 1;
    }
    const auto id = IdOf(rest);
    if (!id || (word != FinishedWord && word != EmptyWord))
        return false;
    (word == FinishedWord ? content.finished : content.empty).push_back(*id);
    return true;
}

bool TakePage(JournalContent &content, const QString &word, const QString &rest)
{
    bool isNumber = false;
    const int address = rest.toInt(&isNumber);
    content.touchedPages.insert(address);
    if (word == PageWord)
        content.openPages.insert(address);
    else
        content.openPages.erase(address);
    return isNumber;
}

bool TakeLine(JournalContent &content, const QString &line)
{
    const QString word = line.section(u' ', 0, 0);
    const QString rest = line.section(u' ', 1);
    if (line == AnewWord) {
        content.finished.clear();
        return true;
    }
    if (word == BeforeWord) {
        content.savedBefore = rest;
        return true;
    }
    return word == PageWord || word == PageEndWord ? TakePage(content, word, rest) : TakeRecord(content, word, rest);
}

/// The lines that were written to their end.
QStringList WholeLines(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.left(bytes.lastIndexOf('\n') + 1)).split(u'\n', Qt::SkipEmptyParts);
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
    return info.type + u' ' + info.version;
}

QString JournalName(const QString &fileName)
{
    return fileName + QStringLiteral(".fortschritt");
}

std::optional<JournalContent> ReadJournal(const QString &fileName)
{
    QFile file(JournalName(fileName));
    if (!file.exists())
        return {};
    JournalContent content;
    if (!file.open(QIODevice::ReadOnly) || file.size() > LargestJournal)
        return content;
    const QStringList lines = WholeLines(file.readAll());
    const bool named = lines.size() >= 3 && lines.at(0) == FirstLine && lines.at(1).startsWith(JobWord + u' ')
        && lines.at(2).startsWith(HandheldWord + u' ');
    for (qsizetype i = 3; named && i < lines.size(); ++i) {
        if (!TakeLine(content, lines.at(i)))
            return JournalContent(); // damaged: nothing of it is believed
    }
    if (named)
        content.head = {lines.at(1).section(u' ', 1), lines.at(2).section(u' ', 1)};
    return content;
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

bool Journal::lockIt()
{
    if (lock.tryLock(0))
        return true;
    if (lock.error() == QLockFile::LockFailedError) {
        TheAsk().showBox(FaultBox(QStringLiteral("Ein anderes Programm arbeitet gerade mit dem Fortschritt %1.")
                                      .arg(QDir::toNativeSeparators(file.fileName()))));
    } else {
        ReportFileUnwritable(file.fileName());
    }
    return false;
}

bool Journal::begin(const JournalHead &head)
{
    if (!lockIt())
        return false;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        ReportFileUnwritable(file.fileName());
        return false;
    }
    line(FirstLine);
    line(JobWord + u' ' + head.job);
    line(HandheldWord + u' ' + head.handheld);
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
    const QByteArray bytes = text.toUtf8() + '\n';
    writes = writes && file.write(bytes) == bytes.size() && file.flush();
}

void Journal::beginsAnew()
{
    line(AnewWord);
}

void Journal::savedBefore(const QString &beforeFile)
{
    line(BeforeWord + u' ' + beforeFile);
}

void Journal::pageBegins(int address)
{
    line(PageWord + u' ' + QString::number(address));
}

void Journal::pageEnds(int address)
{
    line(PageEndWord + u' ' + QString::number(address));
}

void Journal::finished(const RecordId &id)
{
    line(FinishedWord + u' ' + IdText(id));
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
    file.remove();
    lock.unlock();
}
