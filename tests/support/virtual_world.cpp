#include "tests/support/virtual_world.h"

#include "handheld/backup/selection.h"
#include "handheld/block_tables.h"
#include "handheld/discovery.h"
#include "handheld/loco_record.h"
#include "link/message_layer.h"
#include "link/open_port.h"
#include "link/settings_file.h"
#include "link/text_encoding.h"
#include "platform/files.h"
#include "platform/run_control.h"
#include "platform/world.h"
#include "station/download.h"
#include "symbols/editor/pixel_editor.h"
#include "symbols/symbol_geometry.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/editors/editor_windows.h"
#include "ui/pickers.h"
#include "ui/picture_cache.h"

#include <QCoreApplication>
#include <QDir>

#include <cmath>

namespace
{
constexpr double UsPerSecond = 1e6;
constexpr double SecondsPerDay = 86'400;
constexpr int MainTimerMs = 50;
constexpr int Timer1Ms = 100;
} // namespace

double VirtualEvents::timeOfDay() const
{
    return std::fmod(dayOffset + static_cast<double>(nowUs) / UsPerSecond, SecondsPerDay);
}

void VirtualEvents::setTimeOfDay(double seconds)
{
    dayOffset = seconds - static_cast<double>(nowUs) / UsPerSecond + SecondsPerDay;
}

Events::TimerId VirtualEvents::every(int intervalMs, Action action)
{
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

void ScriptedFrontend::expect(const QString &text, const QString &boxTitle, const QString &answer)
{
    script.push_back({text, boxTitle, answer});
}

QString ScriptedFrontend::answerTo(const QString &text, const QString &boxTitle)
{
    boxes += boxTitle + QStringLiteral(": ") + text;
    if (onBox)
        onBox();
    if (script.empty()) {
        EXPECT_TRUE(anyBox) << "unexpected box: " << boxes.constLast().toStdString();
        return {};
    }
    const Expected expected = script.front();
    script.pop_front();
    EXPECT_EQ(text.toStdString(), expected.text.toStdString());
    EXPECT_EQ(boxTitle.toStdString(), expected.title.toStdString());
    return expected.answer;
}

void ScriptedFrontend::showBox(const BoxText &box)
{
    answerTo(box.text, box.title);
}

void ScriptedFrontend::postBox(const BoxText &box)
{
    answerTo(box.text, box.title);
}

bool ScriptedFrontend::askYesNo(const BoxText &box, bool)
{
    return answerTo(box.text, box.title) == u"Ja";
}

QString ScriptedFrontend::askText(const QString &prompt, const QString &boxTitle)
{
    return answerTo(prompt, boxTitle);
}

QString ScriptedFrontend::openFileName(const QString &boxTitle, const QString &filter)
{
    return answerTo(filter, boxTitle);
}

QString ScriptedFrontend::saveFileName(const QString &boxTitle, const QString &filter)
{
    return answerTo(filter, boxTitle);
}

void ScriptedFrontend::showProgress(const QString &text)
{
    progressVisible = true;
    progress += text;
}

void ScriptedFrontend::setProgressText(const QString &text)
{
    progress += text;
}

void ScriptedFrontend::showSelectionWindow()
{
    ++selections;
    ASSERT_TRUE(onSelection) << "unexpected selection window";
    TheEvents().post([this] { onSelection(); });
}

void ScriptedFrontend::checkAllUsed() const
{
    for (const Expected &left : script)
        ADD_FAILURE() << "box did not come: " << left.title.toStdString() << ": " << left.text.toStdString();
}

void ResetAllModules()
{
    ResetRunControl();
    ResetFiles();
    ResetSettings();
    ResetMessageLayer();
    ResetOpenPort();
    ResetDiscovery();
    ResetLocoRecord();
    ResetDownload();
    ResetSelection();
    ResetSymbolGeometry();
    ResetCatalogues();
    ResetBlockTables();
    ResetEditors();
    ResetPickers();
    ResetPixelEditor();
    ResetPictureCache();
    BuildZeichensatz();
}

VirtualWorld::VirtualWorld()
{
    QDir(folder.path()).mkdir(QStringLiteral("konf"));
    SetProgramFolder(folder.path());
    InstallWorld({&events, &port, &user});
    ResetAllModules();
}

VirtualWorld::~VirtualWorld()
{
    ResetAllModules();
    InstallWorld({});
}

void VirtualWorld::TearDown()
{
    user.checkAllUsed();
    EXPECT_FALSE(Busy());
}

void VirtualWorld::driveLink()
{
    port.onReceive = ReceiveBytes;
    port.onHangUp = HandlePortLoss;
    events.every(MainTimerMs, [] {
        SendTask();
        DispatchTask();
    });
    events.every(Timer1Ms, ReceiveBytes);
}

void VirtualWorld::connectDirectly()
{
    driveLink();
    PortNumber = {QStringLiteral("3"), true};
    InterfaceType = InterfaceDirect;
    int status = 1;
    SetupDirectInterface(status);
    ASSERT_EQ(status, 0);
    HandreglerGefunden = true;
}

int VirtualWorld::messagesOnBus(int opcode)
{
    int count = 0;
    for (const sim::BusMessage &message : layout().bus.log)
        count += message.bytes.at(0) == opcode ? 1 : 0;
    return count;
}
