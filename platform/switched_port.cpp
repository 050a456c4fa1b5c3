#include "platform/switched_port.h"

#include "platform/port_name.h"

namespace hr::platform
{

SwitchedPort::SwitchedPort(SerialPort &machinePort, SerialPort &demoPort)
    : machine(machinePort), demo(demoPort), active(&machinePort)
{
    for (SerialPort *port : {&machine, &demo}) {
        port->onReceive = [this] {
            if (onReceive)
                onReceive();
        };
        port->onHangUp = [this] {
            if (onHangUp)
                onHangUp();
        };
    }
}

void SwitchedPort::setPortName(const QString &portText)
{
    SerialPort *wanted = IsDemoPort(portText) ? &demo : &machine;
    if (wanted != active) {
        active->close();
        active = wanted;
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
