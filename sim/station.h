// The command station on the bus: accepts the download requests of the PC (31-byte 0xED messages with bytes 2-4 =
// 0x08 0x49 0x4B) and answers the request for its download mode. It keeps what was asked; a loco database it does
// not have yet.
//
// Entry request:  collectors 15, 20, 25 = 0x30 0x70 0x00, D2-D4 = 127, D9-D16 = 12 8 19 30 19 19 7 2
// Its answer:     0xE5 0x1F 0x01 0x50 0x43, collectors 5, 10, 15, 20 = 0x70 0x70 0x30 0x70,
//                 bytes 16-19 = 12 8 19 30, bytes 21-23 = 19 19 7
#pragma once

#include "sim/bus.h"

namespace sim
{

struct StationSettings {
    bool present = false;
    bool inDownloadMode = false; // then the entry request gets the acknowledge code 1 and no answer
    quint8 ackCode = 0x7F;
    bool answers = true; // false = acknowledge only
    qint64 ackDelayUs = 2'000;
    qint64 answerDelayUs = 60'000;
};

class Station : public BusDevice
{
public:
    StationSettings settings;
    std::vector<Bytes> requests; // every request with a right checksum, in order

    std::vector<BusAnswer> receive(const Bytes &message, qint64 timeUs) override;
};

} // namespace sim
