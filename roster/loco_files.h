// Files of any format that holds locos: .csv, .json and .dds; the format goes by the ending.
#pragma once

#include "roster/loco_csv.h"

namespace hr::roster
{

/// True for the endings that hold locos.
bool HoldsLocos(const QString &fileName);

/// The locos of a file; with faults nothing of it may be used.
LocoList LocosOfFile(const QString &fileName, const QByteArray &content);

/// A file that holds the locos.
QByteArray FileOfLocos(const QString &fileName, const std::vector<RosterLoco> &locos);

} // namespace hr::roster
