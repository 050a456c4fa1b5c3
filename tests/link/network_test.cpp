// LocoNet over TCP: what a port text means, the lines, and a handheld behind a server that is written here anew.
#include "handheld/bus_trace.h"
#include "handheld/discovery.h"
#include "handheld/message_words.h"
#include "jobs/backup.h"
#include "link/cadence.h"
#include "link/exchange.h"
#include "link/message_layer.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "platform/lines_port.h"
#include "platform/port_name.h"
#include "platform/stream_port.h"
#include "platform/world.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

namespace
{

TEST(NetworkPorts, AreToldFromDevicesByTheirText)
{
    struct Row {
        const char *text;
        const char *meaning; // host, number and whether plain; "-" = a device
    };
    for (const Row &row : {Row{"localhost:1234", "localhost 1234"}, Row{" 192.168.0.7:5550 ", "192.168.0.7 5550"},
             Row{"anlage.fritz.box:", "anlage.fritz.box 1234"}, Row{"[::1]:1234", "::1 1234"},
             Row{"[fe80::1]:", "fe80::1 1234"}, Row{"raw:box:4001", "box 4001 plain"},
             Row{"RAW:[::1]:4001", "::1 4001 plain"}, Row{"raw:1234", "raw 1234"}, Row{"raw:", "raw 1234"},
             Row{"a:0", "a 0"}, Row{"a:65535", "a 65535"}, Row{"a:65536", "a 0"}, Row{"a:99999999999", "a 0"},
             Row{"a:x", " 0"}, Row{"::1", " 0"}, Row{":1234", " 0"}, Row{"a b:1", " 0"}, Row{"COM3", "-"},
             Row{"com3:", "-"}, Row{"com:", "-"}, Row{"ttyUSB0", "-"}, Row{"3", "-"}, Row{"Demo", "-"}, Row{"", "-"},
             Row{"/dev/serial/by-path/pci-0000:00:14.0-usb-0:1:1.0-port0", "-"}, Row{"\\\\.\\COM12", "-"}}) {
        const auto port = NetworkPortOf(QString::fromUtf8(row.text));
        const QString meaning = port ? port->host + QStringLiteral(" %1").arg(port->port)
                + (port->plainBytes ? QStringLiteral(" plain") : QString())
                                     : QStringLiteral("-");
        EXPECT_EQ(meaning, QString::fromUtf8(row.meaning)) << row.text;
    }
    EXPECT_EQ(PortPath(QStringLiteral(" box:1234 ")), QStringLiteral("box:1234"));
}

TEST(LocoNetLines, AreUnderstoodInWhateverPiecesTheyCome)
{
    const QByteArray text =
        "VERSION x\r\n\n\rRECEIVE 83 7C\rreceive  a0 2f 00 70 \nRECEIVE 83 7G\nRECEIVE 83\nRECEIVE 2F 83 7C\n"
        "RECEIVE E5 04 81 00\nUNSINN 83 7C\nRECEIVE\nERROR LINE\nRECEIVE 85 7A\nERROR CHECKSUM\nRECEIVE 85 00\n"
        "TIMESTAMP 7\nBREAK 1\nRECEIVE 82 7D\nSENT OK\nSENT ERROR nichts\nRECEIVE "
        + QByteArray(5000, 'A') + "\nRECEIVE 81 7E\nRECEIVE 83 +7\nRECEIVE 83 07C\nRECEIVE 8";
    const QByteArray messages = QByteArray::fromHex("837CA02F00708500827D817E");
    for (const qsizetype piece : {qsizetype(1), qsizetype(3), qsizetype(100), text.size()}) {
        LocoNetLines lines;
        QByteArray got;
        for (qsizetype at = 0; at < text.size(); at += piece)
            got += lines.messagesIn(text.mid(at, piece));
        EXPECT_EQ(got.toHex(), messages.toHex()) << piece;
        EXPECT_EQ(lines.messagesIn("2 7D\r"), QByteArray::fromHex("827D"));
    }
    LocoNetLines lines;
    EXPECT_EQ(lines.linesFor(QByteArray::fromHex("A02F")), QByteArray());
    EXPECT_EQ(lines.linesFor(QByteArray::fromHex("007055837C")), QByteArray("SEND A0 2F 00 70\r\nSEND 83 7C\r\n"));
}

TEST(LocoNetLines, SentOkIsTheEchoOnlyWhereTheServerReturnsNone)
{
    const QByteArray own = QByteArray::fromHex("837C");
    LocoNetLines lines;
    const auto send = [&] { lines.linesFor(own); };
    send();
    EXPECT_EQ(lines.messagesIn("SENT OK\n"), own) << "nothing is known of this server";
    send();
    EXPECT_EQ(lines.messagesIn("SENT OK\n"), own);
    EXPECT_EQ(lines.messagesIn("RECEIVE 83 7C\n"), QByteArray()) << "the echo has been taken already";
    EXPECT_EQ(lines.messagesIn("RECEIVE 83 7C\n"), own) << "another one's";
    send();
    EXPECT_EQ(lines.messagesIn("SENT OK\n"), QByteArray()) << "this one returns them";
    EXPECT_EQ(lines.messagesIn("RECEIVE 83 7C\n"), own);
    send();
    EXPECT_EQ(lines.messagesIn("RECEIVE 83 7C\nSENT OK\n"), own) << "in the other order";
    send();
    EXPECT_EQ(lines.messagesIn("SENT OK\n"), QByteArray());
    send(); // the last one never came back
    EXPECT_EQ(lines.messagesIn("SENT OK\n"), own);
    QString refused;
    lines.onRefused = [&refused](const QString &comment) { refused = comment; };
    send();
    EXPECT_EQ(lines.messagesIn("SENT ERROR Bus kurzgeschlossen\r\n"), QByteArray());
    EXPECT_EQ(refused, QStringLiteral("Bus kurzgeschlossen"));
}

TEST(MessageWords, SayWhatAMessageIs)
{
    const auto words = [](const QByteArray &hex) {
        QByteArray bytes = QByteArray::fromHex(hex);
        char sum = '\xFF';
        for (const char byte : bytes)
            sum = static_cast<char>(sum ^ byte);
        bytes += sum;
        return MessageWords({reinterpret_cast<const quint8 *>(bytes.constData()), static_cast<size_t>(bytes.size())});
    };
    struct Row {
        QByteArray hex;
        const char *words;
    };
    const QByteArray head = "ED1F086633";
    for (const Row &row :
        {Row{"83", "Fahrstrom ein"}, Row{"A00300", "Halt für Platz 3"}, Row{"A00301", "Nothalt für Platz 3"},
            Row{"A00340", "Fahrstufe 63 für Platz 3"}, Row{"A10335", "rückwärts, an: f0 f1 f3 für Platz 3"},
            Row{"A20308", "an: f8 für Platz 3"}, Row{"B00030", "schaltet Magnetartikel 1 grün"},
            Row{"B07F0F", "schaltet Magnetartikel 2048 rot aus"}, Row{"B20030", "Rückmelder 2 besetzt"},
            Row{"B27F0F", "Rückmelder 4095 frei"}, Row{"B46D7F", "Quittung: erledigt"},
            Row{"B46D05", "Quittung: Code 5"}, Row{"B43F00", "Antwort auf 0xBF: 0"},
            Row{"BF0803", "fragt nach dem Platz der Lok 1027"}, Row{"FE04", "unbekannte Meldung"},
            Row{"E504", "Daten zwischen Geräten"}, Row{"ED03", "Gleisbefehl oder Anfrage"},
            Row{"E703", "Daten eines Platzes"}, Row{"ED1F084944" + QByteArray(50, '0'), "Gleisbefehl oder Anfrage"},
            Row{"ED1F08494B" + QByteArray(50, '0'), "Anfrage an die Zentrale"},
            Row{head + "09680000401000000000000000000000000000000000000048", "liest Flash 0x0000C0, 64 Bytes"},
            Row{head + "00000000002000000000100000000020000000004000000000", "Puffer ab 84 lesen"},
            Row{head + "00530018001000000000000000000000000000000000000004", "Seite 12 laden"},
            Row{head + "01030018001000000000000000000000000000000000000004", "Seite 12 programmieren"},
            Row{head + "01040018000000000000000000000000000000000000000004", "Puffer ab 0 schreiben"},
            Row{head + "01040018001000000000000000000000000000000000000044",
                "Puffer ab 0 schreiben, 68 Bytes ausführen"}})
        EXPECT_EQ(words(row.hex), QString::fromUtf8(row.words)) << row.hex.toStdString();
    for (int opcode = 0x80; opcode <= 0xFF; ++opcode) { // whatever length the bus makes of it
        for (int length = 2; length <= 40; ++length) {
            QByteArray message(length - 1, 'a');
            message[0] = static_cast<char>(opcode);
            EXPECT_FALSE(words(message.toHex()).isEmpty());
        }
    }
}

TEST(BusTraces, ComeBackFromTheirFileAndDamagedOnesAreRefusedWithTheirLine)
{
    const std::vector<TraceRow> rows{{12'345, true, QByteArray::fromHex("837C")},
        {5'000'001, false, QByteArray::fromHex("837D")}, {3'600'000'000, false, QByteArray::fromHex("E50401FF")}};
    QByteArray text = "# LocoNet-Mitschnitt\r\n\r\n";
    for (const TraceRow &row : rows)
        text += TraceLine(row).toUtf8() + "\r\n";
    EXPECT_EQ(ParseTrace(text).rows, rows);
    EXPECT_EQ(TraceLine(rows.at(1)), QStringLiteral("5.000001 < 83 7D ; FALSCHE PRÜFSUMME, Fahrstrom ein"));
    for (const char *line :
        {"12 < 83 7C", "0.012345 83 7C", "0.012345 < 83", "0.012345 < 83 7", "0.01234 > 83 7C", "quatsch"}) {
        const TraceFile file = ParseTrace(QByteArray("0.012345 < 83 7C\n") + line + "\n");
        EXPECT_TRUE(file.rows.empty() && file.fault.startsWith(u"Zeile 2: ")) << line;
    }
    EXPECT_TRUE(ParseTrace(QByteArray(1'000'000, 'A')).fault.startsWith(u"Zeile 1: "));
}

/// The text end of a server with the simulated layout behind it.
class TextServer : public StreamPort
{
public:
    enum class Echo { BeforeSent, AfterSent, Never };
    TextServer(Events &clock, SerialPort &busPort) : events(clock), bus(busPort)
    {
        bus.onReceive = [this] { fromBus(bus.read()); };
        bus.onHangUp = [this] { onHangUp(); };
    }
    Echo echo = Echo::BeforeSent;
    bool bytewise = false;
    bool stamps = false;
    int refuseNext = 0;
    bool sendsRefused = false; // it says that they were not sent, and they were

    void setPortName(const QString &) override { }
    bool open() override
    {
        bus.setSettings(QStringLiteral("115200,n,8,1"));
        bus.setReceiveThreshold(1);
        return bus.open();
    }
    [[nodiscard]] PortFault fault() const override { return bus.fault(); }
    void close() override { bus.close(); }
    [[nodiscard]] bool isOpen() const override { return bus.isOpen(); }
    [[nodiscard]] int bytesWaiting() const override { return static_cast<int>(text.size()); }
    QByteArray read() override { return std::exchange(text, {}); }
    void write(const QByteArray &lines) override
    {
        for (const QByteArray &line : lines.split('\n')) {
            if (!line.startsWith("SEND "))
                continue;
            own = QByteArray::fromHex(line.mid(5).trimmed());
            if (refuseNext > 0) {
                --refuseNext;
                if (sendsRefused)
                    bus.write(own);
                events.post([this] { say("SENT ERROR Bus gestört"); });
            } else {
                bus.write(own);
            }
        }
    }

private:
    void say(const QByteArray &line)
    {
        const QByteArray whole = (stamps ? "TIMESTAMP 5\r\n" + line : line) + "\r\n";
        for (qsizetype at = 0; at < whole.size(); at += bytewise ? 1 : whole.size()) {
            text += bytewise ? whole.mid(at, 1) : whole;
            onReceive();
        }
    }
    void fromBus(const QByteArray &bytes)
    {
        for (const char byte : bytes) {
            const auto message = assembler.add(static_cast<quint8>(byte));
            if (!message)
                continue;
            const QByteArray whole = sim::ToByteArray(*message);
            const bool isOwn = whole == own;
            if (isOwn && echo != Echo::BeforeSent)
                say("SENT OK");
            if (!isOwn || echo != Echo::Never)
                say("RECEIVE " + whole.toHex(' '));
            if (isOwn && echo == Echo::BeforeSent)
                say("SENT OK");
            if (isOwn)
                own.clear();
        }
    }

    Events &events;
    SerialPort &bus;
    sim::MessageAssembler assembler;
    QByteArray text;
    QByteArray own;
};

class Network : public VirtualWorld
{
protected:
    Network()
    {
        InstallWorld({&events, &lines});
        flash().setBytes(LocoRecordAddress(3), QByteArray(LocoRecordSize, '\x21'));
    }
    void TearDown() override
    {
        driver.reset();
        InstallWorld({&events, &port});
        VirtualWorld::TearDown();
    }
    void begin()
    {
        driveLink();
        TheLink().use({{QStringLiteral("anlage:1234"), false}, Interface48230}); // it counts as the direct one
        EXPECT_TRUE(SetUpLink().ok());
    }
    QByteArray backup()
    {
        BackupSelection all;
        all.numbered.at(LokDatenList) = {true, false, QStringLiteral("1-12")};
        all.numbered.at(LokSymbolList) = {true, false, QStringLiteral("0-3")};
        all.fsDaten = true;
        const QString file = folder.filePath(QStringLiteral("n.dds"));
        const BackupOutcome saved = Backup(file, all);
        EXPECT_EQ(saved.end, JobEnd::Complete);
        EXPECT_TRUE(saved.doubtful.empty());
        return ReadWholeFile(file).value_or(QByteArray());
    }

    TextServer server{events, port};
    LinesPort lines{server};
};

TEST_F(Network, AHandheldBehindAServerIsReadAndWrittenAsOverTheCable)
{
    QByteArray first;
    for (const auto echo : {TextServer::Echo::BeforeSent, TextServer::Echo::AfterSent, TextServer::Echo::Never}) {
        for (const auto cadence : {Cadence::Ticks, Cadence::Events}) {
            server.echo = echo;
            server.bytewise = cadence == Cadence::Events;
            server.stamps = echo == TextServer::Echo::AfterSent;
            ChooseCadence(cadence);
            begin();
            ASSERT_TRUE(FindHandheld().ok());
            const double start = NowSeconds();
            const QByteArray bytes = backup();
            if (first.isEmpty())
                first = bytes;
            EXPECT_FALSE(bytes.isEmpty());
            EXPECT_EQ(bytes, first);
            SpiImage image{};
            const Picture picture = EmptyPicture(SymbolKind::Loco);
            EXPECT_EQ(
                WritePicture(image, SymbolKind::Loco, 60, 0, picture, Patience::Job).page, PageState::Programmed);
            EXPECT_LT(NowSeconds() - start, cadence == Cadence::Events ? 6.0 : 40.0);
            ClosePort();
        }
    }
}

TEST_F(Network, AFullBusIsKeptBoundedAndInTheFileWhole)
{
    begin();
    BusTrace trace;
    const QString file = folder.filePath(QStringLiteral("bus.lntrace"));
    ASSERT_TRUE(trace.keepIn(file));
    constexpr int count = 120'000;
    const QByteArray message = QByteArray::fromHex("837C");
    for (int i = 0; i < count; ++i) {
        layout().inject(sim::ToBytes(message));
        if (i % 20 == 19)
            WaitSeconds(0.05);
    }
    WaitSeconds(1);
    EXPECT_EQ(trace.end(), count);
    EXPECT_EQ(trace.end() - trace.first(), static_cast<qint64>(BusTrace::MostRows));
    EXPECT_EQ(trace.row(trace.first()).bytes, message);
    const TraceFile kept = ParseTrace(ReadWholeFile(file).value_or(QByteArray()));
    EXPECT_EQ(kept.rows.size(), static_cast<size_t>(count));
    EXPECT_TRUE(trace.fileSound());
}

TEST_F(Network, ARefusedMessageEndsAtOnceAndSaysWhy)
{
    begin();
    ASSERT_TRUE(FindHandheld().ok());
    server.refuseNext = 1;
    user.expect(QStringLiteral("Message kann nicht gesendet werden!\rBus gestört"), QStringLiteral("LocoNet Fehler"));
    const double start = NowSeconds();
    EXPECT_EQ(ExchangeForAck(Request::toHandheld()).how(), End::NotSent);
    EXPECT_LT(NowSeconds() - start, 0.2);
    SpiImage image{};
    EXPECT_TRUE(ReadPicture(image, SymbolKind::Loco, 1, 0).ok()) << "the next one goes";
}

TEST_F(Network, TheAnswerToARefusedMessageThatWasSentAllTheSameIsNeverTheNextOnes)
{
    ChooseCadence(Cadence::Events);
    begin();
    ASSERT_TRUE(FindHandheld().ok());
    user.acceptAnyBox();
    for (int n = 1; n <= 3; ++n) {
        QByteArray content("\x17\x0F", 2);
        flash().setBytes(LokSymbolAddress + n * 512, content + QByteArray(96, static_cast<char>(n)));
    }
    server.sendsRefused = true;
    for (int n = 1; n <= 3; ++n) {
        SpiImage image{};
        server.refuseNext = n == 1 ? 0 : 2; // the flash read and its first slice, or what comes in their place
        static_cast<void>(read_flash_to_spibuf(LokSymbolAddress + n * 512, 100));
        static_cast<void>(read_spibuf(image, 20));
        server.refuseNext = 0;
        const auto read = ReadPicture(image, SymbolKind::Loco, n, 0);
        ASSERT_TRUE(read.ok());
        EXPECT_EQ(read.value.bytes.at(50), n);
        EXPECT_FALSE(TheMessages().secondHandheld());
    }
}

TEST_F(Network, AServerThatDiesAtAnyMessageIsALostPort)
{
    for (int at = 1; at < 40; at += 3) {
        begin();
        ASSERT_TRUE(FindHandheld().ok());
        user.acceptAnyBox();
        layout().faults.set({});
        strike(&sim::Faults::hangUp, at);
        SpiImage image{};
        const auto read = ReadPicture(image, SymbolKind::Loco, 1, 0, Patience::Job);
        const bool cutOff = read.outcome.how() == End::PortLost;
        EXPECT_TRUE(cutOff || read.ok()) << at;
        EXPECT_EQ(TheLink().LinkLost, cutOff) << at;
        port.replug();
        ClosePort();
    }
}

} // namespace

} // namespace hr::tests
