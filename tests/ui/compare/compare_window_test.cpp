// The comparison of backups and the careful writing, through the window.

#include "handheld/backup/dds_file.h"
#include "jobs/selection.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "platform/text.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "tests/support/window_world.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

namespace hr::tests
{

class CompareTest : public WindowWorld
{
protected:
    /// In the handheld: 3, 8 and 9 (on the page of 8), no 1201. In the file: 3 the same, 8 with another name, 1201.
    void SetUp() override
    {
        WindowWorld::SetUp();
        ShowHandheld({QStringLiteral("1.2"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
        for (const int n : {3, 8, 9})
            flash().setBytes(LocoRecordAddress(n), bytesOf(loco(n)));
        flash().setBytes(LocoRecordAddress(1201), QByteArray(LocoRecordSize, '\xFF'));
        before = flash().state.memory;
        file = folder.filePath(QStringLiteral("Loks.dds"));
        write(file, {{3, loco(3)}, {8, named(8, u"ANDERS")}, {1201, named(1201, u"NEU")}});
        user.ignoreTexts = true;
    }

    static LocoRecord loco(int n) { return named(n, QStringLiteral("LOK %1").arg(n)); }

    static LocoRecord named(int n, QStringView name)
    {
        LocoRecord record{FitLocoName(name.toString()), {}, {}, 0, 5};
        record.symbols.at(1) = n % 256;
        return record;
    }

    static QByteArray bytesOf(const LocoRecord &record)
    {
        LocoBytes beneath{};
        beneath.fill(EmptyByte);
        QByteArray bytes;
        for (const int byte : EncodeLoco(record, beneath))
            bytes.append(static_cast<char>(byte));
        return bytes;
    }

    static void write(const QString &name, const std::map<int, LocoRecord> &locos)
    {
        QByteArray bytes;
        for (const auto &[n, record] : locos)
            bytes += PackRecord({RecordKind::Loco, n}, record);
        ASSERT_TRUE(ReplaceFile(name, bytes));
    }

    static QWidget *compareWin() { return WindowNamed(u"VergleichWin"); }
    template <typename Control> static Control *in(const char *name)
    {
        return compareWin()->findChild<Control *>(QLatin1String(name));
    }
    static void press(const char *name) { in<QPushButton>(name)->click(); }
    static QAbstractItemModel *rows() { return in<QTableView>("VergleichTab")->model(); }

    static QStringList shown()
    {
        QStringList list;
        for (int row = 0; row < rows()->rowCount(); ++row)
            list += rows()->index(row, 0).data().toString() + QStringLiteral(": ")
                + rows()->index(row, 1).data().toString();
        return list;
    }

    void answer(const QString &text) { user.expect({}, {}, text); }
    void answerBox() { answer({}); }

    void openOnHandheld()
    {
        answer(file);
        trigger("vergleichen_menu");
        press("HandreglerBut");
    }

    void reconnect()
    {
        handheld().restorePower();
        port.replug();
        port.close();
        connectDirectly();
    }

    QString nameIn(int n)
    {
        LocoBytes values{};
        const QByteArray bytes = flashBytes(LocoRecordAddress(n), LocoRecordSize);
        for (size_t i = 0; i < values.size(); ++i)
            values.at(i) = static_cast<quint8>(bytes.at(static_cast<qsizetype>(i)));
        return DecodeLoco(values).name.trimmed();
    }

    QStringList namesIn() { return {nameIn(3), nameIn(8), nameIn(9), nameIn(1201)}; }

    QString file;
    std::vector<quint8> before;
    const QStringList written{
        QStringLiteral("LOK 3"), QStringLiteral("ANDERS"), QStringLiteral("LOK 9"), QStringLiteral("NEU")};
};

TEST_F(CompareTest, WhatIsTickedAndShownIsWrittenAndTakenBack)
{
    openOnHandheld();
    EXPECT_FALSE(in<QLabel>("DateiLbl")->text().contains(u'?')) << "it has been asked and answered";
    EXPECT_EQ(shown(), QStringList({QStringLiteral("Lok 8: geändert"), QStringLiteral("Lok 1201: neu")}));
    in<QCheckBox>("UnterschiedeChk")->click();
    EXPECT_EQ(rows()->rowCount(), 3);
    in<QLineEdit>("FilterTxt")->setText(QStringLiteral("neu"));
    EXPECT_EQ(shown(), QStringList(QStringLiteral("Lok 1201: neu"))) << "hidden rows are not written";
    for (const QString &choice : {QStringLiteral("Nein"), QStringLiteral("Ja")}) {
        answer(choice);
        if (choice == u"Ja")
            answerBox();
        press("SchreibenBut");
    }
    EXPECT_FALSE(user.defaultYes);
    EXPECT_EQ(namesIn(),
        QStringList(
            {QStringLiteral("LOK 3"), QStringLiteral("LOK 8"), QStringLiteral("LOK 9"), QStringLiteral("NEU")}));
    in<QLineEdit>("FilterTxt")->clear();
    EXPECT_EQ(shown().constLast(), QStringLiteral("Lok 1201: unverändert"));
    rows()->setData(rows()->index(1, 0), Qt::Unchecked, Qt::CheckStateRole);
    const int programs = executed(0x83);
    EXPECT_FALSE(in<QPushButton>("SchreibenBut")->isEnabled()) << "nothing differs any more";
    press("AlleBut");
    answer(QStringLiteral("Ja"));
    answerBox();
    press("SchreibenBut");
    EXPECT_EQ(namesIn(), written);
    EXPECT_EQ(executed(0x83), programs + 1) << "only the page that changes";
    // Back in two steps, and no further.
    for (int step = 0; step < 2; ++step) {
        answer(QStringLiteral("Ja"));
        answerBox();
        trigger("zuruecknehmen_menu");
    }
    EXPECT_EQ(namesIn(),
        QStringList({QStringLiteral("LOK 3"), QStringLiteral("LOK 8"), QStringLiteral("LOK 9"), nameIn(1201)}));
    EXPECT_EQ(flashBytes(LocoRecordAddress(1201), 1), QByteArray(1, '\xFF'));
    answerBox();
    trigger("zuruecknehmen_menu");
    EXPECT_TRUE(user.boxes.constLast().endsWith(u"Es gibt nichts zurückzunehmen."));
}

TEST_F(CompareTest, ABrokenWriteGoesOnFromTheWindow)
{
    struct Row {
        const char *what;
        std::function<void()> strikes;
    };
    const Row table[] = {{"stop", [] { ConfirmStop(); }}, {"pulled plug", [this] { port.hangUp(); }},
        {"power cut", [this] { handheld().cutPower(events.nowUs); }}};
    for (const auto &[what, strikes] : table) {
        SCOPED_TRACE(what);
        flash().state.memory = before;
        openOnHandheld();
        user.onBox = [this, count = strikes] {
            if (user.boxes.constLast().contains(u"Soll geschrieben werden?"))
                afterNextProgram(count);
        };
        answer(QStringLiteral("Ja"));
        answerBox();
        press("SchreibenBut");
        user.onBox = nullptr;
        EXPECT_TRUE(QFile::exists(file + QStringLiteral(".fortschritt")));
        reconnect();
        answer(QStringLiteral("Ja")); // to go on
        answer(QStringLiteral("Ja")); // to write
        answerBox();
        press("SchreibenBut");
        EXPECT_EQ(namesIn(), written);
        EXPECT_FALSE(QFile::exists(file + QStringLiteral(".fortschritt")));
    }
}

TEST_F(CompareTest, WhatHappensBetweenClickAndTransferChangesNothing)
{
    openOnHandheld();
    user.onBox = [] {
        press("SchreibenBut"); // again
        press("KeineBut");
        in<QLineEdit>("FilterTxt")->setText(QStringLiteral("gibt es nicht"));
        compareWin()->close();
    };
    answer(QStringLiteral("Ja"));
    answerBox();
    press("SchreibenBut");
    EXPECT_EQ(namesIn(), written);
    EXPECT_GT(user.raised, 0);
}

TEST_F(CompareTest, OnlyWhatIsTickedAndOnlyIntoTheHandheldThatWasLookedAt)
{
    openOnHandheld();
    rows()->setData(rows()->index(1, 0), Qt::Unchecked, Qt::CheckStateRole);
    answer(QStringLiteral("Ja"));
    answerBox();
    press("SchreibenBut");
    EXPECT_EQ(nameIn(8), QStringLiteral("ANDERS"));
    EXPECT_EQ(flashBytes(LocoRecordAddress(1201), 1), QByteArray(1, '\xFF'));
    // While the question is open another handheld comes, of another type or of the same one.
    for (const auto &[type, other] : {std::pair("51202", true), {"51201", true}, {"51202", false}}) {
        flash().state.memory = before;
        openOnHandheld();
        bool came = false;
        user.onBox = [&, newType = type, otherContent = other] {
            if (std::exchange(came, true))
                return;
            TheLink().HandreglerGefunden = false;
            handheld().settings.type = newType;
            if (otherContent)
                flash().setBytes(LocoRecordAddress(8), bytesOf(named(8, u"FREMD")));
        };
        answer(QStringLiteral("Ja"));
        answerBox();
        const int programs = executed(0x83);
        press("SchreibenBut");
        user.onBox = nullptr;
        EXPECT_TRUE(user.boxes.constLast().contains(u"Jetzt ist ein anderer Handregler verbunden.")) << type;
        EXPECT_EQ(executed(0x83), programs);
        handheld().settings.type = "51201";
        ShowHandheld({QStringLiteral("1.2"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
    }
    // What was not read for sure is not offered.
    user.acceptAnyBox();
    layout().faults.faults.damagedAnswer.probability = 1;
    openOnHandheld();
    ASSERT_GT(rows()->rowCount(), 0);
    for (int row = 0; row < rows()->rowCount(); ++row)
        EXPECT_FALSE(rows()->index(row, 0).flags() & Qt::ItemIsUserCheckable) << row;
}

TEST_F(CompareTest, TwoFilesSideBySide)
{
    const QString other = folder.filePath(QStringLiteral("Zweite.dds"));
    const QString sheet = folder.filePath(QStringLiteral("Liste.csv"));
    write(other, {{8, loco(8)}, {9, loco(9)}, {1201, named(1201, u"NEU")}});
    answer(file);
    trigger("vergleichen_menu");
    answer(other);
    press("ZweiteDateiBut");
    EXPECT_EQ(shown(),
        QStringList({QStringLiteral("Lok 3: fehlt in der zweiten Datei"), QStringLiteral("Lok 8: geändert"),
            QStringLiteral("Lok 9: neu")}));
    answer(other);
    trigger("vergleichen_menu");
    EXPECT_EQ(rows()->rowCount(), 0) << "the window stands on the file opened last";
    answer(file);
    press("ZweiteDateiBut");
    answer(sheet);
    answerBox();
    press("CsvBut");
    const QString text = QString::fromUtf8(ReadWholeFile(sheet).value_or(QByteArray()));
    EXPECT_TRUE(text.contains(u"\r\nLok 8;geändert;LOK 8;ANDERS;")) << text.toStdString();
    // What the second file has different goes into the handheld; 1201 is the same in both and not shown.
    answer(QStringLiteral("Ja"));
    answerBox();
    press("SchreibenBut");
    EXPECT_EQ(nameIn(8), QStringLiteral("ANDERS"));
    EXPECT_EQ(flashBytes(LocoRecordAddress(1201), 1), QByteArray(1, '\xFF'));
}

/// A page that a power cut has left half programmed is made good before any command of the program writes, or none does.
TEST_F(CompareTest, NoCommandWritesWhileAPageWaits)
{
    flash().setBytes(LocoRecordAddress(13), bytesOf(loco(13))); // a power cut erases the second half of its page
    openOnHandheld();
    user.onBox = [this] {
        if (user.boxes.constLast().contains(u"Soll geschrieben werden?"))
            layout().faults.faults.powerCut.nth = layout().faults.faults.powerCut.seen + 1;
    };
    answer(QStringLiteral("Ja"));
    answerBox();
    press("SchreibenBut");
    user.onBox = nullptr;
    reconnect();
    ShowHandheld({QStringLiteral("1.2"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
    const auto torn = flash().state.memory;
    const int programs = executed(0x83);
    user.acceptAnyBox(); // No to all
    const auto isAsked = [this, programs](const char *name) {
        EXPECT_EQ(user.boxes.filter(QStringLiteral("zuerst wiederhergestellt")).size(), 1) << name;
        EXPECT_EQ(executed(0x83), programs) << name;
        user.boxes.clear();
    };
    user.boxes.clear();
    for (const char *name : {"SchreibeLokDatensatzBut", "ResetLokdatenBut", "SchreibeLoksymbolBut",
             "SchreibeFktSymBut", "SchreibeMagSymBut"}) {
        button(name)->setEnabled(true);
        click(name);
        isAsked(name);
    }
    const std::pair<const char *, QString> menus[] = {{"datenschreiben_menu", file}, {"Opt_abschalt", {}},
        {"Opt_Fktsym", {}}, {"Opt_clear_all_loco", QStringLiteral("Ja")}};
    for (const auto &[name, first] : menus) {
        if (!first.isEmpty())
            answer(first);
        trigger(name);
        isAsked(name);
    }
    EXPECT_EQ(flash().state.memory, torn);
    answer(QStringLiteral("Ja"));
    answerBox();
    field("AdrTxt")->setText(QStringLiteral("20"));
    click("ResetLokdatenBut");
    EXPECT_TRUE(user.boxes.constLast().contains(u"Wiederhergestellt"));
    EXPECT_EQ(nameIn(13), u"LOK 13");
    EXPECT_EQ(flashBytes(LocoRecordAddress(20), 1), QByteArray(1, '\xFF')) << "and then it does what was asked";
}

TEST_F(CompareTest, AListOfLocosKeepsWhatItDoesNotSay)
{
    QString list = folder.filePath(QStringLiteral("Liste.json"));
    const auto holds = [&](const QByteArray &text) { ASSERT_TRUE(ReplaceFile(list, text)); };
    const auto open = [&] {
        answer(list);
        trigger("vergleichen_menu");
        press("HandreglerBut");
    };
    holds(R"([{"adresse":8,"name":"ANDERS"},{"adresse":9,"name":"fremd","symbol":11},{"adresse":1201,"symbol":3}])");
    open();
    EXPECT_EQ(shown(),
        QStringList({QStringLiteral("Lok 8: geändert"), QStringLiteral("Lok 9: überschreibt eine andere Lok"),
            QStringLiteral("Lok 1201: leer; ohne Namen wird nichts geschrieben")}));
    const QByteArray wanted = bytesOf(named(8, u"ANDERS"));
    answer(QStringLiteral("Ja"));
    answerBox();
    press("SchreibenBut");
    EXPECT_TRUE(user.boxes.constLast().contains(u"wurde zurückgelesen und stimmt")) << "what was proved is said";
    EXPECT_EQ(flashBytes(LocoRecordAddress(8), LocoRecordSize), wanted) << "functions and symbol stay";
    EXPECT_EQ(nameIn(9), QStringLiteral("FREMD"));
    // Beside a backup too what is not said is equal, in both directions.
    answer(file);
    press("ZweiteDateiBut");
    EXPECT_EQ(shown(),
        QStringList({QStringLiteral("Lok 3: neu"), QStringLiteral("Lok 9: fehlt in der zweiten Datei"),
            QStringLiteral("Lok 1201: geändert")}));
    answer(file);
    trigger("vergleichen_menu");
    answer(list);
    press("ZweiteDateiBut");
    EXPECT_TRUE(shown().contains(QStringLiteral("Lok 1201: geändert"))) << shown().join(u'|').toStdString();
    // A list with a fault is not used at all.
    list = folder.filePath(QStringLiteral("Liste.csv"));
    holds("Adresse;Name\n8;A\n99999;B\n");
    answer(list);
    answerBox();
    trigger("vergleichen_menu");
    EXPECT_TRUE(user.boxes.constLast().contains(u"kann so nicht gebraucht werden")) << "named";
    EXPECT_TRUE(shown().contains(QStringLiteral("Lok 1201: geändert"))) << "the window is as it was";
}

TEST_F(CompareTest, ABackupThatIsBrokenOffKeepsItsPartAndGoesOn)
{
    const QString backup = folder.filePath(QStringLiteral("Alle.dds"));
    WriteSelection({});
    const auto save = [&](const QString &name, const QString &goOn) {
        answer(name);
        events.after(200'000, [] {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (widget->objectName() != u"SicherungWin" || !widget->isVisible())
                    continue;
                widget->findChild<QLineEdit *>(QStringLiteral("LokDatenTxt"))->setText(QStringLiteral("3,8,9,1201"));
                widget->findChild<QCheckBox *>(QStringLiteral("LokDatenChk"))->setChecked(true);
                widget->findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
            }
        });
        if (!goOn.isEmpty())
            answer(goOn);
    };
    save(backup, {});
    const auto plug = events.every(10, [this] {
        if (port.isOpen() && user.progress.endsWith(QStringLiteral("Lok-Daten: 1201")))
            port.hangUp();
    });
    answer(QStringLiteral("Ja")); // keep the part
    answerBox();
    trigger("datenlesen_menu");
    events.stop(plug);
    EXPECT_FALSE(QFile::exists(backup));
    const auto part = ReadWholeFile(folder.filePath(QStringLiteral("Alle (unvollständig).dds")));
    ASSERT_TRUE(part);
    EXPECT_EQ(ReadDds(*part).records.front().id.number, 3);
    reconnect();
    const int reads = handheld().state.readBacks;
    const QString tomorrow = folder.filePath(QStringLiteral("Morgen.dds")); // the proposed name holds the date
    save(tomorrow, QStringLiteral("Ja"));
    answerBox();
    trigger("datenlesen_menu");
    EXPECT_EQ(ReadDds(ReadWholeFile(backup).value_or(QByteArray())).records.size(), 3U);
    EXPECT_LT(handheld().state.readBacks - reads, 3 * 16) << "only what is missing is read";
}

} // namespace hr::tests
