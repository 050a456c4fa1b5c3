// One loco record of the handheld: 64 bytes at loco address x 64.
//
//   offset  size  content
//        0    21  name in the handheld's codes; byte 0 = 0xFF marks an empty record
//       21     7  not interpreted
//       28     1  mode bits of functions 0-7, bit i = function i (1 = momentary)
//       29     1  mode bits of functions 8-15
//       30     1  mode bits of functions 16-23
//       31     1  bit 0 = mode bit of function 24, bit 7 = one symbol for all functions, others written as 0
//       32     1  not interpreted
//       33    24  function symbol number of function f (1..24) at offset 32 + f
//       57     4  not interpreted
//       61     1  loco symbol number
//       62     2  not interpreted
//
// Bytes that are not interpreted are programmed from what SpiBuf holds at their place.
#pragma once

#include <QString>

#include <array>

constexpr int NameLength = 21;
constexpr int FunctionCount = 25; // f0 .. f24

/// The name of a record that holds nothing.
inline QString LeerName()
{
    return QStringLiteral("-leer-");
}

// --- The current record. Filled by ReadLocoRecord, changed by the editor, written by WriteLocoRecord. ---
extern QString LokName; // 21 characters as decoded, 21 of code 255 for an empty record, "-leer-" before a read
extern std::array<int, FunctionCount> FktSymbol; // 1..24: symbol number of the function; 0 unused
extern std::array<int, FunctionCount> FktModus;  // 0..24: 1 = momentary, 0 = latching
extern int MultiUni;                             // 0 or 1: one symbol for all functions
extern int LokSymbol;                            // loco symbol number

/// The six parts of a record together, for those who have to put the shown one back.
struct LocoRecord {
    QString name;
    std::array<int, FunctionCount> symbols{};
    std::array<int, FunctionCount> modes{};
    int multiUni = 0;
    int locoSymbol = 0;
};
LocoRecord CurrentLocoRecord();
void SetCurrentLocoRecord(const LocoRecord &record);

/// True when the name stands for an empty record: it begins with the character of code 255.
bool IsEmptyName(const QString &name);

/// Reads a record into the current one. Goes on after a time-out ("Timeout" box), so that the fields then hold what
/// the buffer held; returns 1 in that case.
int ReadLocoRecord(int locoNumber);

/// Writes the current record; the other records of its page stay. Goes on after a time-out; returns 1 then.
int WriteLocoRecord(int locoNumber);

/// Marks a record as empty; the current record is not touched. Goes on after a time-out; returns 1 then.
int DeleteLocoRecord(int locoNumber);

/// Asks whether a record holds a loco, without touching the current record. status 1 after a time-out ("Timeout" box)
/// or when broken off; the answer is false then.
bool LocoRecordIsUsed(int locoNumber, int &status);

/// Deletes all records 1..9999, each shown as "Lösche Lok n" in the progress window. Ends early when a delete
/// failed (after its box), the user stops it, the port is lost or the program ends.
void ClearAllLocoRecords();

/// The name cut to 21 characters, or filled with blanks up to 21.
QString FitLocoName(const QString &name);

void ResetLocoRecord();
