#include "program/outcome.h"

void Outcome::keep(const Outcome &next)
{
    if (ok() || (next.brokenOff() && !brokenOff()))
        *this = next;
}
