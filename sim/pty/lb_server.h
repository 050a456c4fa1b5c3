// Serves the simulated bus to programs that speak LocoNet over TCP. Written for the simulation alone: it shares nothing with
// the program's own reading of that protocol.
#pragma once

#include "platform/events.h"
#include "sim/layout.h"

#include <QTcpServer>

#include <deque>

class QTcpSocket;

namespace hr::sim
{

class LbServer
{
public:
    struct Manner {
        int version = 2;         // of the protocol, 0 to 2
        bool echoes = true;      // the sender gets his own message back too
        bool sentBehind = true;  // SENT OK comes behind the RECEIVE of the message
        QString refusal;         // every SEND is answered by SENT ERROR with this comment; empty: by what it deserves
        bool answersSend = true; // false: never a SENT
        bool byteByByte = false; // every byte of the text in a packet of its own
    };

    /// The layout outlives the server. Messages reach it and come from it through its interface, with that one's faults.
    LbServer(Events &clock, Layout &layout, Manner manner);
    ~LbServer();
    LbServer(const LbServer &) = delete;
    LbServer &operator=(const LbServer &) = delete;

    /// False when the port number is taken. 0 = any; see port().
    bool listen(quint16 port);
    [[nodiscard]] quint16 port() const { return server.serverPort(); }

    /// What has come through the interface.
    void fromBus(const Bytes &bytes);

    /// All clients are sent away.
    void hangUp();

private:
    struct Waiting {
        QTcpSocket *client;
        Bytes message;
        qint64 untilUs;
    };

    void take(QTcpSocket *client);
    void takeLine(QTcpSocket *client, const QByteArray &line);
    void tell(QTcpSocket *client, const QByteArray &line) const;
    void spread(const Bytes &message);
    void giveUpLate();

    Events &events;
    Layout &model;
    Manner manner;
    QTcpServer server;
    std::vector<QTcpSocket *> clients;
    std::deque<Waiting> waiting; // for their echo
    MessageAssembler assembler;
    std::shared_ptr<int> alive = std::make_shared<int>(0);
};

} // namespace hr::sim
