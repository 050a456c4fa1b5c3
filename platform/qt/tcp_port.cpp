#include "platform/qt/tcp_port.h"

#include "platform/port_name.h"

namespace hr::platform
{

namespace
{
constexpr qint64 ConnectLimitUs = 5'000'000;
}

TcpPort::TcpPort(Events &eventLoop) : events(eventLoop)
{
    QObject::connect(&socket, &QTcpSocket::connected, &socket, [this] { handleConnected(); });
    QObject::connect(&socket, &QTcpSocket::errorOccurred, &socket,
        [this](QAbstractSocket::SocketError error) { handleError(error); });
    QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] { tellWaiting(); });
}

TcpPort::~TcpPort()
{
    socket.disconnect();
}

bool TcpPort::open()
{
    close();
    const auto wanted = NetworkPortOf(portName);
    openFault = PortFault::NotThere;
    reason.clear();
    if (!wanted)
        return false;
    if (wanted->host.isEmpty() || wanted->port == 0) {
        reason =
            QStringLiteral("\"%1\": Im Netz heißt ein Anschluss RECHNER:NUMMER, mit einer Nummer von 1 bis 65535; "
                           "eine Adresse mit Doppelpunkten steht in eckigen Klammern.")
                .arg(portName.trimmed());
        return false;
    }
    openFault = PortFault::None;
    state = State::Connecting;
    socket.connectToHost(wanted->host, static_cast<quint16>(wanted->port));
    events.after(ConnectLimitUs, [this, begun = opening] {
        if (begun == opening && connecting())
            fail(PortFault::Other, QStringLiteral("%1 antwortet nicht innerhalb von 5 Sekunden."));
    });
    return true;
}

/// %1 in the text is the port.
void TcpPort::fail(PortFault fault, const QString &text)
{
    const QString port = portName.trimmed();
    close();
    openFault = fault;
    reason = text.arg(port);
}

void TcpPort::handleConnected()
{
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    state = State::Connected;
}

/// Handled from the event loop, since closing the socket inside its own signal is not safe.
void TcpPort::handleError(QAbstractSocket::SocketError error)
{
    if (state != State::Connecting && state != State::Connected)
        return;
    const bool lost = state == State::Connected;
    if (lost)
        state = State::Lost;
    events.post([this, lost, error, text = socket.errorString(), concerned = opening] {
        if (concerned != opening)
            return;
        if (lost)
            tellLoss();
        else
            failToConnect(error, text);
    });
}

void TcpPort::failToConnect(QAbstractSocket::SocketError error, const QString &text)
{
    if (error == QAbstractSocket::ConnectionRefusedError)
        fail(PortFault::NotThere, QStringLiteral("%1: Dort nimmt kein Programm Verbindungen an."));
    else if (error == QAbstractSocket::HostNotFoundError)
        fail(PortFault::NotThere, QStringLiteral("%1: Diesen Rechner kennt das Netz nicht."));
    else
        fail(PortFault::Other, QStringLiteral("%1 ist nicht erreichbar: ") + text);
}

void TcpPort::tellLoss()
{
    close();
    if (onHangUp)
        onHangUp();
}

void TcpPort::close()
{
    ++opening;
    state = State::Closed;
    socket.abort();
}

int TcpPort::bytesWaiting() const
{
    return state == State::Connected ? static_cast<int>(socket.bytesAvailable()) : 0;
}

QByteArray TcpPort::read()
{
    if (state != State::Connected)
        return {};
    return inputLength > 0 ? socket.read(inputLength) : socket.readAll();
}

void TcpPort::write(const QByteArray &bytes)
{
    if (state != State::Connected)
        return;
    socket.write(bytes);
    socket.flush();
}

} // namespace hr::platform
