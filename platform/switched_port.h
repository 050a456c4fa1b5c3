// One port control over all that a port text can mean, chosen by it each time the port is opened: the machine's serial ports,
// another computer in the network (plain bytes or LocoNet over TCP) and the built-in simulated handheld.
#pragma once

#include "platform/lines_port.h"

namespace hr::platform
{

class SwitchedPort : public SerialPort
{
public:
    /// The ports stay owned by the caller and outlive this object. The network port moves plain bytes.
    SwitchedPort(SerialPort &machinePort, SerialPort &networkPort, SerialPort &demoPort);

    void setPortName(const QString &portText) override;
    void setSettings(const QString &settings) override;
    bool open() override;
    [[nodiscard]] PortFault fault() const override { return active->fault(); }
    [[nodiscard]] QString faultText() const override { return active->faultText(); }
    [[nodiscard]] bool connecting() const override { return active->connecting(); }
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
    [[nodiscard]] SerialPort &portFor(const QString &portText);
    void listenTo(SerialPort &port);

    SerialPort &machine;
    SerialPort &network;
    SerialPort &demo;
    LinesPort lines;
    SerialPort *active;
};

} // namespace hr::platform
