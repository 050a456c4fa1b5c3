// The machine's serial ports, on QSerialPort.
#pragma once

#include "platform/events.h"
#include "platform/serial_port.h"

#include <QSerialPort>

#include <optional>

namespace hr::platform
{

class QtSerialPort : public SerialPort
{
public:
    explicit QtSerialPort(Events &events);
    ~QtSerialPort() override;
    QtSerialPort(const QtSerialPort &) = delete;
    QtSerialPort &operator=(const QtSerialPort &) = delete;

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
    [[nodiscard]] bool usable() const;
    void applySettings();
    void applyModemLines();
    void handleReadyRead();
    void handleError(QSerialPort::SerialPortError error);
    void reportHangUp();

    Events &events;
    mutable QSerialPort port; // asking for its pins is not const
    QString settings;
    int inputLength = 0;
    int receiveThreshold = 1;
    std::optional<bool> dtr; // unset: the line stays as the system opens it
    std::optional<bool> rts;
    bool hasCts = false;
    bool hungUp = false;
    int opening = 0; // counts the openings, so that a late report never closes a newer one
};

} // namespace hr::platform
