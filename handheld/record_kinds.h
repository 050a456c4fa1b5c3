// The table of record kinds: all that differs between the things a handheld keeps, in one place.
//
//   kind  what                       numbers   value
//      1  loco record                1..9999   LocoRecord
//      2  loco symbol                0..63     Picture
//   3, 4  function symbol ON, OFF    0..255    Picture
//      5  routes                     none      Routes
//   6, 7  accessory symbol grn, red  0..255    Picture
//      8  accessory assignment       none      Assignment
//      9  accessory list             none      AccessoryList
#pragma once

#include "handheld/block_tables.h"
#include "handheld/loco_record.h"
#include "handheld/symbol_storage.h"

#include <compare>
#include <variant>
#include <vector>

constexpr int KindLoco = 1;
constexpr int KindLokSymbol = 2;
constexpr int KindFktSymbolOn = 3; // half 0; half 1 has the next kind
constexpr int KindRoutes = 5;
constexpr int KindMagSymbolGreen = 6; // half 0; half 1 has the next kind
constexpr int KindMagZuordnung = 8;
constexpr int KindMagListe = 9;
constexpr int LastKind = KindMagListe;

/// Names a record.
struct RecordId {
    int kind = 0;
    int number = 0; // loco address or symbol number; 0 for the tables
    auto operator<=>(const RecordId &) const = default;
};

/// What a record holds; which alternative says its kind.
using RecordValue = std::variant<LocoRecord, Picture, Routes, AccessoryList, Assignment>;

struct RecordKind {
    bool numbered = true;
    int lowest = 0;
    int highest = 0;
    QString plural;       // "Lokdatensätze"
    QString progress;     // "Lok-Daten: ", followed by the number where there is one
    int backupBytes = 0;  // of its record in a backup file, with the kind byte
    int readMessages = 0; // what reading one costs on a quiet bus
    int writeMessages = 0;
};

/// The row of a kind 1..9.
const RecordKind &KindOf(int kind);

/// What the progress window shows while the record is moved: "Lok-Daten: 3", "Fahrstraßen".
QString ProgressText(const RecordId &id);

bool IsTableKind(int kind);

/// For the symbol kinds: what kind of picture, which half of it, and back.
SymbolKind SymbolKindOf(int kind);
int HalfOf(int kind);
int RecordKindOf(SymbolKind symbol, int half);

/// Reads and writes a record of any kind. onGroup is called before each of the groups in which the assignment is read.
Result<RecordValue> ReadRecord(SpiImage &image, const RecordId &id, const std::function<void(int)> &onGroup);
Outcome WriteRecord(SpiImage &image, const RecordId &id, const RecordValue &value, Patience patience);

// --- Records that share a page: eight loco records, or eight symbols with both halves. ---

/// True for loco records and symbol halves.
bool SharesPage(int kind);

/// The first byte of the (first) page in which a record lies.
int PageAddressOf(const RecordId &id);

/// All records of the record's page, itself among them, in the order of the flash.
std::vector<RecordId> RecordsOfPage(const RecordId &id);

/// The buffer write of a record that shares its page. Bytes of a loco record that nobody interprets come from `beneath`.
PagePart PartOf(const RecordId &id, const RecordValue &value, const LocoBytes &beneath);

/// True when two values would make the handheld show and do the same: bytes that nobody interprets, the contents of empty
/// records and what lies behind a picture do not count.
bool SameContent(const RecordValue &one, const RecordValue &other);
