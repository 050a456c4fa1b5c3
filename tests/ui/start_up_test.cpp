#include "ui/common/start_up.h"

#include "link/open_link.h"
#include "platform/files.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "tests/support/window_world.h"
#include "ui/common/connection.h"

namespace hr::tests
{

class StartUp : public DesktopWorld
{
protected:
    void SetUp() override { driveLink(); }

    QString inf() const { return folder.path() + QStringLiteral("/konf/ComPort.inf"); }

    void choose(const QString &portText, int kind)
    {
        const LinkSettings chosen{{portText, false}, kind};
        TheLink().use(chosen);
        WriteSettings(chosen);
        SelectionAnswer = 1;
    }

    void expectWarning()
    {
        const QString text = QStringLiteral("   \r") + TheBranding().warningLine
            + QStringLiteral("\rwenn die Daten ausgelesen oder geändert werden sollen.\r \r"
                             "Bitte verbinden Sie jetzt einen Handregler mit LocoNet!\r   ");
        user.expect(text, QStringLiteral("Achtung!"));
    }

    const QString notOpened = QStringLiteral("ComPort konnte nicht geöffnet werden!");
    const QString fault = QStringLiteral("Fehler");
};

TEST_F(StartUp, SearchesAgainAfterEachConfirmedSelection)
{
    ASSERT_TRUE(ReplaceFile(inf(), "2\r\n2\r\n"));
    expectWarning();
    user.expect(notOpened, fault);
    expectWarning();
    user.onSelection = [this] {
        EXPECT_FALSE(user.mainEnabled);
        EXPECT_EQ(user.title, TheBranding().windowTitle + QStringLiteral(" : Vers: unbekannt"));
        choose(QStringLiteral("Demo"), InterfaceDirect);
    };
    Main();
    EXPECT_TRUE(TheLink().HandreglerGefunden);
    EXPECT_EQ(user.selections, 1);
    EXPECT_TRUE(user.mainEnabled);
    EXPECT_TRUE(user.lokDataVisible);
    EXPECT_EQ(user.title, TheBranding().windowTitle + QStringLiteral(" : Vers: 1.2 vom 14.3.8 Type: 51201"));
    EXPECT_EQ(user.progress, (QStringList{QStringLiteral("Suche Handregler!"), QStringLiteral("Suche Handregler!")}));
}

TEST_F(StartUp, TheUserGoesOnWithoutAHandheldAndTheNextCommandLooksAgain)
{
    expectWarning();
    user.onSelection = [] { SelectionAnswer = SelectionWithout; };
    Main();
    EXPECT_EQ(CurrentRunState(), RunState::Running);
    EXPECT_TRUE(user.mainEnabled);
    TheLink().use({{QStringLiteral("3"), false}, InterfaceDirect});
    port.refuseOpens(1);
    user.expect(notOpened, fault);
    EXPECT_FALSE(HandheldConnected());
    EXPECT_EQ(user.selections, 2);
    EXPECT_EQ(CurrentRunState(), RunState::Running);
    EXPECT_TRUE(HandheldConnected());
}

TEST_F(StartUp, TheTitleIsOneLineWhateverTheHandheldIs)
{
    ShowHandheld({QStringLiteral("1.2"), QStringLiteral("1.1.1"), QStringLiteral("5\x01\r\n\x7F") + QChar(0x85), {}});
    EXPECT_EQ(TitleWithHandheld(), TheBranding().windowTitle + QStringLiteral(" : Vers: 1.2 vom 1.1.1 Type: 5"));
}

TEST_F(StartUp, CancelEndsTheProgramAndWritesNothing)
{
    expectWarning();
    user.onSelection = [] { SelectionAnswer = -1; };
    Main();
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
    EXPECT_FALSE(ReadWholeFile(inf()).value_or(QByteArray()).contains('3'));
}

TEST_F(StartUp, AFailedOpenAsksUntilItWorksOrTheUserGivesUp)
{
    TheLink().use({{QStringLiteral("9"), false}, InterfaceDirect});
    port.refuseOpens(2);
    for (int i = 0; i < 2; ++i)
        user.expect(notOpened, fault);
    user.onSelection = [this] { choose(QStringLiteral("4"), InterfaceDirect); };
    EXPECT_TRUE(OpenPort().ok());
    EXPECT_EQ(user.selections, 2);
    EXPECT_EQ(ReadWholeFile(inf()), QByteArray("\"4\"\r\n3\r\n"));
    EXPECT_TRUE(OpenPort().ok()); // the same call closes
    EXPECT_FALSE(port.isOpen());

    port.refuseOpens(1);
    user.expect(notOpened, fault);
    user.onSelection = [] { SelectionAnswer = -1; };
    EXPECT_EQ(OpenPort().how(), End::ProgramEnds);
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
}

TEST_F(StartUp, KindsThatOpenNoPortAreToldAndTheTitleIsUnknown)
{
    TheLink().InterfaceType = Interface48230;
    user.expect(notOpened, fault);
    EXPECT_FALSE(HandheldConnected());
    EXPECT_EQ(user.title, TheBranding().windowTitle + QStringLiteral(" : Vers: unbekannt"));
    TheLink().InterfaceType = InterfaceNone;
    EXPECT_FALSE(HandheldConnected()); // without a box
}

} // namespace hr::tests
