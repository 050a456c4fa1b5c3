// Faults of the simulated world, switched on from outside. Nothing goes wrong unless asked for, and the same seed
// gives the same run again.
#pragma once

#include <QtGlobal>

#include <random>

namespace hr::sim
{

/// One kind of fault: strikes at the nth occasion (1 = the next one, 0 = never), as many times in a row as `times` says, and
/// at each occasion with the given probability (0..1). `seen` counts the occasions since the faults were set.
struct Fault {
    int nth = 0;
    double probability = 0;
    int seen = 0;
    int times = 1;
};

struct Faults {
    quint32 seed = 1;

    // Occasion: a byte on its way from the interface to the PC.
    Fault lostByte;
    Fault changedByte; // one bit of it
    Fault doubledByte;
    Fault lateByte; // it and all that follow come lateUs later
    qint64 lateUs = 30'000;

    // Occasion: a message that the PC sends.
    Fault lostEcho;    // the message is on the bus, but does not come back to the PC
    Fault changedEcho; // one bit of it; the devices get the message unchanged
    Fault tornEcho;    // a pause of tearUs in the middle of it
    qint64 tearUs = 300'000;
    Fault foreignBeforeEcho; // foreign messages come before the echo
    Fault foreignAfterEcho;  // foreign messages come between the echo and the answer
    int foreignCount = 3;
    Fault foreignPeerBefore;      // a 31-byte 0xE5 message of another device comes before the echo
    Fault foreignPeerAfter;       // the same between the echo and the answer
    bool foreignPeerSound = true; // its checksum is right
    Fault hangUp;                 // the interface vanishes when this message is written

    // Occasion: a request that reaches the handheld. It does not hear it, and so does not answer.
    Fault missedRequest;

    // Occasion: a long acknowledge of the handheld.
    Fault lostAck;
    Fault otherAck; // it carries otherAckCode instead of the usual code
    quint8 otherAckCode = 0x00;

    // Occasion: an answer of the handheld. One bit of its data is another one on the bus.
    Fault damagedAnswer;

    // Occasion: an acknowledge or answer of the handheld.
    Fault doubledAnswer; // it comes once more, doubledUs later
    qint64 doubledUs = 20'000;
    Fault lateAnswer; // it comes lateAnswerUs later than it should
    qint64 lateAnswerUs = 3'000'000;

    // Occasion: a page program of the dataflash. The page is left half programmed, the handheld is dead afterwards.
    Fault powerCut;

    // Occasion: a page program of the dataflash. It is acknowledged and not done.
    Fault skippedProgram;

    // Occasion: a page load of the dataflash. It is acknowledged and not done.
    Fault skippedLoad;

    // Occasion: a byte that the PC writes to the interface with the text prompt. CTS goes off for ctsOffUs after it,
    // and bytes written meanwhile are lost.
    Fault ctsOff;
    qint64 ctsOffUs = 1'000'000;
};

/// The switched faults with their dice.
class FaultBox
{
public:
    Faults faults;

    /// Replaces all faults; their occasions count anew.
    void set(const Faults &wanted)
    {
        faults = wanted;
        dice.seed(wanted.seed);
    }

    /// One occasion of this fault: does it happen?
    bool strikes(Fault &fault)
    {
        ++fault.seen;
        const bool chosen = fault.nth > 0 && fault.seen >= fault.nth && fault.seen < fault.nth + fault.times;
        return chosen || (fault.probability > 0 && dice() < fault.probability * DiceRange);
    }

    /// 0 <= number < count.
    int number(int count) { return static_cast<int>(dice() % static_cast<unsigned>(count)); }

private:
    static constexpr double DiceRange = 4294967296.0;
    std::mt19937 dice{1};
};

} // namespace hr::sim
