// What the main window shows and its write button writes: the current loco record, and the buffer image of the user's
// single commands. Only the windows use this room.
#pragma once

#include "handheld/loco_record.h"
#include "handheld/picture.h"

/// The handheld's SPI buffer as the last single command left it, index 0..512. Bytes that a write does not lay are
/// programmed from it; a picture that was edited stays in it.
extern SpiImage SpiBuf;

// --- The current record. Filled by ReadLocoRecord, changed by the editor, written as it was at the click. ---
extern QString LokName; // 21 characters as decoded, 22 of code 255 after a delete, "-leer-" when there is none
extern std::array<int, FunctionCount> FktSymbol; // 1..24: symbol number of the function; 0 unused
extern std::array<int, FunctionCount> FktModus;  // 0..24: 1 = momentary, 0 = latching
extern int MultiUni;                             // 0 or 1: one symbol for all functions
extern int LokSymbol;                            // loco symbol number

LocoRecord CurrentLocoRecord();
void SetCurrentLocoRecord(const LocoRecord &record);

/// Lays a picture that was edited into SpiBuf.
void ShowPicture(const Picture &picture);

/// Reads a record into the current one. Goes on after a time-out; a read that was broken off leaves it as it was.
Outcome ReadLocoRecord(int locoNumber);

/// Writes the record that was current at the click.
Outcome WriteLocoRecord(int locoNumber, const LocoRecord &record);

void ResetShownRecord();
