#include "station/download.h"

#include "handheld/flash_map.h"
#include "handheld/loco_record.h"
#include "link/branding.h"
#include "link/message_layer.h"
#include "link/open_port.h"
#include "platform/run_control.h"
#include "tests/support/window_world.h"
#include "ui/grid.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

class Download : public WindowWorld
{
protected:
    void SetUp() override
    {
        WindowWorld::SetUp();
        layout().station.settings.present = true;
        layout().station.locos = sim::DemoStationLocos();
        layout().station.requests.clear();
    }

    /// A record of the handheld can be read: the link is in its normal state again.
    void expectHandheldUsable()
    {
        EXPECT_TRUE(HandheldMode);
        EXPECT_FALSE(RawReplyWanted);
        layout().faults.set({});
        events.run(3);
        EXPECT_EQ(ReadLocoRecord(3), 0);
        EXPECT_TRUE(LokName.startsWith(QStringLiteral("BR 01")));
    }

    QWidget *importWindow()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == u"LokImportWin" && widget->isVisible())
                return widget;
        }
        return nullptr;
    }

    void press(const char *name) { importWindow()->findChild<QPushButton *>(QLatin1String(name))->click(); }

    QString noStation() { return TheBranding().noStationText; }
    const QString attention = QStringLiteral("Achtung!");
};

TEST_F(Download, ReadsTheWholeDatabase)
{
    EXPECT_EQ(DownloadLocos(), 0);
    ASSERT_EQ(DownloadedLocos.size(), layout().station.locos.size());
    for (size_t i = 0; i < DownloadedLocos.size(); ++i) {
        const sim::StationLoco &expected = layout().station.locos.at(i);
        const DownloadedLoco &loco = DownloadedLocos.at(i);
        EXPECT_EQ(loco.address, expected.address);
        EXPECT_EQ(loco.stationName, QString::fromLatin1(expected.name.left(16)));
        EXPECT_EQ(loco.locoSymbol, expected.symbol);
        EXPECT_EQ(loco.modes.at(2), expected.modes.at(0) >> 2 & 1);
        EXPECT_EQ(loco.modes.at(24), expected.modes.at(3) & 1);
        EXPECT_EQ(loco.multiUni, expected.modes.at(3) >> 7);
    }
    EXPECT_EQ(DownloadedLocos.back().name, QStringLiteral("STRASSENBAHN +14"));
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

TEST_F(Download, EntryFailuresSayThatThereIsNoStation)
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
        EXPECT_EQ(DownloadLocos(), row.status);
        EXPECT_TRUE(user.boxes.contains(attention + QStringLiteral(": ") + noStation())) << row.status;
        expectHandheldUsable();
    }
    settings = {};
    settings.present = settings.inDownloadMode = true; // code 1: already there
    EXPECT_EQ(DownloadLocos(), 0);
}

TEST_F(Download, LaterFailuresLeaveTheModeAndKeepWhatWasRead)
{
    const std::pair<int, int> rows[] = {{3, 151012}, {4, 161012}, {5, 171012}, {8, 211012}};
    for (const auto &[silentFrom, status] : rows) {
        layout().station.requests.clear();
        layout().station.settings.silentFrom = silentFrom;
        user.expect(QStringLiteral("Fehler beim Lesen der Datenbank: %1").arg(status), attention);
        EXPECT_EQ(DownloadLocos(), status);
        EXPECT_EQ(DownloadedLocos.size(), status == 211012 ? 1U : 0U);
        EXPECT_EQ(layout().station.requests.back().at(25), 0x10) << "the last request leaves the mode";
        expectHandheldUsable();
    }
}

TEST_F(Download, ForeignTrafficDoesNotPassForAnAnswer)
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
    EXPECT_EQ(DownloadLocos(), 0);
    EXPECT_EQ(DownloadedLocos.size(), layout().station.locos.size());
}

TEST_F(Download, HangUpAndTheEndOfTheProgramInTheRecordLoop)
{
    events.after(4'000'000, [this] { port.hangUp(); });
    user.acceptAnyBox();
    EXPECT_NE(DownloadLocos(), 0);
    EXPECT_EQ(user.boxes.size(), 1) << "the lost connection is told, nothing else";
    EXPECT_GT(DownloadedLocos.size(), 0U);
    port.replug();
    restart();
    expectHandheldUsable();

    events.after(4'000'000, RequestEnd);
    DownloadLocos();
    EXPECT_EQ(layout().station.requests.back().at(25), 0x10) << "the station is not left in its download mode";
}

