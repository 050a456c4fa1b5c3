// Where the user's data live: the konf folder (settings, symbols, saved states) and the simulated handheld.
//
// A program folder whose konf folder can be written keeps them beside the program: a copied folder, as on a stick. An
// installed program keeps them in the user's own data folder, because its user must not change the program folder, or
// because a set-up has laid the file installiert.txt there, so that an update or uninstalling touches no data:
//
//   Linux     ~/.local/share/handregler-tool
//   Windows   C:\Users\NAME\AppData\Local\handregler-tool
//
// That folder is filled from the installed konf. konf\.geliefert lists what was put there, a line each: SHA-256, blank,
// name. A file that the user has changed, or made himself, is never overwritten by an update; what he left as it was is
// replaced, and new files are added. What he has deleted stays deleted.
#pragma once

#include "platform/rooms.h"

#include <QString>

namespace hr::program
{

/// Sets program folder and data folder for a program that lies in `programFolder`.
void UseDataFolder(const QString &programFolder);

/// Brings the installed konf folder to the user, as above. False when nothing can be written there.
bool FillDataFolder(const QString &programFolder, const QString &ownFolder);

/// The folder that is used: the program's own, or (filled) `ownFolder`. When that cannot be made either, the program's.
QString ChooseDataFolder(const QString &programFolder, const QString &ownFolder);

} // namespace hr::program
