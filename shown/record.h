// What the main window shows and its write button writes: the current loco record, and the buffer image of the user's
// single commands. Only the windows use this room.
#pragma once

#include "handheld/loco_record.h"
#include "handheld/picture.h"

namespace hr::shown
{

/// The handheld's SPI buffer as the last single command left it, index 0..512. Bytes that a write does not lay are
/// programmed from it; a picture that was edited stays in it.
extern SpiImage SpiBuf;

/// The current record: what the main window shows and its write button writes, as it was at the click.
struct ShownLoco {
    LocoRecord record{.name = EmptyName()}; // after a deletion its name has 22 characters
    bool nothingToWrite = true;             // none was read, or an empty one; a deletion can be written
    bool operator==(const ShownLoco &) const = default;
};
extern ShownLoco CurrentLoco;

// --- Its parts under their own names. ---
QString LokName(); // 21 characters as decoded, 22 of code 255 after a delete, "-leer-" when there is nothing to write
inline std::array<int, FunctionCount> &FktSymbol = CurrentLoco.record.symbols;
inline std::array<int, FunctionCount> &FktModus = CurrentLoco.record.modes;
inline int &MultiUni = CurrentLoco.record.multiUni;
inline int &LokSymbol = CurrentLoco.record.locoSymbol;

/// Lays a picture that was edited into SpiBuf.
void ShowPicture(const Picture &picture);

/// Reads a record into the current one. Goes on after a time-out; a read that was broken off leaves it as it was.
Outcome ReadLocoRecord(int locoNumber);

/// Writes the record that was current at the click.
Outcome WriteLocoRecord(int locoNumber, const LocoRecord &record);

void ResetShownRecord();

} // namespace hr::shown
