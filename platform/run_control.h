// Who may run, who waits, and how the program ends.
//
// The program has one thread. A user command may wait for the handheld or for the user while events go on; this
// module keeps a second command from starting meanwhile and lets all waits end when the program is being closed.
//
//   Running --RequestEnd()--> Ending --(commands have unwound)--> Leaving --> Ended
//
// Ending:  all waits end at once with "nothing chosen" or status 1 and without boxes; only a started page
//          sequence of the dataflash is finished. No new command starts.
// Leaving: the handheld is sent back to its operating mode; waits work again, commands do not.
#pragma once

#include <functional>

enum class RunState { Running, Ending, Leaving, Ended };

RunState CurrentRunState();

/// Asks for the end of the program; only the first call counts. The handler given to OnEndReady() is posted once
/// no command runs any more.
void RequestEnd();

/// The last steps of the program (send the handheld back, quit); runs once, outside every command.
void OnEndReady(std::function<void()> handler);
void SetRunState(RunState state);

/// True while waits have to end at once: the program is ending and no page sequence is under way.
bool WaitsMustEnd();

/// True from RequestEnd() on: messages would only hold up the end.
bool BoxesAreSilent();

/// Guards one user command (button, menu item, grid click, picker, editor). ok() is false when another command
/// runs or the program ends; the caller returns at once then. The waiting window is raised in that case.
class BusyScope
{
public:
    BusyScope();
    ~BusyScope();
    BusyScope(const BusyScope &) = delete;
    BusyScope &operator=(const BusyScope &) = delete;
    [[nodiscard]] bool ok() const { return entered; }

private:
    bool entered;
};

/// True while a user command runs.
bool Busy();

/// Marks the sequence page load .. page program of the dataflash, which is finished even when the program ends,
/// so that no page is left half written. When the program is already ending, the sequence is not started:
/// WaitsMustEnd() stays true inside.
class PageSequence
{
public:
    PageSequence();
    ~PageSequence();
    PageSequence(const PageSequence &) = delete;
    PageSequence &operator=(const PageSequence &) = delete;

private:
    bool granted;
};

/// A step of the page sequence got no answer while the program ends: the rest of the sequence, the page program
/// included, is given up (the flash is still as it was). No effect while the program runs.
void AbandonPageSequence();

/// A short exchange that has to take place even when the program is already ending, because a device would be left
/// in a wrong state otherwise.
class MustFinish
{
public:
    MustFinish();
    ~MustFinish();
    MustFinish(const MustFinish &) = delete;
    MustFinish &operator=(const MustFinish &) = delete;
};

/// A job over many records that the user may stop through the progress window's close box.
class StoppableJob
{
public:
    StoppableJob();
    ~StoppableJob();
    StoppableJob(const StoppableJob &) = delete;
    StoppableJob &operator=(const StoppableJob &) = delete;

    /// True once the user has confirmed the stop, or the program is ending.
    [[nodiscard]] static bool stopRequested();
};

/// True while a stoppable job runs whose stop has not been confirmed yet.
bool JobCanBeStopped();
void ConfirmStop();

/// Pumps events until done() holds (true) or waits must end (false). done() is tested first.
bool PumpUntil(const std::function<bool()> &done);

/// Seconds from a time of day to now, counted across midnight.
double SecondsSince(double timeOfDay);

/// Waits the given time while events go on; ends early when waits must end.
void WaitSeconds(double seconds);

/// Handles what is pending and returns at once: for long jobs of the program's own that send nothing.
void LetEventsRun();

void ResetRunControl();
