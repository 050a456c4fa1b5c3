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
// Bytes that are not interpreted are programmed from what the image holds at their place.
#pragma once

#include "handheld/flash_map.h"
#include "handheld/page_sequence.h"

#include <QString>

#include <array>

namespace hr::handheld
{

constexpr int NameLength = 21;
constexpr int FunctionCount = 25; // f0 .. f24

struct LocoRecord {
    QString name;                             // 21 characters as decoded; 21 of code 255 for an empty record
    std::array<int, FunctionCount> symbols{}; // 1..24: symbol number of the function; 0 unused
    std::array<int, FunctionCount> modes{};   // 0..24: 1 = momentary, 0 = latching
    int multiUni = 0;                         // 0 or 1: one symbol for all functions
    int locoSymbol = 0;                       // 0..63; 0..255 in a handheld that others have written
    bool operator==(const LocoRecord &) const = default;
};

/// The 64 bytes of a record, one byte value each.
using LocoBytes = std::array<quint8, LocoRecordSize>;

/// The record that the bytes hold. An empty record has the empty name; its other fields are whatever stands there.
LocoRecord DecodeLoco(const LocoBytes &bytes);

/// The bytes of a record, laid over `beneath`, whose other bytes stay.
LocoBytes EncodeLoco(const LocoRecord &record, const LocoBytes &beneath);

/// True when the name stands for an empty record: it begins with the character of code 255.
bool IsEmptyName(const QString &name);

/// The name that marks a record as empty: so many characters of code 255.
QString EmptyName(int length = NameLength);

/// What windows and lists show: the name without its filling blanks, "-leer-" for a record that holds nothing.
QString ShownName(const LocoRecord &record);

/// The name cut to 21 characters, or filled with blanks up to 21.
QString FitLocoName(const QString &name);

/// Reads a record; an empty one needs only its first slice. After a failure the value holds what the image held.
Result<LocoRecord> ReadLoco(SpiImage &image, int locoNumber, const Patience &patience = Patience::Agreed);

/// Writes a record; the other records of its page stay.
PageResult WriteLoco(SpiImage &image, int locoNumber, const LocoRecord &record, const Patience &patience);

/// The buffer write of a record, laid over `beneath`.
PagePart LocoPart(int locoNumber, const LocoRecord &record, const LocoBytes &beneath);

/// Marks a record as empty with a single message of data. Its bytes 15 .. 63 are programmed from what the handheld's
/// buffer held, since byte 0 alone decides.
PageResult DeleteLoco(SpiImage &image, int locoNumber, const Patience &patience);

/// Asks whether a record holds a loco, with two messages.
Result<bool> LocoIsUsed(int locoNumber, const Patience &patience = Patience::Agreed);

} // namespace hr::handheld
