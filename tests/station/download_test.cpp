#include "station/download.h"

#include "link/message_layer.h"
#include "link/open_link.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "sim/demo_content.h"
#include "tests/support/virtual_world.h"

#include <utility>

namespace hr::tests
{

class Downloads : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        sim::FillDemoContent(flash());
        layout().station.settings.present = true;
        layout().station.locos = sim::DemoStationLocos();
        layout().station.requests.clear();
    }

    /// A record of the handheld can be read: the link is in its normal state again.
    void expectHandheldUsable()
    {
        EXPECT_TRUE(TheMessages().state().HandheldMode);
        EXPECT_FALSE(TheMessages().state().RawReplyWanted);
        layout().faults.set({});
        events.run(3);
        SpiImage image{};
        EXPECT_TRUE(ReadLoco(image, 3).value.name.startsWith(QStringLiteral("BR 01")));
    }

    QString noStation() { return TheBranding().noStationText; }
    const QString attention = QStringLiteral("Achtung!");
};

TEST_F(Downloads, ReadsTheWholeDatabase)
{
    const Download download = DownloadLocos();
    EXPECT_EQ(download.status, 0);
    ASSERT_EQ(download.locos.size(), layout().station.locos.size());
    for (size_t i = 0; i < download.locos.size(); ++i) {
        const sim::StationLoco &expected = layout().station.locos.at(i);
        const DownloadedLoco &loco = download.locos.at(i);
        EXPECT_EQ(loco.address, expected.address);
        EXPECT_EQ(loco.stationName, QString::fromLatin1(expected.name.left(16)));
        EXPECT_EQ(loco.locoSymbol, expected.symbol);
        EXPECT_EQ(loco.modes.at(2), expected.modes.at(0) >> 2 & 1);
        EXPECT_EQ(loco.modes.at(24), expected.modes.at(3) & 1);
        EXPECT_EQ(loco.multiUni, expected.modes.at(3) >> 7);
    }
    EXPECT_EQ(download.locos.back().name, QStringLiteral("STRASSENBAHN +14"));
    EXPECT_EQ(user.progress.first(3),
        (QStringList{TheBranding().downloadText, QStringLiteral("Datenbank lesen"), QStringLiteral("Datensatz: 1")}));
    // entry request as it must stand on the bus
    EXPECT_EQ(layout().station.requests.at(0),
        sim::WithChecksum({0xED, 0x1F, 0x08, 0x49, 0x4B, 0, 0, 127, 127, 127, 0, 0, 0, 0, 0, 0x30, 12, 8, 19, 30,
            0x70, 19, 19, 7, 2, 0, 0, 0, 0, 0}));
    EXPECT_EQ(layout().station.requests.at(5),
        sim::WithChecksum({0xED, 0x1F, 0x08, 0x49, 0x4B, 0, 29, 77, 0, 0, 0, 0, 0, 0, 0, 0x30, 0, 0, 0, 0, 0x10, 0, 0,
            0, 0, 0x50, 0, 0, 0, 0}));
    expectHandheldUsable();
}

TEST_F(Downloads, EntryFailuresSayThatThereIsNoStation)
{
    struct Row {
        std::function<void()> fault;
        int status;
    };
    auto &settings = layout().station.settings;
    const Row rows[] = {{[&] { settings.present = false; }, 111011}, {[&] { settings.ackCode = 5; }, 111011},
        {[&] { settings.answers = false; }, 111012},
        {[&] {
             sim::Faults faults;
             faults.lostEcho.nth = 1;
             layout().faults.set(faults);
         },
            110013}};
    for (const Row &row : rows) {
        settings = {};
        settings.present = true;
        row.fault();
        user.acceptAnyBox();
        user.boxes.clear();
        EXPECT_EQ(DownloadLocos().status, row.status);
        EXPECT_TRUE(user.boxes.contains(attention + QStringLiteral(": ") + noStation())) << row.status;
        if (row.status == 111012) {
            EXPECT_EQ(layout().station.requests.back().at(25), 0x10) << "it is in its download mode";
        }
        expectHandheldUsable();
    }
    settings = {};
    settings.present = settings.inDownloadMode = true; // code 1: already there
    EXPECT_EQ(DownloadLocos().status, 0);
}

TEST_F(Downloads, LaterFailuresLeaveTheModeAndKeepWhatWasRead)
{
    const int all = static_cast<int>(layout().station.locos.size());
    const int leaving = 5 + 2 * all + 2; // behind entry, preparation, range, database, pieces and the end mark
    const std::tuple<int, int, int> rows[] = {
        {3, 151012, 0}, {4, 161012, 0}, {5, 171012, 0}, {8, 211012, 1}, {leaving, 121012, all}};
    for (const auto &[silentFrom, status, count] : rows) {
        layout().station.requests.clear();
        layout().station.settings.silentFrom = silentFrom;
        user.expect(status == 121012 ? QStringLiteral(
                        "Alle Lokdaten sind gelesen. Die Zentrale hat nur das Ende der Übertragung nicht bestätigt;\r"
                        "falls sie nicht weiterarbeitet, schalten Sie sie bitte aus und wieder ein.")
                                     : QStringLiteral("Fehler beim Lesen der Datenbank: %1").arg(status),
            attention);
        const Download download = DownloadLocos();
        EXPECT_EQ(download.status, status);
        EXPECT_EQ(download.locos.size(), static_cast<size_t>(count));
        EXPECT_EQ(layout().station.requests.back().at(25), 0x10) << "the last request leaves the mode";
        expectHandheldUsable();
    }
}

