#include "platform/qt/console.h"

#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <string>
#include <utility>

#ifdef _WIN32
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <filesystem>
#include <iostream>
#endif

namespace hr::platform
{

namespace
{

constexpr int InputDescriptor = 0;
constexpr int ErrorDescriptor = 2;

std::atomic<int> interrupts = 0;
std::atomic<bool> endSignalled = false;
std::atomic<bool> endIsDone = false;

#ifdef _WIN32
/// In a thread of the system's own, which kills the program as soon as this returns from any but an interrupt.
BOOL WINAPI TakeConsoleEvent(DWORD event)
{
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
        ++interrupts;
        return TRUE;
    }
    endSignalled = true;
    constexpr DWORD lookMs = 20;
    while (!endIsDone)
        Sleep(lookMs);
    return TRUE;
}

void Watch()
{
    SetConsoleCtrlHandler(TakeConsoleEvent, TRUE);
}

bool IsTerminal(int descriptor, const char *)
{
    DWORD mode = 0; // devices such as NUL call themselves terminals too, but have none
    const HANDLE handle = GetStdHandle(descriptor == InputDescriptor ? STD_INPUT_HANDLE : STD_ERROR_HANDLE);
    return GetConsoleMode(handle, &mode) != FALSE;
}

/// Bytes go out as they are written: UTF-8, lines ended by LF.
unsigned PrepareOutput()
{
    const unsigned before = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(error, &mode) != FALSE) // the progress line is written over
        SetConsoleMode(error, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    _setmode(1, _O_BINARY);
    _setmode(2, _O_BINARY);
    // Unbuffered, the halves of an umlaut would come out one by one, as two signs. Whoever prints flushes.
    constexpr size_t mostAtOnce = 8192;
    std::setvbuf(stdout, nullptr, _IOFBF, mostAtOnce);
    std::setvbuf(stderr, nullptr, _IOFBF, mostAtOnce);
    return before;
}

void RestoreOutput(unsigned before)
{
    SetConsoleOutputCP(before); // the next program in this window may count on it
}

/// What is typed next; nothing after Ctrl-C and at the end of the input (Ctrl-Z). Only consoles are asked.
Console::Line NextLine()
{
    constexpr wchar_t endOfInput = 26;
    std::array<wchar_t, 1024> text{};
    DWORD length = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    const bool read = ReadConsoleW(input, text.data(), static_cast<DWORD>(text.size()), &length, nullptr) != FALSE;
    if (!read || length == 0 || text.front() == endOfInput)
        return {};
    return QString::fromWCharArray(text.data(), static_cast<qsizetype>(length)).trimmed();
}
#else
void Watch()
{
    std::signal(SIGINT, [](int) { ++interrupts; });
    std::signal(SIGTERM, [](int) { endSignalled = true; });
    std::signal(SIGHUP, [](int) { endSignalled = true; });
    std::signal(SIGPIPE, SIG_IGN); // a reader of the output that goes away is noticed when writing fails
}

unsigned PrepareOutput()
{
    return 0;
}

void RestoreOutput(unsigned) { }

/// Of the character devices that a program is called with only these are no terminals.
bool IsTerminal(int, const char *device)
{
    std::error_code error;
    if (!std::filesystem::is_character_file(device, error) || error)
        return false;
    const std::string real = std::filesystem::canonical(device, error).string();
    const auto devices = {"/dev/null", "/dev/zero", "/dev/full", "/dev/random", "/dev/urandom"};
    return !error && std::ranges::find(devices, real) == devices.end();
}

Console::Line NextLine()
{
    std::string line;
    if (!std::getline(std::cin, line))
        return {};
    return QString::fromLocal8Bit(QByteArray::fromStdString(line));
}
#endif

} // namespace

#ifdef _WIN32
/// The system's console has no event for a line, so a thread waits for it while events go on. A question that nobody waits
/// for any more leaves the thread waiting: what is typed then answers the next one, or the program ends before.
class Console::Reader : public std::enable_shared_from_this<Console::Reader>
{
public:
    void read(std::function<void(const Line &)> newTake)
    {
        take = std::move(newTake);
        if (!std::exchange(waits, true))
            std::thread([self = shared_from_this()] { self->wait(); }).detach();
    }
    void stop() { take = nullptr; }
    void close()
    {
        const std::lock_guard guard(mutex);
        receiver.reset();
    }

private:
    void wait()
    {
        const Line line = NextLine();
        const std::lock_guard guard(mutex);
        if (receiver)
            QMetaObject::invokeMethod(
                receiver.get(), [this, line] { answer(line); }, Qt::QueuedConnection);
    }
    void answer(const Line &line)
    {
        waits = false;
        if (take)
            std::exchange(take, nullptr)(line);
    }

    std::function<void(const Line &)> take; // this and `waits` belong to the program's thread
    bool waits = false;
    std::mutex mutex;
    std::unique_ptr<QObject> receiver = std::make_unique<QObject>(); // until the console ends
};
#else
class Console::Reader
{
public:
    void read(std::function<void(const Line &)> take)
    {
        notifier = std::make_unique<QSocketNotifier>(InputDescriptor, QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this, take = std::move(take)] {
            notifier->setEnabled(false);
            take(NextLine());
        });
    }
    void stop() { notifier.reset(); }
    void close() { stop(); }

private:
    std::unique_ptr<QSocketNotifier> notifier;
};
#endif

void OccupyClosedStreams()
{
#ifndef _WIN32
    // The lowest free descriptors are taken, which are the closed ones; they stay open as long as the program runs.
    // Only for reading: who prints to a closed output is told.
    for (int descriptor = 0; descriptor <= ErrorDescriptor; ++descriptor)
        [[maybe_unused]] const auto *stream = std::fopen("/dev/null", "r");
#endif
}

void WatchEndSignals()
{
    static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);
    Watch();
}

EndSignals SeenEndSignals()
{
    return {interrupts, endSignalled};
}

void EndIsDone()
{
    endIsDone = true;
}

Console::Console()
    : inputTerminal(IsTerminal(InputDescriptor, "/dev/stdin"))
    , errorTerminal(IsTerminal(ErrorDescriptor, "/dev/stderr"))
    , outputBefore(PrepareOutput())
    , reader(std::make_shared<Reader>())
{
}

Console::~Console()
{
    reader->close();
    std::fflush(stdout);
    std::fflush(stderr);
    RestoreOutput(outputBefore);
}

void Console::readLine(std::function<void(const Line &)> take)
{
    reader->read(std::move(take));
}

void Console::stopReading()
{
    reader->stop();
}

} // namespace hr::platform
