// The command station on the bus: accepts the download requests of the PC (31-byte 0xED messages with bytes 2-4 =
// 0x08 0x49 0x4B) and reads out its small loco database. docs/station-download.md is the table of its steps.
//
// Entry request:  collectors 15, 20, 25 = 0x30 0x70 0x00, D2-D4 = 127, D9-D16 = 12 8 19 30 19 19 7 2
// Its answer:     0xE5 0x1F 0x01 0x50 0x43, collectors 5, 10, 15, 20 = 0x70 0x70 0x30 0x70,
//                 bytes 16-19 = 12 8 19 30, bytes 21-23 = 19 19 7
#pragma once

#include "sim/bus.h"

#include <array>

namespace hr::sim
{

/// One loco of the database.
struct StationLoco {
    int address = 3;
    QByteArray name;               // Latin-1, at most 16 characters count
    std::array<quint8, 4> modes{}; // bit i of byte k = function 8k + i momentary; bit 7 of the last: one symbol
    quint8 symbol = 0;
};

struct StationSettings {
    bool present = false;
    bool inDownloadMode = false; // then the entry request gets the acknowledge code 1 and no answer
    quint8 ackCode = 0x7F;
    bool answers = true; // false = acknowledge only
    int silentFrom = 0;  // from this request on (1 = the first) it only acknowledges; 0 = never
    qint64 ackDelayUs = 2'000;
    qint64 answerDelayUs = 60'000;
};

class Station : public BusDevice
{
public:
    StationSettings settings;
    std::vector<StationLoco> locos;
    std::vector<Bytes> requests; // every request with a right checksum, in order

    std::vector<BusAnswer> receive(const Bytes &message, qint64 timeUs) override;

private:
    [[nodiscard]] bool staysSilent() const;
    [[nodiscard]] Bytes answerTo(const Bytes &request) const;
    [[nodiscard]] Bytes record(std::size_t index, int part) const;
};

/// The database of the demo station.
std::vector<StationLoco> DemoStationLocos();

} // namespace hr::sim
