#include "handheld/discovery.h"

#include "handheld/transfer.h"
#include "link/branding.h"
#include "link/open_port.h"
#include "link/settings_file.h"
#include "platform/run_control.h"
#include "tests/support/virtual_world.h"

class Discovery : public VirtualWorld
{
protected:
    void SetUp() override
    {
        driveLink();
        PortNumber = {QStringLiteral("3"), true};
        InterfaceType = InterfaceDirect;
    }

    void layText(int number, const QByteArray &codes)
    {
        flash().setBytes(0x120000 + number * 32, QByteArray(1, static_cast<char>(codes.size())) + codes);
    }

    QString titleWith(const QString &version)
    {
        return TheBranding().windowTitle + QStringLiteral(" : Vers: ") + version;
    }
};

TEST_F(Discovery, FindsIdentifiesAndSendsBackOnce)
{
    ConnectHandheld();
    EXPECT_TRUE(HandreglerGefunden);
    EXPECT_EQ(user.title, titleWith(QStringLiteral("1.2 vom 14.3.8 Type: 51201")));
    EXPECT_EQ(HandheldKind, QStringLiteral("Funk-HR"));
    EXPECT_EQ(layout().bus.log.at(0).bytes,
        sim::WithChecksum({0xED, 0x1F, 0x08, 0x66, 0x33, 0x70, 0, 0, 0, 0, 0x30, 0, 0, 0, 0, 0x10, 0, 0, 0, 0, 0x50,
            0, 0, 0, 0, 0x60, 0, 0, 0, 0}));
    const int before = handheld().state.normalModes;
    CloseHandheld();
    CloseHandheld();
    EXPECT_EQ(handheld().state.normalModes, before + 1);
}

TEST_F(Discovery, KindComesFromTypeOrTexts)
{
    const QByteArray frei("\x0F\x1B\x0E\x12", 4);
    const QByteArray belegt("\x0B\x0E\x15\x0E\x10\x1D", 6);
    const QByteArray rot("\x1B\x18\x1D", 3);
    const QByteArray gruen("\x10\x1B\x26\x17", 4);
    struct Row {
        QByteArray type;
        QByteArray text51;
        QByteArray text52;
        const char *kind;
    };
    const Row rows[] = {{"51201", {}, {}, "Funk-HR"}, {"51202", {}, {}, "Digital-Set"},
        {"51200", frei, belegt, "Funk-HR"}, {"51200", rot, gruen, "Digital-Set"},
        {"51200", frei + rot, belegt + gruen, "Digital-Set"}, {"51200", frei, gruen, ""},
        {"51200", QByteArray(22, 1), belegt, ""}, {"99999", {}, {}, ""},
        {QByteArray("\x05\x01\x02\x00\x01", 5), {}, {}, "Funk-HR"}};
    for (const Row &row : rows) {
        handheld().settings.type = row.type;
        layText(51, row.text51);
        layText(52, row.text52);
        ConnectHandheld();
        EXPECT_EQ(HandheldKind, QString::fromUtf8(row.kind)) << row.type.toStdString();
    }
}

TEST_F(Discovery, NoHandheldIsReportedAndMayComeLater)
{
    handheld().settings.present = false;
    user.expect(QStringLiteral("Handregler antwortet nicht!\rAnschluss überprüfen!"), QStringLiteral("Achtung"));
    EXPECT_FALSE(HandheldConnected());
    EXPECT_EQ(user.title, titleWith(QStringLiteral("unbekannt")));
    handheld().settings.present = true;
    EXPECT_TRUE(HandheldConnected());
}

TEST_F(Discovery, AHandheldThatDoesNotIdentifyItselfIsStillUsable)
{
    events.after(200'000, [this] { handheld().settings.present = false; });
    user.expect(QStringLiteral("Timeout"), QStringLiteral("read_spibuf"));
    ConnectHandheld();
    EXPECT_TRUE(HandreglerGefunden);
    EXPECT_EQ(user.title, titleWith(QStringLiteral("unbekannt")));
}

TEST_F(Discovery, KindsThatOpenNoPort)
{
    InterfaceType = Interface48230;
    user.expect(QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"));
    ConnectHandheld();
    InterfaceType = InterfaceNone;
    ConnectHandheld(); // without a box
    EXPECT_FALSE(HandreglerGefunden);
}

TEST_F(Discovery, TheGuardKeepsTheBuffer)
{
    for (size_t i = 0; i < SpiBuf.size(); ++i)
        SpiBuf.at(i) = static_cast<int>(i % 251);
    const auto before = SpiBuf;
    EXPECT_TRUE(HandheldConnected());
    EXPECT_EQ(SpiBuf, before);
    EXPECT_EQ(handheld().state.identifications, 1);
}
