// The page under way: what a page of the flash held, remembered in the data folder before its program goes out, until the
// page is proved. A power cut, a pulled plug or a killed program leaves it there, and whatever writes next makes the page
// good first, also another job.
//
//   konf\Sicherungen\seite-<handheld>-<address>.offen   as jobs/saved_state.h says; one for each page
#pragma once

#include "jobs/saved_state.h"

#include <vector>

namespace hr::jobs
{

struct OpenPage {
    QString fileName;
    SavedState state;
    bool sound = true;    // false: only a part of the file can be believed
    bool foreign = false; // made by another version of the program

    /// Why it cannot be used: "ist beschädigt".
    [[nodiscard]] QString fault() const { return FileFault(foreign); }
};

/// Before a page is programmed: remembers its records. False when that could not be written: the page must not be
/// programmed.
[[nodiscard]] bool RememberPage(const SavedState &state, int address);

/// The page is proved, or was not programmed.
void ForgetPage(const QString &handheld, int address);
void ForgetPage(const OpenPage &page);

/// What was forgotten does not come back after a power failure.
void SettleForgottenPages();

/// All pages of a handheld that may be half programmed.
std::vector<OpenPage> OpenPages(const QString &handheld);

} // namespace hr::jobs
