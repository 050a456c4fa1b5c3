// Download of a command station's loco database (interface kind 3).
//
// Requests are 31-byte 0xED messages with bytes 2-4 = 0x08 0x49 0x4B, answers 0xE5 messages with 0x01 0x50 0x43. Both
// carry 20 data bytes D1..D20; the requests carry three command values C1, C2, C3 (0..7) in bits 4-6 of the collectors
// 15, 20 and 25. docs/station-download.md tells what is asked and answered at each step.
//
// Status of a step: 0, or the step's base plus the inner code
//   13    the request could not be sent
//   1011  no acknowledge, or another code than the step needs
//   1012  no answer within 2 s
#pragma once

#include "handheld/loco_record.h"

#include <QString>

#include <array>
#include <vector>

namespace hr::station
{

constexpr int BaseEntry = 110000;
constexpr int BaseLeaving = 120000;
constexpr int BasePreparation = 150000;
constexpr int BaseRange = 160000;
constexpr int BaseDatabase = 170000;
constexpr int BaseRecords = 210000;

constexpr int InnerNotSent = 13;
constexpr int InnerNoAcknowledge = 1011;
constexpr int InnerNoAnswer = 1012;

/// One loco as the command station keeps it.
struct DownloadedLoco {
    int address = 0;                        // 1..9999
    QString stationName;                    // as the station has it
    QString name;                           // adapted to the handheld's characters, at most 21
    std::array<int, FunctionCount> modes{}; // f0..f24: 1 = momentary
    int multiUni = 0;
    int locoSymbol = 0;
};

/// What a download brought.
struct Download {
    int status = 0;                    // 0 = the whole database was read
    std::vector<DownloadedLoco> locos; // in the station's order; after a failure those read until then
    int unusable = 0;                  // records whose address no handheld can hold; they are left out
};

/// The whole download over the open port, with its progress texts and boxes: "Keine ... vorhanden!" when no station
/// answers, "Fehler beim Lesen der Datenbank:" and the status after a later failure. HandheldMode is true again
/// afterwards, whatever happened. A confirmed stop ends it at once; what was read until then is returned.
[[nodiscard]] Download DownloadLocos();

/// The record that a downloaded loco becomes in the handheld; it has no function symbols.
LocoRecord RecordOfLoco(const DownloadedLoco &loco);

} // namespace hr::station
