// The journal of a job, beside its file: NAME.fortschritt. It takes each finished record at once, so that a job that was
// stopped, lost its port or was killed goes on where it was.
//
// Text, UTF-8, a line each, ended by LF; a last line without its end was being written when the program died and does
// not count:
//
//   handregler-fortschritt 1
//   auftrag <what>            "sichern" or "schreiben", and what it is about: a checksum of file or selection
//   handregler <type> <version>
//   vorher <file>             what stood there before (jobs/saved_before.h); missing where it was not saved
//   seite <address>           this page is about to be programmed
//   seitenende <address>      it is, and all its records are done
//   fertig <kind> <number>    this record is written, and verified where that was wanted
//   daten <hex>               this record is read: its bytes as in a backup file
//   leer <kind> <number>      this record was read and is empty
//   neu                       from here on all is done anew: what is finished above does not count any more
//
// A lock file beside it keeps two programs off one journal.
#pragma once

#include "handheld/backup/dds_file.h"
#include "handheld/discovery.h"

#include <QFile>
#include <QLockFile>

#include <memory>
#include <set>

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
    JournalHead head;
    QString savedBefore;
    std::set<int> openPages;    // programmed perhaps, perhaps destroyed
    std::set<int> touchedPages; // programmed ever since the job began, also before it was done anew
    std::vector<RecordId> finished;
    std::vector<RecordId> empty;
    std::vector<DdsRecord> read;
};

/// The journal's name beside a job's file.
QString JournalName(const QString &fileName);

/// What the journal of a file says; nothing when there is none. A damaged one has no head.
std::optional<JournalContent> ReadJournal(const QString &fileName);

class Journal
{
public:
    explicit Journal(const QString &fileName);
    ~Journal();
    Journal(const Journal &) = delete;
    Journal &operator=(const Journal &) = delete;

    /// Begins anew, or goes on with what is there. False (after a box) when another program has it, or it cannot be
    /// written.
    [[nodiscard]] bool begin(const JournalHead &head);
    [[nodiscard]] bool goOn();

    void beginsAnew();
    void savedBefore(const QString &beforeFile);
    void pageBegins(int address);
    void pageEnds(int address);
    void finished(const RecordId &id);
    void read(const RecordId &id, const RecordValue &value);
    void readEmpty(const RecordId &id);

    /// False once a line could not be written (the disk is full): the job must not go on.
    [[nodiscard]] bool sound() const { return writes; }

    /// The job is complete: nothing of it stays.
    void remove();

private:
    bool lockIt();
    void line(const QString &text);

    QFile file;
    QLockFile lock;
    bool writes = true;
};
