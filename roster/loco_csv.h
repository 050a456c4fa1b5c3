// A list of locos as a spreadsheet file.
//
//   Adresse;Name;Symbol;MultiUni;f1;...;f24;Tast
//   3;E94;7;0;1;0;...;0;0 2 24
//
//   Adresse    1..9999
//   Name       at most 21 characters of the handheld's character set, without the blanks that fill the record
//   Symbol     loco symbol 0..255 (the handheld has pictures for 0..63)
//   MultiUni   1 = one symbol for all functions, else 0
//   f1 .. f24  function symbol 0..255, 0 = none
//   Tast       the numbers 0..24 of the momentary functions, separated by blanks; empty = none
//
// How the files are read and written: roster/csv_sheet.h. When a list is read, only the address is needed: what a missing
// column would say stays as the record in the handheld has it.
#pragma once

#include "handheld/backup/dds_file.h"
#include "roster/csv_sheet.h"

namespace hr::roster
{

struct RosterLoco {
    int address = 0; // 1..9999
    LocoRecord record;
};

/// The loco records among the records of a backup file, in file order.
std::vector<RosterLoco> LocosIn(const DdsContent &content);

/// Captions of the columns before the functions, as the windows show them: "Adresse", "Name", "Symbol", "ident. Sym.".
constexpr int FrontColumns = 4;
QString FrontCaption(int column);

/// For programs: lines ended by LF. For spreadsheets: with a byte order mark, without which they would guess another
/// character set, and CR LF. Empty records have no line.
enum class CsvFor { Programs, Spreadsheets };
QByteArray CsvOf(const std::vector<RosterLoco> &locos, CsvFor reader);

/// The heading and one loco, each without its line end.
QString CsvHeading();
QString CsvLine(const RosterLoco &loco);

/// A loco of a list: what the list says of it.
struct ListedLoco {
    int address = 0;
    int line = 0; // where it stands; 0 where that means nothing
    std::optional<QString> name;
    std::optional<int> symbol;
    std::optional<int> multiUni;
    std::array<std::optional<int>, FunctionCount> symbols{};
    std::array<std::optional<int>, FunctionCount> modes{};
};

struct LocoList {
    std::vector<ListedLoco> locos;
    std::vector<FileFault> faults; // with any, nothing may be written
    QStringList notes;             // what was left out or adapted, for the user
};

LocoList ReadLocoCsv(const QByteArray &file);

/// All that a record holds, as if listed.
ListedLoco Listed(const RosterLoco &loco);

/// A record with what the list says of it.
LocoRecord Applied(const ListedLoco &listed, const LocoRecord &present);

/// A fault for each address that is listed twice.
void CheckAddressesOnce(LocoList &list);

/// The names with characters that the handheld does not have, one line each: what is listed and what would be written.
QString AdaptedNames(const std::vector<ListedLoco> &locos);

} // namespace hr::roster
