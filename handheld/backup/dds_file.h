// The backup file (*.dds): records one after the other, without header, count or checksum.
//
//   kind  bytes  after the kind byte
//      1     76  loco address (2), name (21, Latin-1), loco symbol (1), function symbols 0..24 (25), modes of f0..f24
//                (25, each 0 or 1), one symbol for all functions (1, 0 or 1)
//      2    102  loco symbol number (2, 0..63), SpiBuf[4..102] (99)
//   3, 4     39  function symbol number (2, 0..255), half (1, kind - 3), SpiBuf[4..38] (35)
//      5    321  FsDaten[0..319]
//   6, 7     39  accessory symbol number (2, 0..255), half (1, kind - 6), SpiBuf[4..38] (35)
//      8   2049  MagZuordDaten[1..2048]
//      9    257  MagListeDaten[0..255]
//
// Two-byte numbers have the high byte first. A symbol record carries one (kind 2) or five (kinds 3, 4, 6, 7) bytes of
// SpiBuf beyond the picture.
#pragma once

#include "handheld/loco_record.h"
#include "handheld/symbol_storage.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

constexpr int KindLoco = 1;
constexpr int KindLokSymbol = 2;
constexpr int KindFktSymbolOn = 3; // half 0; half 1 has the next kind
constexpr int KindRoutes = 5;
constexpr int KindMagSymbolGreen = 6; // half 0; half 1 has the next kind
constexpr int KindMagZuordnung = 8;
constexpr int KindMagListe = 9;
constexpr int LastKind = KindMagListe;

/// Names a record: what boxes list and restores work through.
struct RecordId {
    int kind = 0;
    int number = 0; // loco address or symbol number; 0 for the blocks
};

struct DdsRecord {
    RecordId id;
    qsizetype position = 0; // of its kind byte in the file
    QByteArray bytes;       // the whole record with its kind byte
};

/// Where and why a file cannot be read on.
struct DdsFault {
    int recordNumber = 0;   // counted from 1
    qsizetype position = 0; // of the byte that is wrong or missing, counted from 0
    QString reason;         // German, without a full stop
};

struct DdsContent {
    std::vector<DdsRecord> records; // all sound ones before the fault
    std::optional<DdsFault> fault;
};

/// Takes a file apart and checks all of it: kind bytes, lengths, addresses and numbers, halves, and the values of
/// loco records that can only be 0 or 1. Whatever the bytes are, what it returns can be written to a handheld.
DdsContent ReadDds(const QByteArray &file);

/// The bytes of a file; nothing when it cannot be read or is far larger than any backup.
std::optional<QByteArray> LoadDds(const QString &fileName);

/// "Datensatz 3, Byteposition 178: " and the reason.
QString FaultText(const DdsFault &fault);

QByteArray PackLoco(int address, const LocoRecord &record);
LocoRecord UnpackLoco(const DdsRecord &record);

/// A symbol record of the picture that lies in SpiBuf in write position; UnpackSymbol lays it there again.
QByteArray PackSymbol(const RecordId &id);
void UnpackSymbol(const DdsRecord &record);

/// Routes, assignment and accessory list, from and to their tables.
QByteArray PackBlock(int kind);
void UnpackBlock(const DdsRecord &record);

/// The kind of symbol that a record kind holds, which half of it, and back.
SymbolKind SymbolKindOf(int kind);
int HalfOf(int kind);
int RecordKind(SymbolKind symbol, int half);
