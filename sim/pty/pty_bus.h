// The simulated layout behind a pseudo-terminal, and the text commands that act on it while it runs.
#pragma once

#include "sim/layout.h"
#include "sim/pty/lb_server.h"
#include "sim/pty/pty.h"

#include <QStringList>

namespace hr::sim
{

class PtyBus
{
public:
    /// The link is a path that always leads to the current pseudo-terminal; empty = none.
    PtyBus(Events &clock, QString linkPath);
    ~PtyBus();
    PtyBus(const PtyBus &) = delete;
    PtyBus &operator=(const PtyBus &) = delete;

    Layout &layout() { return model; }

    /// Opens a (new) pseudo-terminal and prints its path. False when it or the link cannot be made.
    bool plug();
    /// Serves the bus to programs in the network too, and prints the port's number. False when it is taken.
    bool serve(quint16 networkPort, const LbServer::Manner &manner);
    [[nodiscard]] quint16 networkPort() const { return server->port(); }
    /// The client sees a hang-up, those in the network too.
    void unplug();
    /// Plays the foreign messages of a trace file onto the bus, at their times from now on. False when it can't be read.
    bool replay(const QString &fileName);
    /// Prints every message on the bus with the seconds since the start.
    void logMessages();

    /// The commands in one line.
    static QString commandHelp();
    /// One command line; false for "quit".
    bool runCommand(const QString &line);

private:
    [[nodiscard]] bool updateLink() const;
    void dump(const QStringList &words) const;
    void printStatistics() const;

    Events &events;
    Layout model;
    Pty pty;
    std::unique_ptr<LbServer> server;
    QString link;
};

/// Prints one line to the standard output at once.
void Print(const QString &line);

} // namespace hr::sim
