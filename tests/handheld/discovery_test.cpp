#include "handheld/discovery.h"

#include "link/cadence.h"
#include "link/message_layer.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

class Discovery : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        TheLink().HandreglerGefunden = false;
    }

    void layText(int number, const QByteArray &codes)
    {
        flash().setBytes(0x120000 + number * 32, QByteArray(1, static_cast<char>(codes.size())) + codes);
    }
};

TEST_F(Discovery, FindsIdentifiesAndSendsBackOnce)
{
    const HandheldInfo info = FindHandheld().value;
    EXPECT_TRUE(TheLink().HandreglerGefunden);
    EXPECT_EQ(info.version, QStringLiteral("1.2"));
    EXPECT_EQ(info.date, QStringLiteral("14.3.8"));
    EXPECT_EQ(info.type, QStringLiteral("51201"));
    EXPECT_EQ(info.kind, QStringLiteral("Funk-HR"));
    EXPECT_EQ(layout().bus.log.at(0).bytes,
        sim::WithChecksum({0xED, 0x1F, 0x08, 0x66, 0x33, 0x70, 0, 0, 0, 0, 0x30, 0, 0, 0, 0, 0x10, 0, 0, 0, 0, 0x50,
            0, 0, 0, 0, 0x60, 0, 0, 0, 0}));
    const int before = handheld().state.normalModes;
    EXPECT_TRUE(SendHandheldBack().ok());
    EXPECT_TRUE(SendHandheldBack().ok());
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
        EXPECT_EQ(FindHandheld().value.kind, QString::fromUtf8(row.kind)) << row.type.toStdString();
    }
}

TEST_F(Discovery, NoHandheldIsReportedAndMayComeLater)
{
    handheld().settings.present = false;
    user.expect(QStringLiteral("Handregler antwortet nicht!\rAnschluss überprüfen!"), QStringLiteral("Achtung"));
    EXPECT_EQ(FindHandheld().outcome.how(), End::NoAnswer);
    EXPECT_FALSE(TheLink().HandreglerGefunden);
    handheld().settings.present = true;
    EXPECT_TRUE(FindHandheld().ok());
}

TEST_F(Discovery, AHandheldThatDoesNotIdentifyItselfIsStillUsable)
{
    events.after(200'000, [this] { handheld().settings.present = false; });
    user.expect(QStringLiteral("Timeout"), QStringLiteral("read_spibuf"));
    const Result<HandheldInfo> found = FindHandheld();
    EXPECT_TRUE(found.ok());
    EXPECT_TRUE(TheLink().HandreglerGefunden);
    EXPECT_TRUE(found.value.version.isEmpty());
}

TEST_F(Discovery, ADamagedIdentificationIsNobodys)
{
    user.acceptAnyBox();
    for (const Cadence cadence : {Cadence::Ticks, Cadence::Events}) {
        ResetCore();
        TheLink().use({{QStringLiteral("3"), true}, InterfaceDirect});
        ChooseCadence(cadence);
        for (const int damaged : {1, 9}) {
            sim::Faults faults;
            faults.damagedAnswer = {1, 0, 0, damaged};
            layout().faults.set(faults);
            const Result<HandheldInfo> found = FindHandheld();
            EXPECT_TRUE(found.ok()) << "reading is allowed";
            EXPECT_EQ(found.value.type, damaged == 1 ? QStringLiteral("51201") : QString());
            EXPECT_EQ(found.value.version.isEmpty(), damaged > 1);
        }
    }
}

/// The program ends at any moment of a search or of a sending back: a handheld that was called is sent back once, one
/// that was not called never.
TEST_F(Discovery, TheEndSendsACalledHandheldBackExactlyOnce)
{
    const auto finish = [this] { // as main() does
        SetRunState(RunState::Leaving);
        static_cast<void>(SendHandheldBack());
        events.run(3);
    };
    for (int delayMs = 0; delayMs < 400; delayMs += 17) {
        ResetCore();
        TheLink().use({{QStringLiteral("3"), true}, InterfaceDirect});
        handheld().state.normalModes = 0;
        handheld().settings.answerDelayUs = delayMs > 200 ? 3'000'000 : 2'000; // also without any acknowledge
        events.after(delayMs * 1000, RequestEnd);
        static_cast<void>(FindHandheld());
        handheld().settings.answerDelayUs = 2'000;
        finish();
        EXPECT_TRUE(handheld().state.normalModes == 0 || handheld().state.normalModes == 2)
            << delayMs << ": " << handheld().state.normalModes;

        for (Outcome (*sendBack)() : {SendHandheldBack, SendHandheldBackNoWait}) {
            ResetCore();
            handheld().state.normalModes = 0;
            TheLink().HandreglerGefunden = true;
            if (delayMs % 2 == 0) { // an occupied slot
                ASSERT_TRUE(TheMessages().lay({0xBF, 1, 2}, 2).ok());
            }
            events.after(delayMs * 1000, RequestEnd);
            static_cast<void>(sendBack());
            finish();
            EXPECT_EQ(handheld().state.normalModes, 1) << delayMs;
        }
    }
}

} // namespace hr::tests
