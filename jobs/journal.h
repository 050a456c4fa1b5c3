// The journal of a job, beside its file: NAME.fortschritt. It takes each finished record at once, so that a job that was
// stopped, lost its port or was killed goes on where it was.
//
// Text, UTF-8, checked lines (jobs/checked_lines.h). A line that is spoilt does not count: its record is moved once more.
//
//   handregler-fortschritt 2
//   auftrag <what>            "sichern" or "schreiben", and what it is about: a checksum of file or selection
//   handregler <type> <version>
//   begonnen <yyyy-MM-ddTHH:mm:ss>
//   saetze <kind>:<list> ...  the records that a writing job is about
//   vorher <file>             the undo snapshot (jobs/undo_snapshot.h); missing where there is none
//   fertig <kind> <number>    this record is written, and proved where that was wanted
//   daten <hex>               this record is read: its bytes as in a backup file
//   leer <kind> <number>      this record was read and is empty
//
// Where nothing can be written beside the file, as on a read-only disk, it lies in konf\Sicherungen, named after the file and a
// checksum of its whole path. A lock file beside it keeps two programs off one journal.
#pragma once

#include "handheld/backup/dds_file.h"
#include "handheld/discovery.h"

#include <QDateTime>
#include <QFile>
#include <QLockFile>

#include <memory>
#include <set>

namespace hr::jobs
{

/// What must be the same for a job to go on.
struct JournalHead {
    QString job;
    QString handheld;
    bool operator==(const JournalHead &) const = default;
};

/// "sichern" or "schreiben" with a checksum of what it is about.
QString JobName(const QString &verb, const QByteArray &about);

/// What identifies the handheld: type and version.
QString HandheldName(const HandheldInfo &info);

/// What a journal says.
struct JournalContent {
    bool otherVersion = false; // made by another version of the program: nothing of it is understood
    JournalHead head;          // empty in a damaged one
    QDateTime begun;
    std::set<RecordId> records; // that a writing job is about
    QString snapshot;
    std::vector<RecordId> finished;
    std::vector<RecordId> empty;
    std::vector<DdsRecord> read;
};

/// The journal of a job's file: the one that is there, or where one would be begun.
QString JournalName(const QString &fileName);

/// The files in a folder beside which a journal lies, whatever it says, the journal that was written last first.
QStringList FilesWithJournal(const QString &folder);

/// What the journal of a file says; nothing when there is none. A damaged one has no head.
std::optional<JournalContent> ReadJournal(const QString &fileName);

// --- An earlier part of a job ---

enum class Earlier { None, Fits, OtherJob, OtherHandheld, OtherVersion, Damaged };

/// Is there a journal beside the file, and is it this job's?
Earlier EarlierPart(const QString &fileName, const JournalHead &head, JournalContent &content);

/// Why an earlier part cannot be gone on with, for the user; empty for None and Fits.
QString EarlierFault(Earlier earlier, const QString &fileName);

class Journal
{
public:
    explicit Journal(const QString &fileName);
    ~Journal();
    Journal(const Journal &) = delete;
    Journal &operator=(const Journal &) = delete;

    /// Begins anew, or goes on with what is there. False (after a box) when another program has it, or it cannot be
    /// written.
    [[nodiscard]] bool begin(const JournalHead &head, const std::vector<RecordId> &records = {});
    [[nodiscard]] bool goOn();

    void snapshot(const QString &file);
    void finished(const RecordId &id);
    void read(const RecordId &id, const RecordValue &value);
    void readEmpty(const RecordId &id);

    /// False once a line could not be written (the disk is full): the job must not go on.
    [[nodiscard]] bool sound() const { return writes; }

    /// The job is complete: nothing of it stays.
    void remove();

private:
    bool isOfAnotherComputer();
    bool lockIt();
    void line(const QString &text);
    void lineForSure(const QString &text);

    QFile file;
    QLockFile lock;
    bool writes = true;
};

} // namespace hr::jobs
