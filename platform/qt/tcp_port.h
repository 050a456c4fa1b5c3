// A connection over the network as a port: plain bytes both ways, on QTcpSocket.
#pragma once

#include "platform/events.h"
#include "platform/stream_port.h"

#include <QTcpSocket>

namespace hr::platform
{

class TcpPort : public StreamPort
{
public:
    explicit TcpPort(Events &events);
    ~TcpPort() override;
    TcpPort(const TcpPort &) = delete;
    TcpPort &operator=(const TcpPort &) = delete;

    void setPortName(const QString &portText) override { portName = portText; }

    /// Begins to connect: see connecting(). What takes longer than 5 s has failed.
    bool open() override;
    [[nodiscard]] PortFault fault() const override { return openFault; }
    [[nodiscard]] QString faultText() const override { return reason; }
    [[nodiscard]] bool connecting() const override { return state == State::Connecting; }
    void close() override;
    [[nodiscard]] bool isOpen() const override { return state != State::Closed; }
    [[nodiscard]] bool outputEmpty() const override { return socket.bytesToWrite() == 0; }
    [[nodiscard]] int bytesWaiting() const override;
    QByteArray read() override;
    void write(const QByteArray &bytes) override;

private:
    enum class State { Closed, Connecting, Connected, Lost }; // lost: until it was told
    void fail(PortFault fault, const QString &text);
    void handleConnected();
    void handleError(QAbstractSocket::SocketError error);
    void failToConnect(QAbstractSocket::SocketError error, const QString &text);
    void tellLoss();

    Events &events;
    QTcpSocket socket;
    QString portName;
    State state = State::Closed;
    PortFault openFault = PortFault::None;
    QString reason;
    int opening = 0; // counts the openings, so that what is late never concerns a newer one
};

} // namespace hr::platform
