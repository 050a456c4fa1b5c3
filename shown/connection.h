// What the windows show about the handheld, and the answer of the selection window.
#pragma once

#include "handheld/discovery.h"

namespace hr::shown
{

/// Answer of the selection window: open still, OK (try the new settings), Cancel (end the program), or go on without a
/// handheld.
constexpr int SelectionOpen = 0;
constexpr int SelectionRetry = 1;
constexpr int SelectionCancelled = -1;
constexpr int SelectionWithout = 2;
extern int SelectionAnswer;

/// True while the program waits for SelectionAnswer; only then does Cancel end the program.
extern bool SelectionAwaited;

/// What the last search found; empty when the handheld did not identify itself. Set by the search.
void ShowHandheld(const HandheldInfo &info);
HandheldInfo ShownHandheld();

/// The main window's title with what is known: "... : Vers: 1.2 vom 14.3.8 Type: 51201", or "unbekannt".
QString TitleWithHandheld();

void ResetShownConnection();

} // namespace hr::shown
