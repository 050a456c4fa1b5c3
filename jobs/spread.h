// Gives one loco's functions to other locos.
#pragma once

#include "jobs/runner.h"
#include "program/ask.h"

namespace hr::jobs
{

/// Reads each listed record, gives it the functions (symbols, momentary marks, one symbol for all) of `from` and writes
/// it ("Funktionen: Lok n"); name and loco symbol stay, empty records are left alone. The list has been checked.
/// `confirm` asks before (default No) and says whether the handheld is still there. At the end a box says which records
/// were written, which are empty, and what went differently.
void SpreadFunctions(
    const LocoRecord &from, const QString &list, const std::function<bool(const BoxText &question)> &confirm);

} // namespace hr::jobs
