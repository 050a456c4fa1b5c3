// The virtual world of the tests: a clock that jumps, a user who answers by script, the simulated bus as the port.
//
// A test derives from VirtualWorld. Everything runs in one thread and in simulated time: pump() runs what is posted,
// else jumps to the next timer. A box that the script does not expect fails the test, and so does an answer that is
// left over.
#pragma once

#include "link/link_driver.h"
#include "platform/events.h"
#include "program/ask.h"
#include "sim/sim_port.h"

#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <memory>
#include <optional>

namespace hr::tests
{

class VirtualEvents : public Events
{
public:
    [[nodiscard]] qint64 monotonicUs() const override { return nowUs; }
    [[nodiscard]] QDateTime now() const override
    {
        return QDateTime({2026, 11, 23}, {10, 0, 0}).addMSecs(nowUs / 1000);
    }
    TimerId every(int intervalMs, Action action) override;
    void stop(TimerId timer) override;
    void after(qint64 delayUs, Action action) override;
    void post(Action action) override;
    void pump() override;

    /// Runs events until so much simulated time has passed.
    void run(double seconds);

    qint64 nowUs = 1'000'000;
    double limitSeconds = 4'000; // a wait that goes on longer than this in one test hangs
    int ticks = 0;               // calls of 50 ms timers
    int timersStarted = 0;       // calls of every()
    [[nodiscard]] size_t timersRunning() const { return timers.size(); }

private:
    struct Repeating {
        int intervalMs;
        qint64 dueUs;
        Action action;
        bool running = false;
    };
    void runNext();

    std::deque<Action> posted;
    std::multimap<qint64, Action> pending;
    std::map<TimerId, std::shared_ptr<Repeating>> timers;
    TimerId lastTimer = 0;
};

/// A user who answers boxes by script and notes everything that is shown.
class ScriptedAsk : public Ask
{
public:
    /// The next box must have this text and title; answer is used by questions and inputs.
    void expect(const QString &text, const QString &title, const QString &answer = QString());

    /// Any box from now on is noted in `boxes` and answered with No, until the end of the test.
    void acceptAnyBox() { anyBox = true; }

    void showBox(const BoxText &box) override;
    void postBox(const BoxText &box) override;
    bool askYesNo(const BoxText &box, bool defaultYes) override;
    QString askText(const QString &prompt, const QString &title, const QString &proposed) override;
    void showProgress(const QString &text) override;
    void showAmount(const Amount &amount) override { amounts.push_back(amount); }
    void hideProgress() override { progressVisible = false; }

    void checkAllUsed() const;

    QStringList boxes;           // "title: text" of every box and question, in order
    QStringList progress;        // every progress text, in order
    std::vector<Amount> amounts; // every amount of a long job, in order
    std::function<void()> onBox; // runs while a box is open, before it is answered
    bool progressVisible = false;
    bool defaultYes = false;  // of the last question
    bool ignoreTexts = false; // the script holds only answers
    QString textProposal;     // of the last input
    int raised = 0;           // second commands while one ran

protected:
    QString answerTo(const QString &text, const QString &title);

private:
    struct Expected {
        QString text;
        QString title;
        QString answer;
    };
    std::deque<Expected> script;
    bool anyBox = false;
};

class VirtualWorld : public ::testing::Test
{
protected:
    VirtualWorld();
    ~VirtualWorld() override;

    void TearDown() override;

    /// Starts the link as main() does.
    void driveLink();

    /// Opens the port as interface kind 3 and marks the handheld as found, without any exchange.
    void connectDirectly();

    sim::Layout &layout() { return port.layout(); }
    sim::Handheld &handheld() { return port.layout().handheld; }
    sim::Dataflash &flash() { return port.layout().handheld.flash; }
    QByteArray flashBytes(int address, int count) { return flash().bytes(address, count); }

    /// Strikes once with a fault of the simulated world, at its nth occasion.
    void strike(sim::Fault sim::Faults::*fault, int nth);

    /// How often the chip has executed an opcode.
    int executed(int opcode) { return flash().state.executed.at(static_cast<size_t>(opcode)); }

    /// Does it soon after the next page program.
    void afterNextProgram(const std::function<void()> &what) { afterProgram(executed(0x83) + 1, what); }

    /// Messages of this opcode on the bus so far.
    int messagesOnBus(int opcode);

private:
    void afterProgram(int count, const std::function<void()> &what);

protected:
    QTemporaryDir folder; // the program folder, with an empty konf
    VirtualEvents events;
    sim::SimPort port{events};
    ScriptedAsk user;
    std::unique_ptr<LinkDriver> driver;
};

/// Restores the start-up state of every core module.
void ResetCore();

} // namespace hr::tests
