// The handheld on the bus: lets the PC drive its dataflash through memory transfer messages.
//
// Memory transfer message (31 bytes; 0xED from the PC, 0xE5 from the handheld):
//   0 opcode   1 0x1F   2-4 0x08 0x66 0x33   30 checksum
//   5, 10, 15, 20, 25   collectors: bits 0-3 = bit 7 of the four bytes that follow
//   6-9, 11-14, 16-19, 21-24, 26-29   data D1..D20 without bit 7
//   collector 10 bits 4-6 = command, collectors 15 bit 4, 20 bits 4-6, 25 bits 4-6 = start index, highest bit first
// Commands: 0 store D1..D20; 0x10 store D1..D19 and clock D20 bytes through the chip; 0x20 answer with 20 bytes from
// the start index; 0x30 identification; the mode message (collectors 70 30 10 50 60) ends the PC's work.
#pragma once

#include "sim/bus.h"
#include "sim/dataflash.h"
#include "sim/faults.h"

#include <array>

namespace hr::sim
{

struct HandheldSettings {
    quint8 versionMajor = 1;
    quint8 versionMinor = 2;
    std::array<quint8, 3> date{14, 3, 8};         // day, month, year
    QByteArray type = QByteArrayLiteral("51201"); // five characters
    bool present = true;                          // plugged into the bus
    quint8 ackCode = 0x7F;
    qint64 answerDelayUs = 2'000;
};

struct HandheldState {
    std::array<quint8, 256> spiBuffer{};
    int normalModes = 0; // mode messages accepted
    int identifications = 0;
    int stores = 0;   // slices laid into the SPI buffer
    int executes = 0; // of these, with clocking through the chip
    int readBacks = 0;
    int rejected = 0; // messages that look like a memory transfer but have a wrong checksum
};

class Handheld : public BusDevice
{
public:
    HandheldSettings settings;
    HandheldState state;
    Dataflash flash;

    explicit Handheld(FaultBox &faultBox);

    std::vector<BusAnswer> receive(const Bytes &message, qint64 timeUs) override;
    [[nodiscard]] bool hasPower() const override { return powered; }

    /// The supply fails: the handheld is silent and forgets its buffers until restorePower().
    void cutPower(qint64 nowUs);
    void restorePower() { powered = true; }

private:
    std::vector<BusAnswer> handle(const Bytes &message, qint64 timeUs);
    std::vector<BusAnswer> execute(std::size_t count, qint64 timeUs);
    std::vector<BusAnswer> acknowledge(qint64 workUs);
    std::vector<BusAnswer> answer(std::span<const quint8> data) const;
    [[nodiscard]] Bytes identification() const;
    [[nodiscard]] std::vector<BusAnswer> disturbed(std::vector<BusAnswer> answers) const;

    FaultBox &box;
    bool powered = true;
};

} // namespace hr::sim
