// The three tables as their windows show and edit them.
#pragma once

#include "handheld/block_tables.h"

namespace hr::shown
{

// --- One byte value in each entry. Filled by the reads, changed by the editors; all zero before the first read. ---
extern Routes FsDaten;              // 0..319, see handheld/block_tables.h
extern Assignment MagZuordDaten;    // accessory address - 1
extern AccessoryList MagListeDaten; // 0..255

// --- True after a read since the program started: only then the window may write. Set by the windows. ---
extern bool RoutesLoaded;
extern bool MagSymZuordLoaded;
extern bool MagListeLoaded;

/// Read into the tables; after a broken-off transfer they are as before. Go on after a time-out.
Outcome ReadRoutes();
Outcome ReadMagListe();
/// Shows "Lese Zuordnungsdaten g" (g = 0..31) in the progress window.
Outcome ReadMagZuordnung();

/// Write a table as it was at the click.
Outcome WriteRoutes(const Routes &routes);
Outcome WriteMagListe(const AccessoryList &list);
Outcome WriteMagZuordnung(const Assignment &assignment);

void ResetShownTables();

} // namespace hr::shown
