// How boxes name records and report the end of a backup or restore.
#pragma once

#include "handheld/backup/dds_file.h"

/// How a job over many records ended.
enum class JobEnd { Complete, Stopped, PortLost, ProgramEnds, NothingDone };

/// Ends a job that could not go on to its last record.
JobEnd WhyBrokenOff();

/// Asked between records: lets events run; false once the user has stopped the job, the port is closed or lost, or
/// the program is ending.
bool JobGoesOn();

/// The records by kind, one line (ended by CR) each: "Lokdatensätze: 1-5,8", "Fahrstraßen". "keine" when there are
/// none.
QString RecordsText(const std::vector<RecordId> &records);

/// Name of a kind (1..9) in the plural.
QString KindName(int kind);

/// "1 Datensatz", "7 Datensätze".
QString RecordCount(size_t count);

/// What the progress window shows for a record: "Lok-Daten: 3", "Fkt.Symbol: 164", "Fahrstraßen".
void ShowRecordProgress(const RecordId &id);
