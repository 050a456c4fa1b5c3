// How fast messages follow each other on the link.
//
//   Ticks    one message sent and one handled every 50 ms: the pace that every handheld knows (default)
//   Events   a message leaves as soon as it is laid and is handled as soon as it is complete; for handhelds that can
//            follow, chosen by the user
//
// In the fast cadence messages with a wrong checksum are not believed, the handheld is given a rest after it has
// programmed a page, and a step without an answer is repeated once. When the repetition has no answer either, the rest
// of the connection runs in Ticks.
#pragma once

#include "platform/rooms.h"

#include <QtGlobal>

namespace hr::link
{

enum class Cadence { Ticks, Events };

/// What the user has chosen. Takes effect at once and holds from one connection to the next.
void ChooseCadence(Cadence wanted);
Cadence ChosenCadence();

/// The cadence of the present connection.
Cadence CurrentCadence();

/// The chosen cadence again: a connection begins.
void BeginConnection();

/// Ticks until the next connection; the user is told: "Schnelle Übertragung abgeschaltet: ...". No effect in Ticks.
void FallBackToTicks();

/// While one lives, the connection runs in Ticks: for devices whose answers come in an order that only holds then.
class TicksOnly
{
public:
    TicksOnly();
    ~TicksOnly();
    TicksOnly(const TicksOnly &) = delete;
    TicksOnly &operator=(const TicksOnly &) = delete;
};

/// Seconds that a request with its answer takes on this connection, rests included: measured, and before the first
/// message an estimate. Every remaining time is computed with it.
double SecondsPerMessage();

/// Takes one more measurement into it.
void TakeMeasurement(double seconds);

void ResetCadence();

} // namespace hr::link
