#include "handheld/backup/backup.h"

#include "handheld/backup/kept_state.h"
#include "handheld/backup/number_list.h"
#include "handheld/flash_map.h"
#include "handheld/transfer.h"
#include "platform/files.h"
#include "platform/run_control.h"
#include "platform/world.h"

#include <QDir>
#include <QSaveFile>

#include <bitset>
#include <functional>

namespace
{

/// A backup under way.
struct Job {
    const BackupSelection &selection;
    BackupOutcome outcome;
    QByteArray file;
    std::bitset<LastLoco + 1> tried; // loco addresses read so far
    std::bitset<LastLoco + 1> saved; // those whose record is in the file
    bool brokenOff = false;
};

/// True while the next record may be read.
bool GoesOn(Job &job)
{
    job.brokenOff = job.brokenOff || !JobGoesOn();
    return !job.brokenOff;
}

/// Takes a record that has been read into the file.
void Keep(Job &job, const RecordId &id, int status, const QByteArray &record)
{
    if (status != 0)
        job.outcome.doubtful.push_back(id);
    job.file += record;
}

void SaveLoco(Job &job, int address)
{
    const auto index = static_cast<size_t>(address);
    if (job.tried.test(index))
        return;
    job.tried.set(index);
    const RecordId id{KindLoco, address};
    ShowRecordProgress(id);
    const int status = ReadLocoRecord(address);
    if (!IsEmptyName(LokName)) {
        job.saved.set(index);
        Keep(job, id, status, PackLoco(address, CurrentLocoRecord()));
    } else if (status != 0 || SpiBuf.at(ReadPosition) != EmptyByte) {
        // Also a record whose name begins with a character that no handheld writes: it must not be left out silently.
        job.outcome.unread.push_back(id);
    }
}

void SaveSymbol(Job &job, SymbolKind kind, int number)
{
    const int halves = kind == SymbolKind::Loco ? 1 : 2;
    ShowRecordProgress({RecordKind(kind, 0), number});
    for (int half = 0; half < halves; ++half) {
        const RecordId id{RecordKind(kind, half), number};
        const int status = ReadSymbol(kind, number, half);
        Keep(job, id, status, PackSymbol(id));
    }
}

void SaveBlock(Job &job, int kind, const std::function<int()> &read)
{
    if (!GoesOn(job))
        return;
    ShowRecordProgress({kind, 0});
    const int status = read();
    Keep(job, {kind, 0}, status, PackBlock(kind));
}

/// Runs through the wanted numbers of a kind, each once.
void ForEachNumber(Job &job, NumberedKind kind, const std::function<void(int)> &save)
{
    const NumberLimits limits = LimitsOf(kind);
    std::bitset<LastLoco + 1> done;
    NumberList numbers(WantedNumbers(job.selection, kind));
    for (int n = numbers.next(); n >= 0 && GoesOn(job); n = numbers.next()) {
        if (n < limits.low || n > limits.high || done.test(static_cast<size_t>(n)))
            continue;
        done.set(static_cast<size_t>(n));
        save(n);
    }
}

void SearchLocos(Job &job)
{
    if (!job.selection.lokSuche)
        return;
    const int first = qMax(job.selection.lokSucheStart, FirstLoco);
    const int last = qMin(job.selection.lokSucheStop, LastLoco);
    for (int address = first; address <= last && GoesOn(job); ++address) {
        SaveLoco(job, address);
        if (job.saved.test(static_cast<size_t>(address)))
            job.outcome.found.push_back(address);
    }
}

void SaveAll(Job &job)
{
    ForEachNumber(job, LokDatenList, [&](int n) { SaveLoco(job, n); });
    SearchLocos(job);
    ForEachNumber(job, LokSymbolList, [&](int n) { SaveSymbol(job, SymbolKind::Loco, n); });
    ForEachNumber(job, FktSymbolList, [&](int n) { SaveSymbol(job, SymbolKind::Function, n); });
    ForEachNumber(job, MagSymbolList, [&](int n) { SaveSymbol(job, SymbolKind::Accessory, n); });
    if (job.selection.fsDaten)
        SaveBlock(job, KindRoutes, ReadRoutes);
    if (job.selection.magSymZuord)
        SaveBlock(job, KindMagZuordnung, ReadMagZuordnung);
    if (job.selection.magListe)
        SaveBlock(job, KindMagListe, ReadMagListe);
    job.brokenOff = job.brokenOff || TransferBrokenOff(); // in the middle of the last record
}

QString Shown(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

/// Tried before the long reading: is there a place beside the file to write to?
bool CanBeWritten(const QString &fileName)
{
    QSaveFile probe(fileName);
    return probe.open(QIODevice::WriteOnly); // never committed: nothing stays of it
}

/// Writes the file; the user may make room and try again, since all that was read would be lost otherwise.
bool WriteFile(const Job &job)
{
    const BoxText question{QStringLiteral("Die Datei %1 kann nicht geschrieben werden!\r"
                                          "Soll es noch einmal versucht werden?")
                               .arg(Shown(job.outcome.fileName)),
        QStringLiteral("Fehler!"), BoxIcon::Critical};
    while (!ReplaceFile(job.outcome.fileName, job.file)) {
        if (!TheFrontend().askYesNo(question, true))
            return false;
    }
    return true;
}

void ReportBrokenOff(const BackupOutcome &outcome)
{
    const bool lost = outcome.end == JobEnd::PortLost;
    const QString what = lost ? QStringLiteral("Die Verbindung zum Handregler ging verloren.")
                              : QStringLiteral("Die Datensicherung wurde abgebrochen.");
    const QString file = outcome.fileExisted ? QStringLiteral("Die vorhandene Datei %1 ist unverändert.")
                                             : QStringLiteral("Die Datei %1 wurde nicht angelegt.");
    TheFrontend().showBox(
        {what + QStringLiteral("\rEs wurde kein Datensatz gesichert.\r") + file.arg(Shown(outcome.fileName)),
            lost ? QStringLiteral("Fehler!") : QStringLiteral("Achtung!"),
            lost ? BoxIcon::Critical : BoxIcon::Information});
}

void ReportDoubtful(const BackupOutcome &outcome)
{
    QString text = QStringLiteral("Der Handregler hat nicht immer geantwortet.\r\r%1 in der Datei zweifelhaft:\r")
                       .arg(RecordCount(outcome.doubtful.size()))
        + RecordsText(outcome.doubtful);
    if (!outcome.unread.empty()) {
        text += QStringLiteral("\r\r%1 als leer gelesen und nicht in der Datei, ebenfalls zweifelhaft:\r")
                    .arg(RecordCount(outcome.unread.size()))
            + RecordsText(outcome.unread);
    }
    TheFrontend().showBox({text, QStringLiteral("Achtung!"), BoxIcon::Critical});
}

} // namespace

BackupOutcome Backup(const QString &fileName, const BackupSelection &selection)
{
    Job job{selection, {}, {}, {}, {}};
    job.outcome.fileName = fileName;
    job.outcome.fileExisted = FileExists(fileName);
    if (!CanBeWritten(fileName)) {
        TheFrontend().showBox({QStringLiteral("Die Datei %1 kann nicht geschrieben werden!").arg(Shown(fileName)),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        job.outcome.end = JobEnd::NothingDone;
        return job.outcome;
    }
    {
        const KeptState kept;
        const StoppableJob stoppable;
        SaveAll(job);
        if (job.brokenOff)
            job.outcome.end = WhyBrokenOff();
    }
    if (!job.brokenOff && !WriteFile(job))
        job.outcome.end = JobEnd::NothingDone;
    return job.outcome;
}

void ReportBackup(const BackupOutcome &outcome)
{
    if (outcome.end == JobEnd::Stopped || outcome.end == JobEnd::PortLost)
        ReportBrokenOff(outcome);
    else if (outcome.end == JobEnd::Complete && !(outcome.doubtful.empty() && outcome.unread.empty()))
        ReportDoubtful(outcome);
}
