// The machine's serial ports on Windows' own calls, for a Qt without its serial port module.
#pragma once

#include "platform/events.h"
#include "platform/serial_port.h"

#include <memory>
#include <optional>

namespace hr::platform
{

class WinSerialPort : public SerialPort
{
public:
    explicit WinSerialPort(Events &events);
    ~WinSerialPort() override;
    WinSerialPort(const WinSerialPort &) = delete;
    WinSerialPort &operator=(const WinSerialPort &) = delete;

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
    class Device;

    [[nodiscard]] bool usable() const;
    bool applyLine();
    void applyModemLines();
    void handleReceived();
    void handleLoss();

    Events &events;
    std::unique_ptr<Device> device; // the open one
    QString portDevice;
    QString settings;
    Handshake flow = Handshake::None;
    int inputLength = 0;
    int receiveThreshold = 1;
    std::optional<bool> dtr; // unset: the line stays as the system opens it
    std::optional<bool> rts;
    bool hungUp = false;
    int opening = 0; // counts the openings, so that a late report never closes a newer one
};

} // namespace hr::platform
