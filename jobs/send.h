// Sends downloaded locos to the handheld.
#pragma once

#include "jobs/runner.h"
#include "program/ask.h"
#include "station/download.h"

namespace hr::jobs
{

/// Looks which places are taken ("Prüfe Lok n"), has the user confirm before any is overwritten (default No) and writes
/// the locos ("Sende Lok n"). The station knows no function symbols: a record that is overwritten keeps its own. The
/// first write that fails ends it. At the end a box says how many were written, or from which address on it is not
/// sure; also when the looking already ended early.
///
/// `confirm` asks the question and says whether the handheld is still there.
void SendLocos(const std::vector<DownloadedLoco> &locos, const std::function<bool(const BoxText &question)> &confirm);

} // namespace hr::jobs
