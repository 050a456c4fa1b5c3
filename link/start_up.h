// The start-up sequence: settings, main window, warning, search for the handheld.
#pragma once

#include <functional>

/// What start-up runs but does not own, because it lives in higher rooms.
struct StartUpSteps {
    std::function<void()> buildCatalogues; // scans the symbol folders
    std::function<void()> searchHandheld;  // sets HandreglerGefunden
};

/// Runs from the first line of the program to the found handheld or the end of the program. Shows the main window,
/// the warning "Achtung!", "Suche Handregler!" in the progress window, and the selection window until a handheld
/// answers or the user cancels, which ends the program.
void Main(const StartUpSteps &steps);
