#include "handheld/flash_read.h"

#include "link/cadence.h"
#include "program/run_control.h"

namespace hr::handheld
{

Outcome RunStep(const Patience &patience, const std::function<Outcome(const Patience &)> &step)
{
    if (CurrentCadence() == Cadence::Ticks)
        return step(patience);
    for (int repeat = 0; repeat <= 1; ++repeat) {
        Outcome outcome = step(patience.quiet());
        if (!outcome.timedOut() || BoxesAreSilent())
            return outcome;
    }
    FallBackToTicks();
    return step(patience);
}

Outcome ReadSlices(SpiImage &image, int first, int last, const Patience &patience)
{
    Outcome outcome;
    for (int start = first; start <= last && !EndsStep(outcome, patience); start += SliceSize)
        outcome.keep(read_spibuf(image, start, patience));
    return outcome;
}

Outcome ReadFlash(SpiImage &image, int address, int n, const Patience &patience)
{
    const int lastIndex = ReadPosition + n - 1;
    return RunStep(patience, [&](const Patience &manner) {
        Outcome outcome = read_flash_to_spibuf(address, n, manner);
        if (!EndsStep(outcome, manner))
            outcome.keep(ReadSlices(image, 0, lastIndex / SliceSize * SliceSize, manner));
        return outcome;
    });
}

void MoveToWritePosition(SpiImage &image, int lastIndex)
{
    for (size_t i = 0; i <= static_cast<size_t>(lastIndex); ++i)
        image.at(WritePosition + i) = image.at(ReadPosition + i);
}

} // namespace hr::handheld
