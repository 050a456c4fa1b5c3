// The two jobs that empty records: all loco records, and the free function symbols. The caller has asked the user.
#pragma once

#include "jobs/runner.h"

namespace hr::jobs
{

/// Deletes all records 1..9999, each shown as "Lösche Lok n". Ends early when a delete failed (after its box), the
/// user stops it, the port is lost or the program ends.
[[nodiscard]] Report ClearAllLocoRecords();

/// The same for these records only.
[[nodiscard]] Report DeleteLocoRecords(const std::vector<int> &numbers);

/// Resets the function symbols 164 to 255, both halves, to an empty picture, each shown as "Fktsym. n". Ends early
/// after a symbol that failed, and as above.
[[nodiscard]] Report ResetFktSymbols();

/// Tells the user how many records were emptied (`what`: "Lokdatensätze gelöscht"), also after an early end.
void ReportCleanUp(const Report &report, const QString &what, const QString &title);

} // namespace hr::jobs
