#include "link/cadence.h"

#include "program/ask.h"
#include "program/run_control.h"

namespace hr::link
{

namespace
{

constexpr double TicksEstimate = 0.15; // three ticks
constexpr double EventsEstimate = 0.04;
constexpr double Smoothing = 0.05; // weight of the newest measurement: a few page programs do not sway it

struct State {
    Cadence chosen = Cadence::Ticks;
    Cadence current = Cadence::Ticks;
    int ticksOnly = 0; // objects alive
    double seconds = TicksEstimate;
};
State state;

void SwitchTo(Cadence cadence)
{
    if (state.current == cadence)
        return;
    state.current = cadence;
    state.seconds = cadence == Cadence::Ticks ? TicksEstimate : EventsEstimate;
}

} // namespace

void ChooseCadence(Cadence wanted)
{
    state.chosen = wanted;
    SwitchTo(wanted);
}

Cadence ChosenCadence()
{
    return state.chosen;
}

Cadence CurrentCadence()
{
    return state.ticksOnly > 0 ? Cadence::Ticks : state.current;
}

void BeginConnection()
{
    SwitchTo(state.chosen);
}

void FallBackToTicks()
{
    if (CurrentCadence() == Cadence::Ticks)
        return;
    SwitchTo(Cadence::Ticks);
    if (BoxesAreSilent())
        return;
    TheAsk().postBox(
        {QStringLiteral("Schnelle Übertragung abgeschaltet: Der Handregler hat zweimal nicht geantwortet.\r"
                        "Es geht mit der gewohnten Geschwindigkeit weiter."),
            QStringLiteral("Schnelle Übertragung"), BoxIcon::Information});
}

TicksOnly::TicksOnly()
{
    ++state.ticksOnly;
}

TicksOnly::~TicksOnly()
{
    --state.ticksOnly;
}

double SecondsPerMessage()
{
    return state.seconds;
}

void TakeMeasurement(double seconds)
{
    state.seconds += Smoothing * (seconds - state.seconds);
}

void ResetCadence()
{
    state = State();
}

} // namespace hr::link
