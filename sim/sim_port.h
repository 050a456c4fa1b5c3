// The simulated bus behind the port interface.
//
// Test doors: layout().faults.set(...), layout().handheld (settings, state, flash), layout().bus.log,
// layout().inject(...), hangUp(), replug(), refuseOpens().
#pragma once

#include "platform/serial_port.h"
#include "sim/layout.h"

#include <QStringList>

namespace hr::sim
{

class SimPort : public SerialPort
{
public:
    /// The clock outlives the port.
    explicit SimPort(Events &clock, InterfaceKind kind = InterfaceKind::Direct);

    void setPortName(const QString &portText) override;
    void setSettings(const QString &settings) override;
    bool open() override;
    void close() override;
    [[nodiscard]] bool isOpen() const override { return opened; }
    void setHandshake(Handshake wanted) override;
    void setDtr(bool on) override;
    void setRts(bool on) override;
    void setBreak(bool on) override;
    [[nodiscard]] bool cts() const override;
    void setInputLength(int bytes) override;
    void setInputBufferSize(int bytes) override;
    void setOutputBufferSize(int bytes) override;
    void setReceiveThreshold(int bytes) override;
    void discardOutput() override;
    [[nodiscard]] int bytesWaiting() const override { return static_cast<int>(received.size()); }
    QByteArray read() override;
    void write(const QByteArray &bytes) override;

    Layout &layout() { return model; }

    /// The next opens fail, as with a port that does not exist.
    void refuseOpens(int count) { opensRefused = count; }

    /// The device vanishes: an open port closes and onHangUp is posted; open() fails until replug().
    void hangUp();
    void replug() { present = true; }

    /// What was set on the port, in order: "name 3", "settings 115200,n,8,1", "open", "dtr 0", "break 1", ...
    [[nodiscard]] const QStringList &calls() const { return callLog; }
    void clearCalls() { callLog.clear(); }

protected:
    /// Called before each opening, with the line settings that will be used.
    virtual void prepareOpen(const QString &settings);

private:
    void note(const char *what, const QString &value);
    void note(const char *what, int value) { note(what, QString::number(value)); }
    void applyLine();
    void arrive(const Bytes &bytes);

    Events &events;
    Layout model;
    QString line;
    Handshake handshake = Handshake::None;
    QByteArray received;
    QStringList callLog;
    int inputLength = 0;
    int threshold = 0;
    int opensRefused = 0;
    int openings = 0; // so that a late loss never closes a newer opening
    bool opened = false;
    bool present = true;
    std::shared_ptr<int> alive = std::make_shared<int>(0);
};

} // namespace hr::sim
