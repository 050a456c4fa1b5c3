// Who may run, who waits, and how the program ends.
//
// The program has one thread. A user command may wait for the handheld or for the user while events go on; this
// module keeps a second command from starting meanwhile and lets all waits end when the program is being closed.
//
//   Running --RequestEnd()--> Ending --(commands have unwound)--> Leaving --> Ended
//
// Ending:  all waits end at once with "nothing chosen" or a broken-off outcome and without boxes; only a started page
//          sequence of the dataflash is finished. No new command starts.
// Leaving: the handheld is sent back to its operating mode; waits work again, commands do not.
#pragma once

#include "platform/rooms.h"

#include <functional>

namespace hr::program
{

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

/// Called when a second command is asked for while one runs: the face brings the waiting window forward.
void OnBusyAgain(std::function<void()> handler);
void TellBusyAgain();

/// Guards one user command (button, menu item, grid click, picker, editor). ok() is false when another command
/// runs or the program ends; the caller returns at once then, and the handler of OnBusyAgain() is called.
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
[[nodiscard]] bool PumpUntil(const std::function<bool()> &done);

/// The same for boxes and questions: they end with the program even inside a page sequence, which then goes on.
[[nodiscard]] bool PumpUntilAnswered(const std::function<bool()> &done);

/// Seconds on the monotonic clock, and from such a moment to now. They know no midnight.
double NowSeconds();
double SecondsSince(double moment);

/// A wait that looks at something which tells nobody when it changes: one timer that wakes it up, for its whole life.
class WakeUps
{
public:
    explicit WakeUps(int intervalMs);
    ~WakeUps();
    WakeUps(const WakeUps &) = delete;
    WakeUps &operator=(const WakeUps &) = delete;

private:
    int timer;
};

/// Waits the given time while events go on; ends early when waits must end.
void WaitSeconds(double seconds);

/// Handles what is pending and returns at once: for long jobs of the program's own that send nothing.
void LetEventsRun();

void ResetRunControl();

} // namespace hr::program
