// What was known of a handheld's locos at the end of the program, for its next start: konf\Lokliste\<handheld>.dds, a
// backup file of locos, one for each handheld. It is only a memory: what counts is what the handheld says.
#pragma once

#include "roster/loco_csv.h"

#include <QDateTime>

namespace hr::roster
{

struct KeptLocos {
    std::vector<RosterLoco> locos;
    QDateTime time; // of the last change; invalid when nothing is kept
};

/// Empty when there is none, or when it is spoilt.
KeptLocos ReadKeptLocos(const QString &handheld);

/// A folder that cannot be written means that the next start knows nothing; nobody is told.
void KeepLocos(const QString &handheld, const std::vector<RosterLoco> &locos);

} // namespace hr::roster
