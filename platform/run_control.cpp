#include "platform/run_control.h"

#include "platform/world.h"

#include <utility>

namespace
{

constexpr double SecondsPerDay = 86400;

struct State {
    RunState run = RunState::Running;
    std::function<void()> endReady;
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

BusyScope::BusyScope() : entered(state.busyDepth == 0 && state.run == RunState::Running)
{
    if (entered)
        ++state.busyDepth;
    else
        TheFrontend().raiseWaitingWindow();
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
    state.sequenceAbandoned = state.run == RunState::Ending;
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
    ++state.jobs;
    state.stopConfirmed = false;
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

double SecondsSince(double timeOfDay)
{
    const double difference = TheEvents().timeOfDay() - timeOfDay;
    return difference < 0 ? difference + SecondsPerDay : difference;
}

void WaitSeconds(double seconds)
{
    const double start = TheEvents().timeOfDay();
    PumpUntil([start, seconds] { return SecondsSince(start) > seconds; });
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
