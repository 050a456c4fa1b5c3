// How the faces tell what became of a job: the same text in a box and on a terminal.
#pragma once

#include "jobs/runner.h"
#include "program/ask.h"

namespace hr::jobs
{

/// The records by kind, one line (ended by CR) each: "Lokdatensätze: 1-5,8", "Fahrstraßen". "keine" when there are
/// none.
QString RecordsText(const std::vector<RecordId> &records);

/// "1 Datensatz", "7 Datensätze"; "1 Lok", "7 Loks".
QString RecordCount(size_t count);
QString LocoCount(size_t count);

/// "1 Speicherseite", "4 Speicherseiten".
QString PageCount(size_t count);

/// True when a job ended before its last record because of this.
bool EndedEarly(JobEnd end);

/// The first sentence of a report on a job that ended early: `stopped` where the user wanted it, otherwise why.
QString EndText(JobEnd end, const QString &stopped);

/// What the records are, in one line: "5 Lokdatensätze: 1, 3, 8, 18, 24; 4 Loksymbole; Fahrstraßen".
QString ContentText(const std::vector<RecordId> &records);

/// Shows what a job did that came to its end.
void ShowDoneBox(const QString &text, const QString &title);

/// A report on a job that ended early, with the icon and title that fit the reason; and shows it.
BoxText EndBox(JobEnd end, const QString &text);
void ShowEndBox(JobEnd end, const QString &text);

} // namespace hr::jobs
