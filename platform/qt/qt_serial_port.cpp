#include "platform/qt/qt_serial_port.h"

#include "platform/port_name.h"

#include <QSerialPortInfo>

#include <algorithm>

namespace hr::platform
{

namespace
{

QSerialPort::Parity ParityOf(const QString &letter)
{
    if (letter == u"e")
        return QSerialPort::EvenParity;
    return letter == u"o" ? QSerialPort::OddParity : QSerialPort::NoParity;
}

bool IsLoss(QSerialPort::SerialPortError error)
{
    return error == QSerialPort::ResourceError || error == QSerialPort::ReadError || error == QSerialPort::WriteError
        || error == QSerialPort::DeviceNotFoundError || error == QSerialPort::PermissionError;
}

} // namespace

QtSerialPort::QtSerialPort(Events &eventLoop) : events(eventLoop)
{
    QObject::connect(&port, &QSerialPort::readyRead, &port, [this] { handleReadyRead(); });
    QObject::connect(&port, &QSerialPort::errorOccurred, &port,
        [this](QSerialPort::SerialPortError error) { handleError(error); });
}

QtSerialPort::~QtSerialPort()
{
    port.disconnect();
}

void QtSerialPort::setPortName(const QString &portText)
{
    port.setPortName(PortDevice(portText));
}

void QtSerialPort::setSettings(const QString &text)
{
    settings = text;
    if (port.isOpen())
        applySettings();
}

void QtSerialPort::applySettings()
{
    const QStringList fields = settings.split(u',');
    Q_ASSERT(fields.size() == 4);
    port.setBaudRate(fields.at(0).toInt());
    port.setParity(ParityOf(fields.at(1)));
    port.setDataBits(static_cast<QSerialPort::DataBits>(fields.at(2).toInt()));
    port.setStopBits(fields.at(3) == u"2" ? QSerialPort::TwoStop : QSerialPort::OneStop);
}

bool QtSerialPort::open()
{
    if (port.portName().isEmpty())
        return false;
    applySettings();
    hungUp = false;
    ++opening;
    if (!port.open(QIODevice::ReadWrite))
        return false;
    port.clear();
    hasCts = true;
    applyModemLines();
    port.pinoutSignals();
    hasCts = port.error() == QSerialPort::NoError;
    port.clearError();
    return true;
}

void QtSerialPort::applyModemLines()
{
    // Pseudo-terminals and some adapters have no such lines; that is no reason to refuse them.
    if (dtr)
        port.setDataTerminalReady(*dtr);
    if (rts && port.flowControl() != QSerialPort::HardwareControl)
        port.setRequestToSend(*rts);
    port.clearError();
}

void QtSerialPort::close()
{
    ++opening;
    if (port.isOpen())
        port.close();
}

bool QtSerialPort::isOpen() const
{
    return port.isOpen(); // also between a loss and its report, so that nobody sees one without the other
}

bool QtSerialPort::usable() const
{
    return port.isOpen() && !hungUp;
}

void QtSerialPort::setHandshake(Handshake handshake)
{
    port.setFlowControl(handshake == Handshake::RtsCts ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
}

void QtSerialPort::setDtr(bool on)
{
    dtr = on;
    if (port.isOpen())
        applyModemLines();
}

void QtSerialPort::setRts(bool on)
{
    rts = on;
    if (port.isOpen())
        applyModemLines();
}

void QtSerialPort::setBreak(bool on)
{
    if (port.isOpen())
        port.setBreakEnabled(on);
}

bool QtSerialPort::cts() const
{
    if (!hasCts || !usable())
        return true;
    return port.pinoutSignals().testFlag(QSerialPort::ClearToSendSignal);
}

void QtSerialPort::setInputLength(int bytes)
{
    inputLength = bytes;
}

void QtSerialPort::setInputBufferSize(int bytes)
{
    // A bound on the read buffer would stop the receive event when it is full; the size given is the least one.
    Q_UNUSED(bytes)
    port.setReadBufferSize(0);
}

void QtSerialPort::setOutputBufferSize(int bytes)
{
    Q_UNUSED(bytes) // the output buffer grows as needed
}

void QtSerialPort::setReceiveThreshold(int bytes)
{
    receiveThreshold = bytes;
}

void QtSerialPort::discardOutput()
{
    if (port.isOpen())
        port.clear(QSerialPort::Output);
}

bool QtSerialPort::outputEmpty() const
{
    return port.bytesToWrite() == 0;
}

int QtSerialPort::bytesWaiting() const
{
    return usable() ? static_cast<int>(port.bytesAvailable()) : 0;
}

QByteArray QtSerialPort::read()
{
    if (!usable())
        return {};
    return inputLength > 0 ? port.read(inputLength) : port.readAll();
}

void QtSerialPort::write(const QByteArray &bytes)
{
    if (!usable())
        return;
    port.write(bytes);
    port.flush(); // to the driver at once: who sends byte by byte under CTS would wait for the event loop each time
}

QList<PortEntry> QtSerialPort::availablePorts() const
{
    QList<PortEntry> ports;
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts()) {
        const QString words = QString(info.manufacturer() + u' ' + info.description()).simplified();
        ports += {info.portName(), words, info.hasVendorIdentifier()};
    }
    // Adapters that somebody has plugged in stand before the lines of the board.
    std::stable_sort(ports.begin(), ports.end(),
        [](const PortEntry &one, const PortEntry &other) { return one.pluggedIn && !other.pluggedIn; });
    return ports;
}

void QtSerialPort::handleReadyRead()
{
    if (receiveThreshold > 0 && bytesWaiting() >= receiveThreshold && onReceive)
        onReceive();
}

void QtSerialPort::handleError(QSerialPort::SerialPortError error)
{
    // A vanished device reports read errors without end: only the first one counts, and the port is closed from
    // the event loop, since closing it inside its own signal is not safe.
    if (!port.isOpen() || hungUp || !IsLoss(error))
        return;
    hungUp = true;
    const int lost = opening;
    events.post([this, lost] {
        if (lost == opening)
            reportHangUp();
    });
}

void QtSerialPort::reportHangUp()
{
    close();
    if (onHangUp)
        onHangUp();
}

} // namespace hr::platform
