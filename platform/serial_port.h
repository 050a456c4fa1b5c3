// The serial port as the LocoNet link sees it: one port with the switches of a classic port control.
//
// Two implementations stand behind it: the real port (platform/qt) and the simulated bus (sim/).
// All calls are made on the one thread of the program; none of them waits.
#pragma once

#include "platform/rooms.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

namespace hr::platform
{

/// A port as it is offered to the user.
struct PortEntry {
    QString name;           // what is typed: "ttyUSB0", "COM3", "Demo"
    QString description;    // what it is: "FTDI USB Serial"; may be empty
    bool pluggedIn = false; // an adapter that somebody has plugged in, not a line of the board
};

/// Why a port was not opened.
enum class PortFault { None, NotThere, NotAllowed, InUse, Other };

class SerialPort
{
public:
    enum class Handshake { None, RtsCts };

    virtual ~SerialPort() = default;

    /// Which device open() uses: the text as the user typed it (see PortDevice in platform/port_name.h).
    /// Takes effect at the next open().
    virtual void setPortName(const QString &portText) = 0;

    /// Line settings as "baud,parity,data bits,stop bits", for example "115200,n,8,1".
    /// Takes effect at once on an open port, otherwise at the next open().
    virtual void setSettings(const QString &settings) = 0;

    /// Opens the device, or begins to (see connecting()). False when it does not exist, is in use or refuses the line settings; the port stays
    /// closed then. Bytes that waited in the device before are discarded. Lines that the device does not have
    /// (modem lines of a pseudo-terminal) are no failure.
    virtual bool open() = 0;

    /// Why the last open() failed; None when it did not.
    [[nodiscard]] virtual PortFault fault() const = 0;

    /// More about that failure, whole German sentences, where the port knows more; otherwise empty.
    [[nodiscard]] virtual QString faultText() const { return {}; }

    /// True while an opened port is still on its way to its device over the network. Meanwhile it counts as open and moves no
    /// bytes; then it is open, or closed with a fault.
    [[nodiscard]] virtual bool connecting() const { return false; }

    /// Closes the device; no effect on a closed port.
    virtual void close() = 0;
    [[nodiscard]] virtual bool isOpen() const = 0;

    virtual void setHandshake(Handshake handshake) = 0;
    virtual void setDtr(bool on) = 0;
    virtual void setRts(bool on) = 0;
    virtual void setBreak(bool on) = 0;

    /// State of the CTS line; true where the device has no such line, so that sending is never blocked for good.
    [[nodiscard]] virtual bool cts() const = 0;

    /// Reading stops at this many bytes for one read(); 0 = all that wait.
    virtual void setInputLength(int bytes) = 0;
    virtual void setInputBufferSize(int bytes) = 0;
    virtual void setOutputBufferSize(int bytes) = 0;

    /// Received bytes that raise the receive event: 0 = never, 1 = every byte.
    virtual void setReceiveThreshold(int bytes) = 0;

    /// Discards what was written and has not left the PC yet.
    virtual void discardOutput() = 0;

    /// True when all that was written has left the program, so that the next byte is not queued behind others.
    [[nodiscard]] virtual bool outputEmpty() const { return true; }

    /// Number of received bytes that wait.
    [[nodiscard]] virtual int bytesWaiting() const = 0;

    /// Takes waiting bytes, at most the input length. Empty when nothing waits or the port is closed.
    virtual QByteArray read() = 0;

    /// Hands the bytes to the device; ignored on a closed port.
    virtual void write(const QByteArray &bytes) = 0;

    /// The ports that this machine has now, the likeliest first; offered where the user chooses a port.
    [[nodiscard]] virtual QList<PortEntry> availablePorts() const { return {}; }

    /// Called when characters have been received. The handler must drain the port and must not wait.
    std::function<void()> onReceive;

    /// Called once when the device vanished while it was open (pulled adapter, closed pseudo-terminal). It is
    /// called from the event loop, outside the device's own handlers. The port counts as open until then, moves no
    /// bytes any more, and is closed when the handler runs.
    std::function<void()> onHangUp;

    /// Called when whoever passes messages on to the bus says that one was not sent, with his reason (may be empty).
    std::function<void(const QString &reason)> onRefused;
};

} // namespace hr::platform
