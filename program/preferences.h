// What the user prefers, kept in konf\Einstellungen.ini (INI format, shared with the windows' sizes).
//
//   [Verbindung]
//   Schnell=true     messages follow each other as fast as the line allows (link/cadence.h); false when missing
#pragma once

bool FastPreferred();

/// Writes it when it differs. A folder that cannot be written is told once in a run by a "Fehler!" box.
void PreferFast(bool fast);
