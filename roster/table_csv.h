// The three tables of the handheld as CSV files (roster/csv_sheet.h says how such files are read and written).
//
//   routes         Fahrstraße 1..80; Rückmelder 1..4096, empty = none; Auslösung "frei" or "besetzt"
//   assignment     Adresse 1..2048; Symbol 0..255
//   accessory list Platz 1..32; Adresse 1..2048, empty = none; Bezeichnung (2 characters); Symbol 0..255
//
// A file may list some of the rows, in any order; what it does not list, and what a missing column would say, stays as
// the handheld has it.
#pragma once

#include "handheld/record_kinds.h"
#include "roster/csv_sheet.h"

#include <functional>

namespace hr::roster
{

/// The table (kind RecordKind::RouteTable, RecordKind::AssignmentTable or RecordKind::PlaceTable) as a file.
QByteArray TableCsv(const RecordValue &table);

struct TableChanges {
    std::function<void(RecordValue &)> apply; // onto a table of the wanted kind
    std::vector<FileFault> faults;            // with any, nothing may be written
};

TableChanges ReadTableCsv(const QByteArray &file, RecordKind kind);

} // namespace hr::roster
