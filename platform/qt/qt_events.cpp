#include "platform/qt/qt_events.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <utility>

namespace hr::platform
{

namespace
{

constexpr qint64 UsPerMs = 1000;

const QElapsedTimer &RunningTimer()
{
    static const QElapsedTimer timer = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return timer;
}

} // namespace

QtEvents::QtEvents()
{
    RunningTimer();
}

QtEvents::~QtEvents() = default;

qint64 QtEvents::monotonicUs() const
{
    return RunningTimer().nsecsElapsed() / UsPerMs;
}

QDateTime QtEvents::now() const
{
    return QDateTime::currentDateTime();
}

Events::TimerId QtEvents::every(int intervalMs, Action action)
{
    auto timer = std::make_unique<QTimer>();
    timer->setTimerType(Qt::PreciseTimer); // a coarse timer drifts by 5 %, and each late tick costs a message
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), std::move(action));
    timer->start(intervalMs);
    timers.emplace(++lastTimer, std::move(timer));
    return lastTimer;
}

void QtEvents::stop(TimerId timer)
{
    timers.erase(timer);
}

void QtEvents::after(qint64 delayUs, Action action)
{
    const auto wholeMs = std::chrono::milliseconds((qMax<qint64>(delayUs, 0) + UsPerMs - 1) / UsPerMs);
    QTimer::singleShot(wholeMs, Qt::PreciseTimer, &context, std::move(action));
}

void QtEvents::post(Action action)
{
    QMetaObject::invokeMethod(&context, std::move(action), Qt::QueuedConnection);
}

void QtEvents::pump()
{
    // Without a time limit on purpose: with one, or without WaitForMoreEvents, a waiting program burns a core.
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

int QtEvents::run()
{
    return QCoreApplication::exec();
}

void QtEvents::quit()
{
    QCoreApplication::quit();
}

} // namespace hr::platform
