// What became of a careful job, in the same words for both faces.
#pragma once

#include "jobs/change.h"

namespace hr::jobs
{

struct CarefulReport {
    Report job;                       // one entry for each change
    std::vector<RecordId> restored;   // of a page that an earlier job had left half programmed
    std::vector<RecordId> already;    // unchanged, because an earlier part of this job has written them
    std::vector<RecordId> edited;     // changed by somebody since the change that was taken back: they stay
    std::vector<RecordId> unreadable; // not written, because a record of their page could not be read for sure
    std::vector<RecordId> unproved;   // the neighbours too of pages of which nobody knows what they hold
    QString snapshot;                 // undo snapshot of what was written; empty: there is none
    bool proves = false;              // what was written is proved and read back
    bool goesOn = false;              // there is a journal with which the rest can be written
};

/// All is written, or was so before, and proved where that was wanted.
bool IsSettled(const CarefulReport &report);

struct ReportGroup {
    QString key; // for programs: "geschrieben"
    QString heading;
    std::vector<RecordId> records;
};

/// All groups in their order, also empty ones. `done` and `doneKey` are the heading and key of what was written.
std::vector<ReportGroup> ReportGroups(const CarefulReport &report, const QString &done, const QString &doneKey);

/// What the user should know besides, and what to do next: a sentence each.
QStringList ReportAdvice(const CarefulReport &report);

/// Headings with their records, and the advice, as the text of a box.
QString ReportText(const CarefulReport &report);

/// What the handheld holds now, as far as that is known.
std::vector<RecordChange> AfterWriting(std::vector<RecordChange> changes, const CarefulReport &report);

} // namespace hr::jobs
