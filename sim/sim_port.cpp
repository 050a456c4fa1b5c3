#include "sim/sim_port.h"

namespace hr::sim
{

SimPort::SimPort(Events &clock, InterfaceKind kind) : events(clock), model(clock)
{
    model.adapter.setKind(kind);
    model.adapter.onHangUp = [this] { hangUp(); };
    model.onBytes = [this](const Bytes &bytes) { arrive(bytes); };
}

void SimPort::note(const char *what, const QString &value)
{
    callLog.append(QLatin1String(what) + QLatin1Char(' ') + value);
}

void SimPort::setPortName(const QString &portText)
{
    note("name", portText);
}

void SimPort::setSettings(const QString &settings)
{
    note("settings", settings);
    line = settings;
    if (opened)
        applyLine();
}

void SimPort::applyLine()
{
    model.adapter.setLine(line, handshake == Handshake::RtsCts);
}

void SimPort::prepareOpen(const QString &) { }

bool SimPort::open()
{
    callLog.append(QStringLiteral("open"));
    const bool refused = opensRefused > 0;
    if (refused)
        --opensRefused;
    if (opened || refused || !present)
        return false;
    prepareOpen(line);
    applyLine();
    model.adapter.discardForPc();
    received.clear();
    opened = true;
    ++openings;
    return true;
}

void SimPort::close()
{
    if (!opened)
        return;
    callLog.append(QStringLiteral("close"));
    model.setBreak(false);
    model.discardFromPc();
    received.clear();
    opened = false;
}

void SimPort::setHandshake(Handshake wanted)
{
    note("handshake", wanted == Handshake::RtsCts);
    handshake = wanted;
    if (opened)
        applyLine();
}

void SimPort::setDtr(bool on)
{
    note("dtr", on);
}

void SimPort::setRts(bool on)
{
    note("rts", on);
}

void SimPort::setBreak(bool on)
{
    note("break", on);
    if (opened)
        model.setBreak(on);
}

bool SimPort::cts() const
{
    return model.cts();
}

void SimPort::setInputLength(int bytes)
{
    note("input length", bytes);
    inputLength = bytes;
}

void SimPort::setInputBufferSize(int bytes)
{
    note("input buffer", bytes);
}

void SimPort::setOutputBufferSize(int bytes)
{
    note("output buffer", bytes);
}

void SimPort::setReceiveThreshold(int bytes)
{
    note("receive threshold", bytes);
    threshold = bytes;
}

void SimPort::discardOutput()
{
    if (opened)
        model.discardFromPc();
}

QByteArray SimPort::read()
{
    const qsizetype count = inputLength == 0 ? received.size() : qMin<qsizetype>(inputLength, received.size());
    QByteArray bytes = received.left(count);
    received.remove(0, count);
    return bytes;
}

void SimPort::write(const QByteArray &bytes)
{
    if (opened && present)
        model.fromPc(ToBytes(bytes));
}

void SimPort::arrive(const Bytes &bytes)
{
    if (!opened || !present)
        return;
    received.append(ToByteArray(bytes));
    if (threshold > 0 && received.size() >= threshold && onReceive)
        onReceive();
}

void SimPort::hangUp()
{
    present = false;
    if (!opened)
        return;
    received.clear();
    model.discardFromPc();
    // As with a real adapter the port counts as open until the loss is reported, and both happen together.
    events.post([this, lost = openings, token = std::weak_ptr(alive)] {
        if (token.expired() || !opened || lost != openings)
            return;
        close();
        if (onHangUp)
            onHangUp();
    });
}

} // namespace hr::sim
