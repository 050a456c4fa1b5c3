// A pseudo-terminal: the end that a program opens like a serial port, and the end that the simulation holds.
#pragma once

#include "sim/loconet.h"

#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>

namespace hr::sim
{

class Pty
{
public:
    Pty() = default;
    ~Pty() { close(); }
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    /// Opens a new pseudo-terminal in raw mode. Its other end is also held open here, so that a client may come and
    /// go. False when the system gives none.
    bool open();

    /// Closes both ends: a client sees a hang-up.
    void close();

    /// Path of the client's end; empty when closed.
    [[nodiscard]] QString path() const { return clientPath; }

    /// Bytes that the client cannot take at once are dropped, as by a line without flow control.
    void write(const Bytes &bytes) const;

    /// Called with what the client has written.
    std::function<void(const Bytes &)> onBytes;

private:
    void readAll() const;

    int master = -1;
    int client = -1;
    QString clientPath;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace hr::sim
