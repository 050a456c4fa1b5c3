// Files of any format that holds locos: .csv, .json, .dds and .xml (roster/jmri_roster.h); the format goes by the ending.
#pragma once

#include "roster/loco_csv.h"

namespace hr::roster
{

/// True for the endings that hold locos.
bool HoldsLocos(const QString &fileName);

/// The locos of a file; with faults nothing of it may be used.
LocoList LocosOfFile(const QString &fileName, const QByteArray &content);

/// True for a folder, which can hold the loco files of a roster.
bool IsLocoFolder(const QString &path);

/// The locos of such a folder.
LocoList LocosOfFolder(const QString &folder);

/// Shows the first 20 notes of a list, and how many more there are; nothing when it has none.
void TellNotes(const LocoList &list);

/// Asks when names hold characters that the handheld does not have: what would be written. False for Nein.
bool NamesAccepted(const std::vector<ListedLoco> &locos);

/// A file that holds the locos.
QByteArray FileOfLocos(const QString &fileName, const std::vector<RosterLoco> &locos);

/// A backup file in which these locos stand in the place of those of the same address; all else stays, in its order.
QByteArray MergedDds(const DdsContent &content, const std::vector<RosterLoco> &locos);

} // namespace hr::roster
