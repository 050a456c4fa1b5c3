#include "link/open_link.h"

#include "link/message_layer.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

#include <QFile>

namespace hr::tests
{

class OpenLinks : public VirtualWorld
{
protected:
    void SetUp() override { driveLink(); }

    QByteArray infContent() const
    {
        QFile file(folder.path() + QStringLiteral("/konf/ComPort.inf"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
};

TEST_F(OpenLinks, DirectInterfaceIsSetUpInOrder)
{
    TheLink().use({{QStringLiteral("3"), false}, InterfaceDirect});
    EXPECT_TRUE(OpenLink().ok());
    EXPECT_TRUE(port.isOpen());
    EXPECT_EQ(port.calls().constFirst(), QStringLiteral("name 3"));
    EXPECT_TRUE(port.calls().contains(QStringLiteral("settings 115200,n,8,1")));
    EXPECT_EQ(port.calls().constLast(), QStringLiteral("open"));
    EXPECT_EQ(infContent(), QByteArray("\"3\"\r\n3\r\n"));
}

TEST_F(OpenLinks, KindTwoOnlyRecordsTheChoice)
{
    TheLink().use({{QStringLiteral("5"), false}, Interface48230});
    EXPECT_TRUE(OpenLink().ok());
    EXPECT_TRUE(port.calls().isEmpty());
    EXPECT_EQ(infContent(), QByteArray("\"5\"\r\n2\r\n"));
}

TEST_F(OpenLinks, AFailedOpenIsToldAndWritesNothing)
{
    TheLink().use({{QStringLiteral("9"), false}, InterfaceDirect});
    port.refuseOpens(1);
    user.expect(QStringLiteral("ComPort konnte nicht geöffnet werden!"), QStringLiteral("Fehler"));
    EXPECT_EQ(OpenLink().how(), End::NotOpened);
    EXPECT_EQ(infContent(), QByteArray("(none)"));
}

class Orvanto1 : public OpenLinks
{
protected:
    Orvanto1()
    {
        layout().adapter.setKind(sim::InterfaceKind::TextPrompt);
        TheLink().use({{QStringLiteral("1"), true}, InterfaceOrvanto1});
    }

    void expectFailure()
    {
        user.expect(QStringLiteral("Zeichenübertragung nicht möglich!"), QStringLiteral("Orvanto 1:"));
        EXPECT_EQ(SetupOrvanto1Interface().how(), End::NoAnswer);
        EXPECT_FALSE(port.isOpen());
    }
};

TEST_F(Orvanto1, PromptsLeadToPassThroughAndNotIntoTheRing)
{
    EXPECT_TRUE(SetupOrvanto1Interface().ok());
    EXPECT_TRUE(layout().adapter.passesMessages());
    EXPECT_TRUE(port.isOpen());
    EXPECT_FALSE(TheMessages().hasReceived());
    events.run(1);
    layout().injectToPc({0xBF, 0, 5, 0});
    events.run(0.3);
    EXPECT_EQ(TheMessages().state().LocoAdrReply, 5);
}

TEST_F(Orvanto1, SilentInterfaceFailsAfterFiveSecondsAtEachStep)
{
    layout().adapter.setKind(sim::InterfaceKind::Direct); // never answers texts
    const double start = NowSeconds();
    expectFailure();
    EXPECT_NEAR(NowSeconds() - start, 1 + 0.3 + 5, 0.3);
}

TEST_F(Orvanto1, CtsOffForFiveSecondsFailsButLessDoesNot)
{
    layout().holdCts(1'400'000 + 4'500'000);
    EXPECT_TRUE(SetupOrvanto1Interface().ok());
    port.close();
    layout().adapter.setKind(sim::InterfaceKind::TextPrompt);
    layout().holdCts(30'000'000);
    expectFailure();
}

TEST_F(Orvanto1, HangUpInTheSetUpIsToldOnce)
{
    events.after(1'500'000, [this] { port.hangUp(); });
    user.acceptAnyBox();
    EXPECT_FALSE(SetupOrvanto1Interface().ok());
    EXPECT_EQ(user.boxes.size(), 1);
}

TEST_F(Orvanto1, AWaitForThePromptStartsOneTimer)
{
    layout().adapter.setKind(sim::InterfaceKind::Direct);
    for (int ms = 2'000; ms < 6'000; ms += 5)
        events.after(ms * 1000, [] {}); // every event wakes the wait up
    const int before = events.timersStarted;
    expectFailure();
    EXPECT_LE(events.timersStarted - before, 3);
}

} // namespace hr::tests
