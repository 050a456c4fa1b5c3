#include "link/open_port.h"

#include "link/branding.h"
#include "link/message_layer.h"
#include "link/settings_file.h"
#include "link/start_up.h"
#include "platform/files.h"
#include "platform/run_control.h"
#include "tests/support/virtual_world.h"

#include <QFile>

class OpenPorts : public VirtualWorld
{
protected:
    void SetUp() override { driveLink(); }

    QString inf() const { return folder.path() + QStringLiteral("/konf/ComPort.inf"); }

    QByteArray infContent() const
    {
        QFile file(inf());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    void choose(const QString &portText, int kind)
    {
        PortNumber = {portText, false};
        InterfaceType = kind;
        SelectionAnswer = 1;
    }
};

TEST_F(OpenPorts, SettingsFileKeepsWhatItHeld)
{
    struct Row {
        const char *file;
        const char *portText;
        int kind;
        const char *written;
    };
    const Row rows[] = {
        {"3\r\n3\r\n", "3", 3, "3\r\n3\r\n"},
        {"\"3\"\r\n1\r\n", "3", 1, "\"3\"\r\n1\r\n"},
        {"\" ttyUSB0 \"\n2\n", " ttyUSB0 ", 2, "\" ttyUSB0 \"\r\n2\r\n"},
        {"ttyS1\r\n\"3\"", "ttyS1", 3, "\"ttyS1\"\r\n3\r\n"},
        {"\"a,b\",3", "a,b", 3, "\"a,b\"\r\n3\r\n"},
        {"", "", 0, "\r\n\r\n"},
        {"7", "7", 0, "7\r\n\r\n"},
        {"\r\n9\r\n", "", 0, "\r\n\r\n"},
    };
    for (const Row &row : rows) {
        ASSERT_TRUE(ReplaceFile(inf(), row.file));
        ReadSettings();
        EXPECT_EQ(PortNumber.text, QString::fromUtf8(row.portText)) << row.file;
        EXPECT_EQ(InterfaceType, row.kind) << row.file;
        WriteSettings();
        EXPECT_EQ(infContent(), QByteArray(row.written)) << row.file;
    }
}

TEST_F(OpenPorts, MissingFolderIsReportedOnceARun)
{
    SetProgramFolder(folder.path() + QStringLiteral("/nowhere"));
    ReadSettings();
    user.acceptAnyBox();
    EXPECT_EQ(InterfaceType, InterfaceNone);
    choose(QStringLiteral("Demo"), InterfaceDirect);
    WriteSettings();
    WriteSettings();
    EXPECT_EQ(user.boxes.size(), 1);
    ReadSettings(); // as the next round of the start does
    EXPECT_EQ(InterfaceType, InterfaceDirect);
    EXPECT_EQ(PortNumber.text, QStringLiteral("Demo"));
}

TEST_F(OpenPorts, DirectInterfaceIsSetUpInOrder)
{
    choose(QStringLiteral("3"), InterfaceDirect);
    int status = 1;
    OpenPort(status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(port.isOpen());
    EXPECT_EQ(port.calls().constFirst(), QStringLiteral("name 3"));
    EXPECT_TRUE(port.calls().contains(QStringLiteral("settings 115200,n,8,1")));
    EXPECT_EQ(port.calls().constLast(), QStringLiteral("open"));
    EXPECT_EQ(infContent(), QByteArray("\"3\"\r\n3\r\n"));
    OpenPort(status); // the same call closes
    EXPECT_FALSE(port.isOpen());
}

TEST_F(OpenPorts, KindTwoOnlyRecordsTheChoice)
{
    choose(QStringLiteral("5"), Interface48230);
    int status = 1;
    OpenPort(status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(port.calls().isEmpty());
    EXPECT_EQ(infContent(), QByteArray("\"5\"\r\n2\r\n"));
}

TEST_F(OpenPorts, FailedOpenAsksUntilItWorksOrTheUserGivesUp)
{
    choose(QStringLiteral("9"), InterfaceDirect);
    port.refuseOpens(2);
    for (int i = 0; i < 2; ++i)
        user.expect(QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"));
    user.onSelection = [this] { choose(QStringLiteral("4"), InterfaceDirect); };
    int status = 1;
    OpenPort(status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(user.selections, 2);
    EXPECT_EQ(infContent(), QByteArray("\"4\"\r\n3\r\n"));

    ClosePort();
    port.refuseOpens(1);
    user.expect(QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"));
    user.onSelection = [] { SelectionAnswer = -1; };
    OpenPort(status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
}

class Orvanto1 : public OpenPorts
{
protected:
    Orvanto1()
    {
        layout().adapter.setKind(sim::InterfaceKind::TextPrompt);
        PortNumber = {QStringLiteral("1"), true};
        InterfaceType = InterfaceOrvanto1;
    }

    void expectFailure()
    {
        user.expect(QStringLiteral("Zeichenübertragung nicht möglich!"), QStringLiteral("Orvanto 1:"));
        int status = 0;
        SetupOrvanto1Interface(status);
        EXPECT_EQ(status, 1);
        EXPECT_FALSE(port.isOpen());
        EXPECT_FALSE(PortInTextMode);
    }
};

TEST_F(Orvanto1, PromptsLeadToPassThroughAndNotIntoTheRing)
{
    int status = 1;
    SetupOrvanto1Interface(status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(layout().adapter.passesMessages());
    EXPECT_TRUE(port.isOpen());
    EXPECT_TRUE(RxEmpty);
    events.run(1);
    layout().injectToPc({0xBF, 0, 5, 0});
    events.run(0.3);
    EXPECT_EQ(LocoAdrReply, 5);
}

TEST_F(Orvanto1, SilentInterfaceFailsAfterFiveSecondsAtEachStep)
{
    layout().adapter.setKind(sim::InterfaceKind::Direct); // never answers texts
    const double start = events.timeOfDay();
    expectFailure();
    EXPECT_NEAR(events.timeOfDay() - start, 1 + 0.3 + 5, 0.3);
}

TEST_F(Orvanto1, CtsOffForFiveSecondsFailsButLessDoesNot)
{
    layout().holdCts(1'400'000 + 4'500'000);
    int status = 1;
    SetupOrvanto1Interface(status);
    EXPECT_EQ(status, 0);
    port.close();
    layout().adapter.setKind(sim::InterfaceKind::TextPrompt);
    layout().holdCts(30'000'000);
    expectFailure();
}

TEST_F(Orvanto1, HangUpInTheSetUpIsToldOnce)
{
    events.after(1'500'000, [this] { port.hangUp(); });
    user.acceptAnyBox();
    int status = 0;
    SetupOrvanto1Interface(status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(user.boxes.size(), 1);
}

class StartUp : public OpenPorts
{
protected:
    void expectWarning()
    {
        const QString text = QStringLiteral("   \r") + TheBranding().warningLine
            + QStringLiteral("\rwenn die Daten ausgelesen oder geändert werden sollen.\r \r"
                             "Bitte verbinden Sie jetzt einen Handregler mit LocoNet!\r   ");
        user.expect(text, QStringLiteral("Achtung!"));
    }
};

TEST_F(StartUp, SearchesAgainAfterEachConfirmedSelection)
{
    ASSERT_TRUE(ReplaceFile(inf(), "2\r\n2\r\n"));
    int searches = 0;
    expectWarning();
    expectWarning();
    user.onSelection = [this] {
        choose(QStringLiteral("Demo"), InterfaceDirect);
        WriteSettings();
    };
    Main({nullptr, [&] {
              EXPECT_FALSE(user.mainEnabled);
              HandreglerGefunden = ++searches == 2;
          }});
    EXPECT_EQ(searches, 2);
    EXPECT_EQ(user.selections, 1);
    EXPECT_TRUE(user.mainEnabled);
    EXPECT_TRUE(user.lokDataVisible);
    EXPECT_EQ(user.progress, (QStringList{QStringLiteral("Suche Handregler!"), QStringLiteral("Suche Handregler!")}));
}

TEST_F(StartUp, CancelEndsTheProgramAndWritesNothing)
{
    expectWarning();
    user.onSelection = [] { SelectionAnswer = -1; };
    Main({nullptr, [] {}});
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
    EXPECT_EQ(infContent(), QByteArray("(none)"));
}
