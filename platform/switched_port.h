// One port control over two worlds: the machine's serial ports and the built-in simulated handheld, chosen by the
// port text each time the port is opened.
#pragma once

#include "platform/serial_port.h"

namespace hr::platform
{

class SwitchedPort : public SerialPort
{
public:
    /// Both ports stay owned by the caller and outlive this object.
    SwitchedPort(SerialPort &machinePort, SerialPort &demoPort);

    void setPortName(const QString &portText) override;
    void setSettings(const QString &settings) override;
    bool open() override;
    void close() override;
    [[nodiscard]] bool isOpen() const override;
    void setHandshake(Handshake handshake) override;
    void setDtr(bool on) override;
    void setRts(bool on) override;
    void setBreak(bool on) override;
    [[nodiscard]] bool cts() const override;
    void setInputLength(int bytes) override;
    void setInputBufferSize(int bytes) override;
    void setOutputBufferSize(int bytes) override;
    void setReceiveThreshold(int bytes) override;
    void discardOutput() override;
    [[nodiscard]] bool outputEmpty() const override;
    [[nodiscard]] int bytesWaiting() const override;
    QByteArray read() override;
    void write(const QByteArray &bytes) override;
    [[nodiscard]] QList<PortEntry> availablePorts() const override;

private:
    SerialPort &machine;
    SerialPort &demo;
    SerialPort *active;
};

} // namespace hr::platform