TEST_F(Download, FiveHundredRecordsAreTheMost)
{
    events.limitSeconds = 10'000;
    layout().bus.keepLog = false;
    layout().station.locos.assign(600, {77, "LOK", {}, 0});
    layout().station.locos.at(3).address = 10000;
    layout().station.locos.at(4).address = 0;
    EXPECT_EQ(DownloadLocos(), 0);
    EXPECT_EQ(DownloadedLocos.size(), 498U);
    EXPECT_EQ(UnusableLocos, 2);
}

TEST_F(Download, TheWindowCorrectsSendsAndSaves)
{
    trigger("LokDataMenu");
    QWidget *window = importWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle(), TheBranding().importTitle);
    auto *grid = window->findChild<Grid *>(QStringLiteral("LokImportTab"));
    ASSERT_EQ(grid->rowCount(), 9);
    EXPECT_EQ(grid->text(1, 1), QStringLiteral("64 419  GRÜN"));
    EXPECT_EQ(grid->item(1, 1)->toolTip(), QStringLiteral("64 419 (grün)"));
    grid->item(1, 1)->setText(QStringLiteral("straße 0123456789012345678901"));
    EXPECT_EQ(grid->text(1, 1), QStringLiteral("STRASSE 0123456789012"));
    Q_EMIT grid->cellDoubleActed(1, 3); // f0
    EXPECT_FALSE(grid->item(1, 3)->data(Grid::PictureRole).isNull());

    window->findChild<QLineEdit *>(QStringLiteral("FilterTxt"))->setText(QStringLiteral("24"));
    const QString file = folder.path() + QStringLiteral("/loks.dds");
    user.expect(QStringLiteral("*.dds"), TheBranding().saveDialogTitle, file);
    press("SichernBut");
    EXPECT_EQ(QFile(file).size(), 76);
    window->findChild<QLineEdit *>(QStringLiteral("FilterTxt"))->clear();
    grid->selectRow(0);
    grid->selectionModel()->select(
        grid->model()->index(1, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);

    flash().setBytes(24 * 64, QByteArray(64, '\xFF'));
    const QByteArray before = flashBytes(3 * 64, 64);
    const QString question =
        QStringLiteral("Von 2 Loks sind 1 im Handregler schon gespeichert und werden überschrieben\r"
                       "(ihre Funktionssymbole bleiben). Sollen die Loks gesendet werden?");
    const QString title = QStringLiteral("Lokdaten senden");
    user.expect(question, title, QStringLiteral("Nein"));
    press("SendenBut");
    EXPECT_EQ(flashBytes(3 * 64, 64), before);
    LokName = QStringLiteral("-leer-");
    user.expect(question, title, QStringLiteral("Ja"));
    user.expect(QStringLiteral("2 Loks in den Handregler geschrieben."), title);
    press("SendenBut");
    EXPECT_EQ(LokName, QStringLiteral("-leer-")) << "the editor's record is put back";
    EXPECT_EQ(flashBytes(3 * 64 + 33, 24), before.mid(33, 24)) << "the station knows no function symbols";
    EXPECT_EQ(ReadLocoRecord(24), 0);
    EXPECT_EQ(LokName, QStringLiteral("STRASSE 0123456789012"));
    EXPECT_EQ(FktModus.at(0), 1);
    EXPECT_EQ(LokSymbol, 8);
}

TEST_F(Download, ALateAnswerNeverPassesForTheNextOne)
{
    for (int delayMs = 2050; delayMs <= 3000; delayMs += 190) {
        layout().station.requests.clear();
        bool late = false;
        const auto timer = events.every(10, [&] { // one answer in the record loop is late
            auto &settings = layout().station.settings;
            settings.answerDelayUs = layout().station.requests.size() == 7 && !late ? delayMs * 1000 : 60'000;
            late = late || layout().station.requests.size() > 7;
        });
        EXPECT_EQ(DownloadLocos(), 0);
        events.stop(timer);
        ASSERT_EQ(DownloadedLocos.size(), 9U) << delayMs;
        for (size_t i = 0; i < 9; ++i)
            EXPECT_EQ(DownloadedLocos.at(i).locoSymbol, layout().station.locos.at(i).symbol) << delayMs;
    }
}

TEST_F(Download, TrafficOfOthersNeverKeepsUpTheWaitForLateAnswers)
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
        DownloadLocos();
        events.stop(timer);
        EXPECT_LT(events.nowUs - start, 120'000'000);
        expectHandheldUsable();
    }
}

TEST_F(Download, ASecondSmallerDownloadReplacesTheFirst)
{
    trigger("LokDataMenu");
    importWindow()->findChild<QLineEdit *>(QStringLiteral("FilterTxt"))->setText(QStringLiteral("4"));
    layout().station.locos.resize(2);
    trigger("LokDataMenu");
    EXPECT_EQ(importWindow()->findChild<Grid *>(QStringLiteral("LokImportTab"))->rowCount(), 2);
}
