// The class of the machine's serial ports, on a real port: a pseudo-terminal with the simulated bus behind it, made here,
// or under Windows the one that HR_TEST_PORT names (the simulation runs outside) and the system calls HR_TEST_PORT_TEXT.

#include "platform/qt/machine_port.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/tcp_port.h"
#include "platform/switched_port.h"
#ifdef Q_OS_UNIX
#include "sim/pty/pty_bus.h"

#include <QTemporaryDir>
#endif

#include <gtest/gtest.h>

namespace hr::tests
{

namespace
{
constexpr qint64 PatienceUs = 2'000'000;
const QByteArray Message = QByteArray::fromHex("817e"); // the interface gives back what it has sent
} // namespace

class MachinePorts : public ::testing::Test
{
protected:
    void SetUp() override
    {
#ifdef Q_OS_UNIX
        ASSERT_TRUE(bus.plug());
        name = folder.filePath(QStringLiteral("port"));
#else
        name = qEnvironmentVariable("HR_TEST_PORT");
        if (name.isEmpty())
            GTEST_SKIP() << "HR_TEST_PORT names no port";
#endif
        port.setPortName(name);
        port.setSettings(QStringLiteral("57600,n,8,1"));
    }

    /// Runs the event loop until it is done; false when that takes too long.
    bool soon(const std::function<bool()> &done)
    {
        const qint64 end = events.monotonicUs() + PatienceUs;
        const auto waking = events.every(50, [] {});
        while (!done() && events.monotonicUs() < end)
            events.pump();
        events.stop(waking);
        return done();
    }

    bool arrive(qsizetype count)
    {
        return soon([this, count] { return port.bytesWaiting() >= count; });
    }

    QtEvents events;
#ifdef Q_OS_UNIX
    QTemporaryDir folder;
    sim::PtyBus bus{events, folder.filePath(QStringLiteral("port"))};
#endif
    QString name;
    MachinePort port{events};
};

TEST_F(MachinePorts, CarryBytesWithEachLineSetting)
{
    for (const char *settings : {"57600,n,8,1", "19200,n,8,1", "115200,n,8,2"}) {
        port.setSettings(QLatin1String(settings));
        ASSERT_TRUE(port.open()) << settings;
        EXPECT_TRUE(port.isOpen() && port.cts() && port.read().isEmpty()) << "a pseudo-terminal has no CTS";
        int received = 0;
        port.onReceive = [&received] { ++received; };
        port.setReceiveThreshold(static_cast<int>(Message.size()));
        port.write(Message);
        ASSERT_TRUE(arrive(Message.size())) << settings;
        EXPECT_TRUE(soon([this] { return port.outputEmpty(); }));
        EXPECT_EQ(received, 1);
        port.setInputLength(1);
        EXPECT_EQ(port.read(), Message.left(1));
        port.setInputLength(0);
        EXPECT_EQ(port.read(), Message.mid(1));
        port.setReceiveThreshold(0);
        port.write(Message + Message);
        ASSERT_TRUE(arrive(2 * Message.size()));
        EXPECT_EQ(received, 1) << "no event is wanted";
        port.close();
        EXPECT_TRUE(!port.isOpen() && port.bytesWaiting() == 0 && port.read().isEmpty());
    }
}

TEST_F(MachinePorts, OpenOnlyWhatIsThere)
{
    MachinePort other(events);
    for (const char *nothing : {"", "0", "77", "no such port"}) {
        other.setPortName(QLatin1String(nothing));
        other.setSettings(QStringLiteral("57600,n,8,1"));
        EXPECT_FALSE(other.open() || other.isOpen()) << nothing;
    }
    ASSERT_TRUE(port.open());
#ifdef Q_OS_WIN
    const QList<PortEntry> ports = port.availablePorts();
    ASSERT_FALSE(ports.isEmpty());
    EXPECT_EQ(ports.first().name.toStdString(), name.toStdString()) << "what was plugged in stands first";
    EXPECT_EQ(ports.first().description.toStdString(), qEnvironmentVariable("HR_TEST_PORT_TEXT").toStdString());
    EXPECT_TRUE(ports.first().pluggedIn);
#endif
    port.setHandshake(SerialPort::Handshake::RtsCts); // lines that are not there
    port.setDtr(false);
    port.setRts(false);
    port.setBreak(true);
    port.setBreak(false);
    EXPECT_TRUE(port.isOpen());
}

#ifdef Q_OS_UNIX
TEST_F(MachinePorts, TellOnceThatTheyWerePulled)
{
    ASSERT_TRUE(port.open());
    int lost = 0;
    port.onHangUp = [&lost] { ++lost; };
    bus.unplug();
    EXPECT_TRUE(soon([&lost] { return lost > 0; }));
    soon([&lost] { return lost > 1; });
    EXPECT_EQ(lost, 1);
    EXPECT_FALSE(port.isOpen());
    port.write(Message);
    EXPECT_FALSE(port.open());
    ASSERT_TRUE(bus.plug());
    ASSERT_TRUE(port.open());
    port.write(Message);
    EXPECT_TRUE(arrive(Message.size()));
}
#endif

#ifdef Q_OS_UNIX
TEST_F(MachinePorts, TheNetworkIsAPortTooAndItsLossIsToldOnce)
{
    ASSERT_TRUE(bus.serve(0, {}));
    const QString text = QStringLiteral("localhost:%1").arg(bus.networkPort());
    TcpPort tcp(events);
    MachinePort demo(events);
    SwitchedPort any(port, tcp, demo);
    int lost = 0;
    any.onHangUp = [&lost] { ++lost; };
    const auto opened = [&](const QString &wanted) {
        any.setPortName(wanted);
        const bool begun = any.open();
        EXPECT_TRUE(soon([&] { return !any.connecting(); }));
        return begun && any.isOpen();
    };
    for (int round = 1; round <= 2; ++round) {
        ASSERT_TRUE(opened(text)) << any.faultText().toStdString();
        any.write(Message);
        ASSERT_TRUE(soon([&] { return any.bytesWaiting() >= Message.size(); }));
        EXPECT_EQ(any.read(), Message);
        bus.unplug();
        EXPECT_TRUE(soon([&] { return !any.isOpen(); }));
        EXPECT_EQ(lost, round);
    }
    ASSERT_TRUE(opened(u"raw:" + text)); // the same server, as it speaks
    ASSERT_TRUE(soon([&] { return any.bytesWaiting() >= 8; }));
    EXPECT_TRUE(any.read().startsWith("VERSION "));
    ASSERT_TRUE(opened(text)) << "and back";
    any.write(Message);
    EXPECT_TRUE(soon([&] { return any.bytesWaiting() == Message.size(); }));
    any.close();
    EXPECT_FALSE(opened(QStringLiteral("localhost:1"))) << "nobody serves there";
    EXPECT_TRUE(any.faultText().startsWith(u"localhost:1: ")) << any.faultText().toStdString();
    EXPECT_FALSE(opened(QStringLiteral("localhost:99999")));
    EXPECT_EQ(lost, 2);
}
#endif

} // namespace hr::tests
