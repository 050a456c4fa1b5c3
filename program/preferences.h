// What the user prefers, kept in konf\Einstellungen.ini (INI format, also holds the windows' sizes and the recent files).
//
//   [Verbindung]
//   Schnell=true     messages follow each other as fast as the line allows (link/cadence.h); false when missing
#pragma once

#include "platform/rooms.h"

#include <QString>

namespace hr::program
{

/// The file, for others who keep a group of their own in it.
QString PreferencesPath();

bool FastPreferred();

/// Writes it when it differs. A folder that cannot be written is told once in a run by a "Fehler!" box.
void PreferFast(bool fast);

} // namespace hr::program
