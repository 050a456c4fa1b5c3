// What the windows show about the handheld, and the answer of the selection window.
#pragma once

#include "handheld/discovery.h"

namespace hr::shown
{

// --- What the last search found; empty when the handheld did not identify itself. Set by the search. ---
extern QString HandheldVersion; // for example "1.2"
extern QString HandheldDate;    // day.month.year without padding, for example "14.3.8"
extern QString HandheldType;    // five characters, for example "51201"
extern QString HandheldKind;    // "Funk-HR", "Digital-Set" or empty

/// Answer of the selection window: 0 = still open, 1 = OK (try the new settings), -1 = Cancel (end the program).
extern int SelectionAnswer;

/// True while the program waits for SelectionAnswer; only then does Cancel end the program.
extern bool SelectionAwaited;

void ShowHandheld(const HandheldInfo &info);

/// What the last search found, as it was shown.
HandheldInfo ShownHandheld();

/// The main window's title with what is known: "... : Vers: 1.2 vom 14.3.8 Type: 51201", or "unbekannt".
QString TitleWithHandheld();

void ResetShownConnection();

} // namespace hr::shown
