// The commands of the menu "Werkzeuge", and the comparison that the viewer of a backup asks for.
#pragma once

#include "roster/loco_csv.h"

#include <QString>

namespace hr::ui
{

/// "Vergleichen…": file dialog, then the window, in which the user says with what.
void CompareBackup();

/// Opens the window on a file and compares it with the handheld at once.
void CompareBackupWithHandheld(const QString &fileName);

/// "Letzte Änderung zurücknehmen…": writes back what stood in the handheld before the last job that saved it, after a
/// question (default No). The next time it is the job before that one.
void TakeBackLastChange();

/// The same for locos of a list.
void CompareLocosWithHandheld(const std::vector<RosterLoco> &locos);

/// Destroys the window. To be called while the application lives.
void ResetCompareWindow();

} // namespace hr::ui
