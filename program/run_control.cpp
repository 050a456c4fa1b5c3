#include "program/run_control.h"

#include "platform/world.h"

#include <utility>

namespace hr::program
{

namespace
{

constexpr double UsPerSecond = 1e6;

struct State {
    RunState run = RunState::Running;
    std::function<void()> endReady;
    std::function<void()> busyAgain;
    bool endPosted = false;
    int busyDepth = 0;
    int pageSequences = 0; // and other exchanges that are finished when the program ends
    bool sequenceAbandoned = false;
    int jobs = 0;
    bool stopConfirmed = false;
};
State state;

void PostEndWhenIdle()
{
    if (state.run != RunState::Ending || state.busyDepth > 0 || state.endPosted || !state.endReady)
        return;
    state.endPosted = true;
    TheEvents().post([] { state.endReady(); });
}

} // namespace

RunState CurrentRunState()
{
    return state.run;
}

void RequestEnd()
{
    if (state.run != RunState::Running)
        return;
    state.run = RunState::Ending;
    PostEndWhenIdle();
}

void OnEndReady(std::function<void()> handler)
{
    state.endReady = std::move(handler);
}

void SetRunState(RunState run)
{
    state.run = run;
}

bool WaitsMustEnd()
{
    const bool finishing = state.pageSequences > 0 && !state.sequenceAbandoned;
    return (state.run == RunState::Ending && !finishing) || state.run == RunState::Ended;
}

bool BoxesAreSilent()
{
    return state.run != RunState::Running;
}

void OnBusyAgain(std::function<void()> handler)
{
    state.busyAgain = std::move(handler);
}

void TellBusyAgain()
{
    if (state.busyAgain)
        state.busyAgain();
}

BusyScope::BusyScope() : entered(state.busyDepth == 0 && state.run == RunState::Running)
{
    if (entered)
        ++state.busyDepth;
    else
        TellBusyAgain();
}

BusyScope::~BusyScope()
{
    if (!entered)
        return;
    --state.busyDepth;
    PostEndWhenIdle();
}

bool Busy()
{
    return state.busyDepth > 0;
}

PageSequence::PageSequence() : granted(!WaitsMustEnd())
{
    if (granted)
        ++state.pageSequences;
}

PageSequence::~PageSequence()
{
    if (granted)
        --state.pageSequences;
    state.sequenceAbandoned = false;
}

void AbandonPageSequence()
{
    state.sequenceAbandoned = state.pageSequences > 0 && state.run == RunState::Ending;
}

MustFinish::MustFinish()
{
    ++state.pageSequences;
}

MustFinish::~MustFinish()
{
    --state.pageSequences;
}

StoppableJob::StoppableJob()
{
    if (state.jobs++ == 0)
        state.stopConfirmed = false; // a job inside another one does not forget its stop
}

StoppableJob::~StoppableJob()
{
    --state.jobs;
}

bool StoppableJob::stopRequested()
{
    return state.stopConfirmed || BoxesAreSilent();
}

bool JobCanBeStopped()
{
    return state.jobs > 0 && !state.stopConfirmed;
}

void ConfirmStop()
{
    state.stopConfirmed = true;
}

bool PumpUntil(const std::function<bool()> &done)
{
    while (!done()) {
        if (WaitsMustEnd())
            return false;
        TheEvents().pump();
    }
    return true;
}

bool PumpUntilAnswered(const std::function<bool()> &done)
{
    while (!done()) {
        if (BoxesAreSilent())
            return false;
        TheEvents().pump();
    }
    return true;
}

double NowSeconds()
{
    return static_cast<double>(TheEvents().monotonicUs()) / UsPerSecond;
}

double SecondsSince(double moment)
{
    return NowSeconds() - moment;
}

WakeUps::WakeUps(int intervalMs) : timer(TheEvents().every(intervalMs, [] {})) { }

WakeUps::~WakeUps()
{
    TheEvents().stop(timer);
}

void WaitSeconds(double seconds)
{
    const double start = NowSeconds();
    // Something must end the wait even when nothing else happens.
    TheEvents().after(static_cast<qint64>(seconds * UsPerSecond) + 1, [] {});
    static_cast<void>(PumpUntil([start, seconds] { return SecondsSince(start) > seconds; }));
}

void LetEventsRun()
{
    TheEvents().post([] {}); // so that the pump has something to do and does not sleep
    TheEvents().pump();
}

void ResetRunControl()
{
    state = State();
}

} // namespace hr::program