TEST_F(Downloads, ForeignTrafficDoesNotPassForAnAnswer)
{
    const sim::Bytes foreign = sim::WithChecksum({0xE5, 0x1F, 0x08, 0x49, 0x4B, 0, 0, 127, 127, 127, 0, 0, 0, 0, 0,
        0x30, 12, 8, 19, 30, 0x70, 19, 19, 7, 2, 0, 0, 0, 0, 0});
    size_t seen = 0;
    events.every(10, [&] { // between the acknowledge and the answer of every request
        if (std::exchange(seen, layout().station.requests.size()) != layout().station.requests.size())
            layout().inject(foreign, 10'000);
    });
    sim::Faults faults;
    faults.lostAck.probability = 0.02; // a part is asked for again
    layout().faults.set(faults);
    EXPECT_EQ(DownloadLocos().locos.size(), layout().station.locos.size());
}

TEST_F(Downloads, HangUpAndTheEndOfTheProgramInTheRecordLoop)
{
    events.after(4'000'000, [this] { port.hangUp(); });
    user.acceptAnyBox();
    const Download lost = DownloadLocos();
    EXPECT_NE(lost.status, 0);
    EXPECT_EQ(user.boxes.size(), 1) << "the lost connection is told, nothing else";
    EXPECT_GT(lost.locos.size(), 0U);
    port.replug();
    layout().station.settings.inDownloadMode = false;
    connectDirectly();
    expectHandheldUsable();

    events.after(4'000'000, RequestEnd);
    static_cast<void>(DownloadLocos());
    EXPECT_EQ(layout().station.requests.back().at(25), 0x10) << "the station is not left in its download mode";
}

TEST_F(Downloads, FiveHundredRecordsAreTheMost)
{
    events.limitSeconds = 10'000;
    layout().bus.keepLog = false;
    layout().station.locos.assign(600, {77, "LOK", {}, 0});
    layout().station.locos.at(3).address = 10000;
    layout().station.locos.at(4).address = 0;
    const Download download = DownloadLocos();
    EXPECT_EQ(download.status, 0);
    EXPECT_EQ(download.locos.size(), 498U);
    EXPECT_EQ(download.unusable, 2);
}

TEST_F(Downloads, ALateAnswerNeverPassesForTheNextOne)
{
    for (int delayMs = 2050; delayMs <= 3000; delayMs += 190) {
        layout().station.requests.clear();
        bool late = false;
        const auto timer = events.every(10, [&] { // one answer in the record loop is late
            auto &settings = layout().station.settings;
            settings.answerDelayUs = layout().station.requests.size() == 7 && !late ? delayMs * 1000 : 60'000;
            late = late || layout().station.requests.size() > 7;
        });
        const Download download = DownloadLocos();
        events.stop(timer);
        ASSERT_EQ(download.locos.size(), 9U) << delayMs;
        for (size_t i = 0; i < 9; ++i)
            EXPECT_EQ(download.locos.at(i).locoSymbol, layout().station.locos.at(i).symbol) << delayMs;
    }
}

TEST_F(Downloads, TrafficOfOthersNeverKeepsUpTheWaitForLateAnswers)
{
    const sim::Bytes station = sim::WithChecksum(
        {0xE5, 0x1F, 0x01, 0x50, 0x43, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    sim::Bytes foreign = station;
    foreign.at(2) = 8;
    for (const sim::Bytes &message : {foreign, station}) {
        const auto timer = events.every(1000, [&] { layout().inject(message); });
        layout().station.requests.clear();
        layout().station.settings.silentFrom = 6;
        user.acceptAnyBox();
        const qint64 start = events.nowUs;
        static_cast<void>(DownloadLocos());
        events.stop(timer);
        EXPECT_LT(events.nowUs - start, 120'000'000);
        expectHandheldUsable();
    }
}

TEST_F(Downloads, AConfirmedStopEndsTheRepeatsAtOnce)
{
    user.acceptAnyBox();
    layout().station.settings.silentFrom = 8; // a record that never comes: five repeats of 3.5 s each
    events.after(6'000'000, ConfirmStop);
    const qint64 start = events.nowUs;
    const Download download = DownloadLocos();
    EXPECT_LT(events.nowUs - start, 9'000'000);
    EXPECT_EQ(download.locos.size(), 1U);
    EXPECT_EQ(layout().station.requests.back().at(25), 0x10) << "the mode is left";
    expectHandheldUsable();
}

TEST_F(Downloads, AFailedSecondEntryRequestLeavesTheModeAgain)
{
    strike(&sim::Faults::lostEcho, 2);
    user.acceptAnyBox();
    const int status = DownloadLocos().status;
    EXPECT_TRUE(status > BaseEntry && status < BaseLeaving) << status;
    ASSERT_FALSE(layout().station.requests.empty());
    EXPECT_EQ(layout().station.requests.back().at(25), 0x10);
    expectHandheldUsable();
}

/// An answer that comes before the request is on the bus answers an older one, at every request.
TEST_F(Downloads, AnAnswerBeforeTheRequestIsNotBelieved)
{
    const Download right = DownloadLocos();
    const auto requests = static_cast<int>(layout().station.requests.size());
    for (int nth = 1; nth <= requests; ++nth) {
        strike(&sim::Faults::foreignPeerBefore, nth);
        const Download download = DownloadLocos();
        EXPECT_EQ(download.status, 0) << nth;
        ASSERT_EQ(download.locos.size(), right.locos.size()) << nth;
        for (size_t i = 0; i < right.locos.size(); ++i) {
            EXPECT_EQ(download.locos.at(i).address, right.locos.at(i).address) << nth;
            EXPECT_EQ(download.locos.at(i).modes, right.locos.at(i).modes) << nth;
        }
    }
}

} // namespace hr::tests
