// The backup file (*.dds): records one after the other, without header, count or checksum.
//
//   kind  bytes  after the kind byte
//      1     76  loco address (2), name (21, Latin-1), loco symbol (1), function symbols 0..24 (25), modes of f0..f24
//                (25, each 0 or 1), one symbol for all functions (1, 0 or 1)
//      2    102  loco symbol number (2, 0..63), picture and 1 byte behind it (99)
//   3, 4     39  function symbol number (2, 0..255), half (1, kind - 3), picture and 5 bytes behind it (35)
//      5    321  routes
//   6, 7     39  accessory symbol number (2, 0..255), half (1, kind - 6), picture and 5 bytes behind it (35)
//      8   2049  accessory assignment of the addresses 1..2048
//      9    257  accessory list
//
// Two-byte numbers have the high byte first.
#pragma once

#include "handheld/record_kinds.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace hr::handheld
{

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

/// The bytes of a record, and the value of a checked one. The name of a loco is cut or filled to 21 characters.
QByteArray PackRecord(const RecordId &id, const RecordValue &value);
RecordValue UnpackRecord(const DdsRecord &record);

} // namespace hr::handheld
