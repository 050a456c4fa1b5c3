// Reading the dataflash: one flash read into the handheld's buffer, then the slices that hold what is wanted.
//
// In the fast cadence (link/cadence.h) a step is what can be repeated from its beginning without harm, also when the
// handheld was restarted in the middle of it: a flash read with all its slices, or a whole page sequence.
#pragma once

#include "handheld/chip_commands.h"

#include <functional>

namespace hr::handheld
{

/// Runs a step. In Ticks once, with the patience that is given. In the fast cadence the step is tried without boxes,
/// repeated once after a time-out, and after another one the connection falls back to Ticks for the last try.
Outcome RunStep(const Patience &patience, const std::function<Outcome(const Patience &)> &step);

/// Reads n bytes (1..139) at a flash address into image[8 ..]: one flash read, then the slices that cover them. After a
/// time-out it goes on or ends as the patience says; the outcome is the first failure.
Outcome ReadFlash(SpiImage &image, int address, int n, const Patience &patience = Patience::Agreed);

/// read_spibuf with the starts first, first + 20, ... last; goes on or ends as above.
Outcome ReadSlices(SpiImage &image, int first, int last, const Patience &patience = Patience::Agreed);

/// True when a failure ends the step.
inline bool EndsStep(const Outcome &outcome, const Patience &patience)
{
    return !outcome.ok() && !patience.goesOn;
}

/// image[4 + i] := image[8 + i] for i = 0 .. lastIndex: from read position to write position.
void MoveToWritePosition(SpiImage &image, int lastIndex);

} // namespace hr::handheld
