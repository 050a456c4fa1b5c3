// The table of record kinds: all that differs between the things a handheld keeps, in one place.
//
//   byte  what                       numbers   value
//      1  loco record                1..9999   LocoRecord
//      2  loco symbol                0..63     Picture
//   3, 4  function symbol ON, OFF    0..255    Picture
//      5  routes                     none      Routes
//   6, 7  accessory symbol grn, red  0..255    Picture
//      8  accessory assignment       none      Assignment
//      9  accessory list             none      AccessoryList
//     10  start image                none      Picture, of a backup no part
#pragma once

#include "handheld/block_tables.h"
#include "handheld/loco_record.h"
#include "handheld/symbol_storage.h"

#include <QStringList>

#include <compare>
#include <optional>
#include <variant>
#include <vector>

namespace hr::handheld
{

/// The kinds, with the byte that marks each in a backup file.
enum class RecordKind : quint8 {
    Loco = 1,
    LocoSymbol = 2,
    FunctionOn = 3,
    FunctionOff = 4,
    RouteTable = 5,
    AccessoryGreen = 6,
    AccessoryRed = 7,
    AssignmentTable = 8,
    PlaceTable = 9,
    StartImage = 10
};

inline constexpr std::array AllKinds{RecordKind::Loco, RecordKind::LocoSymbol, RecordKind::FunctionOn,
    RecordKind::FunctionOff, RecordKind::RouteTable, RecordKind::AccessoryGreen, RecordKind::AccessoryRed,
    RecordKind::AssignmentTable, RecordKind::PlaceTable, RecordKind::StartImage};

/// The byte of a kind in files, and the kind of a byte; nothing when there is no such kind.
constexpr int ByteOfKind(RecordKind kind)
{
    return static_cast<int>(kind);
}
std::optional<RecordKind> KindOfByte(int byte);

/// Names a record.
struct RecordId {
    RecordKind kind = RecordKind::Loco;
    int number = 0; // loco address or symbol number; 0 for the tables
    // NOLINTNEXTLINE(modernize-use-nullptr): misread by clang-tidy 14
    auto operator<=>(const RecordId &) const = default;
};

/// What a record holds; which alternative says its kind.
using RecordValue = std::variant<LocoRecord, Picture, Routes, AccessoryList, Assignment>;

/// All that is particular about a kind. What a user chooses, or names at a terminal, he names for both halves of a
/// symbol: these entries are the same in both rows.
struct KindRow {
    bool numbered = false; // false: the handheld has one of it
    int lowest = 0;
    int highest = 0;
    std::optional<SymbolKind> symbol{}; // of the symbol kinds
    int half = 0;                       // of the symbols that have two
    int flashBytes = 0;                 // of its content
    int backupBytes = 0;                // of its record in a backup file, with the kind byte; 0: it has none there
    int readMessages = 0;               // what reading one costs on a quiet bus
    double rowMessages = 0;             // the same when a job reads it together with its neighbours
    int writeMessages = 0;
    int entries = 0;        // of a table
    QString entryName{};    // "Fahrstraße", followed by its number, from 1 on
    QStringList fields{};   // of an entry (handheld/table_entries.h): "Rückmelder", "Auslösung"
    QString name{};         // "Lok", "Funktionssymbol", "Fahrstraßen"
    QString halfName{};     // "ON"
    QString plural{};       // "Lokdatensätze", "Funktionssymbole ON"
    QString caption{};      // of both halves: "Funktionssymbole"
    QString progress{};     // "Lok-Daten: ", followed by the number where there is one
    QString jsonKey{};      // "funktionssymbol_ein"
    QString selectionKey{}; // in konf\Sicherung.txt and of the controls that show it: "LokFktSymbole"
    QString allKey{};       // there, of "all of them": "AlleFktSym"
    QString option{};       // what saves it, at a terminal: "funktionssymbole"
    QString word{};         // of a single symbol, at a terminal: "funktion"
    QString halfWord{};     // "ein"
};

const KindRow &RowOf(RecordKind kind);

/// Names a record: "Lok 3", "Funktionssymbol 7 ON", "Fahrstraßen".
QString RecordName(const RecordId &id);

/// What the progress window shows while the record is moved: "Lok-Daten: 3", "Fahrstraßen".
QString ProgressText(const RecordId &id);

bool IsTableKind(RecordKind kind);

/// The kind of a table's value.
RecordKind TableKindOf(const RecordValue &table);

/// For the symbol kinds: what kind of picture, which half of it, and back.
SymbolKind SymbolKindOf(RecordKind kind);
int HalfOf(RecordKind kind);
RecordKind RecordKindOf(SymbolKind symbol, int half);

/// Reads and writes a record of any kind. onGroup is called before each of the groups in which the assignment is read.
Result<RecordValue> ReadRecord(SpiImage &image, const RecordId &id, const std::function<void(int)> &onGroup,
    const Patience &patience = Patience::Agreed);
PageResult WriteRecord(SpiImage &image, const RecordId &id, const RecordValue &value, const Patience &patience);

// --- Records that share a page: eight loco records, or eight symbols with both halves. ---

/// True for loco records and symbol halves.
bool SharesPage(RecordKind kind);

/// Where a record lies; of a table its (first) page.
int FirstByteOf(const RecordId &id);

/// The first byte of the (first) page in which a record lies.
int PageAddressOf(const RecordId &id);

/// All records of the record's page, itself among them, in the order of the flash.
std::vector<RecordId> RecordsOfPage(const RecordId &id);

/// The buffer write of a record that shares its page. Bytes of a loco record that nobody interprets come from `beneath`.
PagePart PartOf(const RecordId &id, const RecordValue &value, const LocoBytes &beneath);

/// True when two values would make the handheld show and do the same: bytes that nobody interprets, the contents of empty
/// records and what lies behind a picture do not count.
bool SameContent(const RecordValue &one, const RecordValue &other);

} // namespace hr::handheld
