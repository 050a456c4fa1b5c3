#include "platform/lines_port.h"

namespace hr::platform
{

namespace
{
constexpr qsizetype MostReceived = 1024 * 1024; // far more than anybody leaves unread
}

LinesPort::LinesPort(SerialPort &textCarrier) : carrier(textCarrier)
{
    takeCarrier();
    lines.onRefused = [this](const QString &reason) {
        if (onRefused)
            onRefused(reason);
    };
}

void LinesPort::takeCarrier()
{
    carrier.onReceive = [this] { takeText(); };
    carrier.onHangUp = [this] {
        if (onHangUp)
            onHangUp();
    };
}

bool LinesPort::open()
{
    lines.reset();
    received.clear();
    carrier.setInputLength(0);
    carrier.setReceiveThreshold(1);
    return carrier.open();
}

void LinesPort::close()
{
    carrier.close();
    received.clear();
}

void LinesPort::takeText()
{
    received += lines.messagesIn(carrier.read());
    if (received.size() > MostReceived)
        received.clear();
    tellWaiting();
}

QByteArray LinesPort::read()
{
    const QByteArray taken = inputLength > 0 ? received.left(inputLength) : received;
    received.remove(0, taken.size());
    return taken;
}

void LinesPort::write(const QByteArray &bytes)
{
    if (!carrier.isOpen() || carrier.connecting())
        return;
    if (const QByteArray text = lines.linesFor(bytes); !text.isEmpty())
        carrier.write(text);
}

} // namespace hr::platform
