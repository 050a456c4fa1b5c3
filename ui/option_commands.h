// The commands of the options menu, with their questions.
#pragma once

#include "handheld/bus_trace.h"

namespace hr::ui
{

/// "zurück in den Bedienmodus": only when a handheld is in service.
void ReturnToOperatingMode();

/// "alle Lokdatensätze löschen": question, connection guard, the job over all records.
void AskAndClearAllLocoRecords();

/// "Abschaltzeit korrigieren": connection guard, question, the change.
void AskAndClearSwitchOffTime();

/// "Funktionssymbole korrigieren": connection guard, question, the reset of the symbols 164 to 255.
void AskAndResetFktSymbols();

/// "Programminfo".
void ShowProgramInfo();

/// Asks whether personal things may be in it, and writes the report (jobs/problem_report.h) into a text file.
void SaveProblemReport(const BusTrace &lastMessages);

} // namespace hr::ui
