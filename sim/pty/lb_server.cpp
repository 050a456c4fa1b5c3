#include "sim/pty/lb_server.h"

#include <QTcpSocket>

#include <algorithm>

namespace hr::sim
{

namespace
{

constexpr qint64 EchoLimitUs = 1'000'000;
constexpr qint64 LongestLine = 2000;

} // namespace

LbServer::LbServer(Events &clock, Layout &layout, Manner how) : events(clock), model(layout), manner(std::move(how))
{
    QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
        QTcpSocket *client = server.nextPendingConnection();
        clients.push_back(client);
        client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] { take(client); });
        QObject::connect(client, &QTcpSocket::disconnected, client, [this, client] {
            std::erase(clients, client);
            std::erase_if(waiting, [client](const Waiting &one) { return one.client == client; });
            client->deleteLater();
        });
        tell(client, "VERSION Simulierter Handregler");
    });
}

LbServer::~LbServer()
{
    hangUp();
}

bool LbServer::listen(quint16 port)
{
    return server.listen(QHostAddress::Any, port);
}

void LbServer::hangUp()
{
    const auto all = std::exchange(clients, {});
    waiting.clear();
    for (QTcpSocket *client : all) {
        client->disconnect();
        client->abort();
        client->deleteLater();
    }
}

void LbServer::take(QTcpSocket *client)
{
    while (client->canReadLine())
        takeLine(client, client->readLine().trimmed());
    if (client->bytesAvailable() > LongestLine)
        client->abort();
}

void LbServer::takeLine(QTcpSocket *client, const QByteArray &line)
{
    if (!line.startsWith("SEND "))
        return;
    const Bytes message = ToBytes(QByteArray::fromHex(line.mid(5)));
    const bool refused = !manner.refusal.isEmpty() || !IsMessage(message);
    if (refused) {
        const QString why = manner.refusal.isEmpty() ? QStringLiteral("keine Meldung") : manner.refusal;
        return tell(client, "SENT ERROR " + why.toUtf8());
    }
    waiting.push_back({client, message, events.monotonicUs() + EchoLimitUs});
    if (!manner.sentBehind && manner.answersSend)
        tell(client, "SENT OK");
    model.fromPc(message);
    events.after(EchoLimitUs + 1, [this, guard = std::weak_ptr<int>(alive)] {
        if (!guard.expired())
            giveUpLate();
    });
}

/// The bus has swallowed it, or its echo.
void LbServer::giveUpLate()
{
    while (!waiting.empty() && waiting.front().untilUs <= events.monotonicUs()) {
        if (manner.sentBehind && manner.answersSend)
            tell(waiting.front().client, "SENT ERROR kein Echo");
        waiting.pop_front();
    }
}

void LbServer::fromBus(const Bytes &bytes)
{
    for (const quint8 byte : bytes) {
        if (const auto message = assembler.add(byte))
            spread(*message);
    }
}

void LbServer::spread(const Bytes &message)
{
    const auto own = std::ranges::find_if(waiting, [&message](const Waiting &one) { return one.message == message; });
    QTcpSocket *sender = own == waiting.end() ? nullptr : own->client;
    for (QTcpSocket *client : clients) {
        if (client == sender && !manner.echoes)
            continue;
        if (manner.version > 1)
            tell(client, "TIMESTAMP " + QByteArray::number(events.monotonicUs() / 1000));
        if (manner.version > 1 && !IsMessage(message))
            tell(client, "ERROR CHECKSUM");
        tell(client, "RECEIVE " + ToByteArray(message).toHex(' ').toUpper());
    }
    if (sender == nullptr)
        return;
    waiting.erase(own);
    if (manner.sentBehind && manner.answersSend)
        tell(sender, "SENT OK");
}

void LbServer::tell(QTcpSocket *client, const QByteArray &line) const
{
    const QByteArray text = line + "\r\n";
    if (!manner.byteByByte) {
        client->write(text);
        return;
    }
    for (const char byte : text) {
        client->write(&byte, 1);
        client->flush();
    }
}

} // namespace hr::sim
