// What the handheld holds of the record that the editor shows, as far as this window knows.
#pragma once

#include "shown/record.h"

namespace hr::ui
{

struct HeldLoco {
    int address = 0; // where it was read or written last; 0 = nowhere yet
    ShownLoco loco = CurrentLoco;
    bool sure = true; // false after a write that failed: any of it may be there

    /// True when a write of the record under this address would change what is known to be there.
    [[nodiscard]] bool differsFrom(const ShownLoco &shown, int shownAddress) const
    {
        ShownLoco compared = shown;
        if (shownAddress != address) // a typed address takes the flag away by itself: nobody has changed anything
            compared.record.multiUni = loco.record.multiUni;
        return !sure || !(compared == loco);
    }
};

} // namespace hr::ui
