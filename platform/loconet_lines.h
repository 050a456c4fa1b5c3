// LocoNet over TCP: the line protocol that layout programs and small boards speak, versions 0 to 2. Pure text and bytes, no
// socket in it.
//
//   client: SEND A0 2F 00 70
//   server: VERSION text            once, at the beginning
//           RECEIVE 83 7C           every message on the bus, the own ones too
//           SENT OK [comment]       the answer to a SEND, or
//           SENT ERROR [comment]
//           TIMESTAMP ms, BREAK ms, ERROR CHECKSUM|LINE|MESSAGE   before a RECEIVE, from version 2 on
//
// A line ends with CR or LF in any combination; empty lines and unknown tokens are passed over; hex in either case.
#pragma once

#include "platform/rooms.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <functional>

namespace hr::platform
{

class LocoNetLines
{
public:
    /// The SEND lines for the messages that these bytes complete; what is not complete yet waits for the next call.
    QByteArray linesFor(const QByteArray &written);

    /// The bytes of the messages that came with these bytes from the server. A message that the server itself calls
    /// disturbed is left out, and so is what is no message by its first byte and its length.
    /// Where a server does not return the own messages, SENT OK stands for the echo; one that it returns after that is
    /// then left out once.
    QByteArray messagesIn(const QByteArray &fromServer);

    /// Called with the server's comment when it says that a message was not sent.
    std::function<void(const QString &comment)> onRefused;

    /// Another connection begins.
    void reset();

private:
    struct Sent {
        QByteArray message;
        bool echoed = false;
    };

    void takeByte(char byte, QByteArray &messages);
    [[nodiscard]] QByteArray takeLine(const QByteArray &line);
    [[nodiscard]] QByteArray takeReceive(const QByteArray &parameter);
    [[nodiscard]] QByteArray takeSent(const QByteArray &parameter);

    QByteArray line;           // of the server, so far
    bool lineTooLong = false;  // its rest is passed over
    bool disturbed = false;    // the server says so of the next message
    QByteArray outgoing;       // begun and not complete
    std::deque<Sent> sent;     // not answered by SENT yet
    QByteArray standIn;        // the echo for which SENT OK has stood
    bool serverEchoes = false; // it returns own messages: SENT OK is no echo then
    bool echoMissing = false;  // ... but not that of the last one so far
};

} // namespace hr::platform
