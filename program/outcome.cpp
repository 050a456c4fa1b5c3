#include "program/outcome.h"

namespace hr::program
{

void Outcome::keep(const Outcome &next)
{
    if (ok() || (next.brokenOff() && !brokenOff()))
        *this = next;
}

} // namespace hr::program
