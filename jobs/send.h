// Sends downloaded locos to the handheld.
#pragma once

#include "jobs/runner.h"
#include "station/download.h"

/// Looks which places are taken ("Prüfe Lok n"), asks before any is overwritten (default No) and writes the locos
/// ("Sende Lok n"). The station knows no function symbols: a record that is overwritten keeps its own. The first write
/// that fails ends it. At the end a box says how many were written, or from which address on it is not sure.
/// False when nothing was written because the user said No or the looking was broken off.
bool SendLocos(const std::vector<DownloadedLoco> &locos);
