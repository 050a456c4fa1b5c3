#include "platform/switched_port.h"

#include "platform/port_name.h"

namespace hr::platform
{

SwitchedPort::SwitchedPort(SerialPort &machinePort, SerialPort &networkPort, SerialPort &demoPort)
    : machine(machinePort), network(networkPort), demo(demoPort), lines(networkPort), active(&machinePort)
{
    for (SerialPort *port : std::initializer_list<SerialPort *>{&machine, &lines, &demo})
        listenTo(*port);
}

void SwitchedPort::listenTo(SerialPort &port)
{
    port.onReceive = [this] {
        if (onReceive)
            onReceive();
    };
    port.onHangUp = [this] {
        if (onHangUp)
            onHangUp();
    };
    port.onRefused = [this](const QString &reason) {
        if (onRefused)
            onRefused(reason);
    };
}

SerialPort &SwitchedPort::portFor(const QString &portText)
{
    if (IsDemoPort(portText))
        return demo;
    const auto wanted = NetworkPortOf(portText);
    if (!wanted)
        return machine;
    if (wanted->plainBytes)
        return network;
    return lines;
}

void SwitchedPort::setPortName(const QString &portText)
{
    SerialPort *wanted = &portFor(portText);
    if (wanted != active) {
        active->close();
        active = wanted;
        // The connection itself is heard by whoever uses it.
        if (active == &network)
            listenTo(network);
        else if (active == &lines)
            lines.takeCarrier();
    }
    active->setPortName(portText);
}

void SwitchedPort::setSettings(const QString &settings)
{
    active->setSettings(settings);
}

bool SwitchedPort::open()
{
    return active->open();
}

void SwitchedPort::close()
{
    active->close();
}

bool SwitchedPort::isOpen() const
{
    return active->isOpen();
}

void SwitchedPort::setHandshake(Handshake handshake)
{
    active->setHandshake(handshake);
}

void SwitchedPort::setDtr(bool on)
{
    active->setDtr(on);
}

void SwitchedPort::setRts(bool on)
{
    active->setRts(on);
}

void SwitchedPort::setBreak(bool on)
{
    active->setBreak(on);
}

bool SwitchedPort::cts() const
{
    return active->cts();
}

void SwitchedPort::setInputLength(int bytes)
{
    active->setInputLength(bytes);
}

void SwitchedPort::setInputBufferSize(int bytes)
{
    active->setInputBufferSize(bytes);
}

void SwitchedPort::setOutputBufferSize(int bytes)
{
    active->setOutputBufferSize(bytes);
}

void SwitchedPort::setReceiveThreshold(int bytes)
{
    active->setReceiveThreshold(bytes);
}

void SwitchedPort::discardOutput()
{
    active->discardOutput();
}

int SwitchedPort::bytesWaiting() const
{
    return active->bytesWaiting();
}

QByteArray SwitchedPort::read()
{
    return active->read();
}

void SwitchedPort::write(const QByteArray &bytes)
{
    active->write(bytes);
}

QList<PortEntry> SwitchedPort::availablePorts() const
{
    const PortEntry simulated{
        QStringLiteral("Demo"), QStringLiteral("simulierter Handregler zum Ausprobieren"), false};
    return machine.availablePorts() << simulated;
}

bool SwitchedPort::outputEmpty() const
{
    return active->outputEmpty();
}

} // namespace hr::platform
