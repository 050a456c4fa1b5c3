// A list of locos as a spreadsheet file.
//
// CSV: UTF-8 with a byte order mark (spreadsheet programs would guess another character set without it), separator
// ";", lines ended by CR LF. Columns: address, name, loco symbol number, one symbol for all functions (0/1), then
// for each function f0 .. f24 its symbol number and 1 for momentary.
#pragma once

#include "handheld/backup/dds_file.h"

struct RosterLoco {
    int address = 0; // 1..9999
    LocoRecord record;
};

/// The loco records among the records of a backup file, in file order.
std::vector<RosterLoco> LocosIn(const DdsContent &content);

/// The name as it is shown: without the blanks that fill the record, "-leer-" for an empty one.
QString ShownName(const LocoRecord &record);

/// Captions of the columns before the functions: "Adresse", "Name", "Symbol", "ident. Sym.".
constexpr int FrontColumns = 4;
QString FrontCaption(int column);

QByteArray CsvOf(const std::vector<RosterLoco> &locos);
