#include "tests/support/virtual_world.h"

#include "handheld/discovery.h"
#include "handheld/text_encoding.h"
#include "jobs/selection.h"
#include "link/cadence.h"
#include "link/exchange.h"
#include "link/message_layer.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "platform/world.h"
#include "program/run_control.h"
#include "program/settings_file.h"

#include <QCoreApplication>
#include <QDir>

namespace hr::tests
{

namespace
{
constexpr double UsPerSecond = 1e6;
constexpr int MainTimerMs = 50;
} // namespace

Events::TimerId VirtualEvents::every(int intervalMs, Action action)
{
    ++timersStarted;
    const qint64 due = nowUs + intervalMs * 1000;
    timers[++lastTimer] = std::make_shared<Repeating>(Repeating{intervalMs, due, std::move(action)});
    return lastTimer;
}

void VirtualEvents::stop(TimerId timer)
{
    timers.erase(timer);
}

void VirtualEvents::after(qint64 delayUs, Action action)
{
    pending.emplace(nowUs + qMax<qint64>(delayUs, 0), std::move(action));
}

void VirtualEvents::post(Action action)
{
    posted.push_back(std::move(action));
}

void VirtualEvents::pump()
{
    QCoreApplication::sendPostedEvents();
    if (!posted.empty()) {
        const Action action = std::move(posted.front());
        posted.pop_front();
        action();
        return;
    }
    if (static_cast<double>(nowUs) / UsPerSecond > limitSeconds) {
        ADD_FAILURE() << "a wait hangs";
        std::abort();
    }
    runNext();
}

void VirtualEvents::runNext()
{
    std::shared_ptr<Repeating> next;
    for (const auto &[id, timer] : timers) {
        if (!timer->running && (!next || timer->dueUs < next->dueUs))
            next = timer;
    }
    if (!pending.empty() && (!next || pending.begin()->first <= next->dueUs)) {
        const Action action = std::move(pending.begin()->second);
        nowUs = qMax(nowUs, pending.begin()->first);
        pending.erase(pending.begin());
        action();
        return;
    }
    if (!next) {
        ADD_FAILURE() << "a wait with nothing pending";
        std::abort();
    }
    nowUs = qMax(nowUs, next->dueUs);
    next->dueUs += next->intervalMs * 1000;
    ticks += next->intervalMs == MainTimerMs ? 1 : 0;
    next->running = true;
    next->action();
    next->running = false;
}

void VirtualEvents::run(double seconds)
{
    const qint64 end = nowUs + static_cast<qint64>(seconds * UsPerSecond);
    bool done = false;
    after(end - nowUs, [&done] { done = true; });
    while (!done)
        pump();
}

void ScriptedAsk::expect(const QString &text, const QString &boxTitle, const QString &answer)
{
    script.push_back({text, boxTitle, answer});
}

QString ScriptedAsk::answerTo(const QString &text, const QString &boxTitle)
{
    boxes += boxTitle + QStringLiteral(": ") + text;
    const bool scripted = !script.empty();
    const Expected expected = scripted ? script.front() : Expected{text, boxTitle, {}};
    if (scripted)
        script.pop_front();
    else
        EXPECT_TRUE(anyBox) << "unexpected box: " << boxes.constLast().toStdString();
    if (onBox) // boxes may open on top of this one
        onBox();
    if (ignoreTexts)
        return expected.answer;
    EXPECT_EQ(text.toStdString(), expected.text.toStdString());
    EXPECT_EQ(boxTitle.toStdString(), expected.title.toStdString());
    return expected.answer;
}

void ScriptedAsk::showBox(const BoxText &box)
{
    answerTo(box.text, box.title);
}

void ScriptedAsk::postBox(const BoxText &box)
{
    answerTo(box.text, box.title);
}

bool ScriptedAsk::askYesNo(const BoxText &box, bool yesIsDefault)
{
    defaultYes = yesIsDefault;
    return answerTo(box.text, box.title) == u"Ja";
}

QString ScriptedAsk::askText(const QString &prompt, const QString &boxTitle, const QString &proposed)
{
    textProposal = proposed;
    return answerTo(prompt, boxTitle);
}

void ScriptedAsk::showProgress(const QString &text)
{
    progressVisible = true;
    progress += text;
}

void ScriptedAsk::checkAllUsed() const
{
    for (const Expected &left : script)
        ADD_FAILURE() << "box did not come: " << left.title.toStdString() << ": " << left.text.toStdString();
}

void ResetCore()
{
    ResetRunControl();
    ResetAsk();
    ResetSettings();
    TheMessages().reset();
    ResetCadence();
    ResetExchange();
    ResetOpenLink();
    ResetDiscovery();
    ResetSelection();
}

VirtualWorld::VirtualWorld()
{
    QDir(folder.path()).mkdir(QStringLiteral("konf"));
    SetProgramFolder(folder.path());
    InstallWorld({&events, &port});
    InstallAsk(&user);
    ResetCore();
    OnBusyAgain([this] { ++user.raised; });
}

VirtualWorld::~VirtualWorld()
{
    driver.reset();
    ResetCore();
    InstallAsk(nullptr);
    InstallWorld({});
}

void VirtualWorld::TearDown()
{
    user.checkAllUsed();
    EXPECT_FALSE(Busy());
}

void VirtualWorld::driveLink()
{
    driver.reset();
    driver = std::make_unique<LinkDriver>();
}

void VirtualWorld::connectDirectly()
{
    driveLink();
    TheLink().use({{QStringLiteral("3"), true}, InterfaceDirect});
    ASSERT_TRUE(SetupDirectInterface().ok());
    TheLink().HandreglerGefunden = true;
}

void VirtualWorld::strike(sim::Fault sim::Faults::*fault, int nth)
{
    sim::Faults faults;
    (faults.*fault).nth = nth;
    layout().faults.set(faults);
}

void VirtualWorld::afterProgram(int count, const std::function<void()> &what)
{
    events.after(10'000, [this, count, what] { executed(0x83) >= count ? what() : afterProgram(count, what); });
}

int VirtualWorld::messagesOnBus(int opcode)
{
    int count = 0;
    for (const sim::BusMessage &message : layout().bus.log)
        count += message.bytes.at(0) == opcode ? 1 : 0;
    return count;
}

} // namespace hr::tests
