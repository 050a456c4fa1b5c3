// The window of the Lokliste: read, edited, sent and saved through its real widgets.

#include "handheld/backup/dds_file.h"
#include "handheld/known_locos.h"
#include "jobs/undo_snapshot.h"
#include "platform/files.h"
#include "platform/text.h"
#include "shown/connection.h"
#include "tests/support/window_world.h"
#include "ui/common/connection.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

namespace hr::tests
{

class LokListWin : public WindowWorld
{
protected:
    /// In the handheld: 3, 8 and 9, and nothing up to 30 else.
    void SetUp() override
    {
        WindowWorld::SetUp();
        ShowHandheld({QStringLiteral("1.2"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
        for (int n = 1; n <= 30; ++n)
            flash().setBytes(LocoRecordAddress(n), QByteArray(LocoRecordSize, '\xFF'));
        for (const int n : {3, 8, 9})
            flash().setBytes(LocoRecordAddress(n), bytesOf(named(QStringLiteral("LOK %1").arg(n))));
        user.ignoreTexts = true;
        trigger("lokliste_menu");
    }

    static LocoRecord named(const QString &name)
    {
        LocoRecord record{FitLocoName(name), {}, {}, 0, 5};
        record.symbols.at(2) = 17;
        return record;
    }

    static QByteArray bytesOf(const LocoRecord &record)
    {
        LocoBytes beneath{};
        beneath.fill(EmptyByte);
        const LocoBytes bytes = EncodeLoco(record, beneath);
        return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
    }

    static QWidget *win() { return WindowNamed(u"LokListeWin"); }
    template <typename Control> static Control *in(const char *name)
    {
        return win()->findChild<Control *>(QLatin1String(name));
    }
    static void press(const char *name) { in<QPushButton>(name)->click(); }
    static void act(const char *name) { in<QAction>(name)->trigger(); }
    static QTableView *table() { return in<QTableView>("LokListeTab"); }
    static QAbstractItemModel *rows() { return table()->model(); }

    static QString cell(int row, int column, int role = Qt::DisplayRole)
    {
        return rows()->index(row, column).data(role).toString();
    }
    static QStringList shown()
    {
        QStringList list;
        for (int row = 0; row < rows()->rowCount(); ++row)
            list += cell(row, 0) + u' ' + cell(row, 1) + u' ' + cell(row, StateColumn);
        return list;
    }
    static void type(int row, int column, const QString &text) { rows()->setData(rows()->index(row, column), text); }
    static void select(int row, int column, int lastRow, int lastColumn)
    {
        table()->setCurrentIndex(rows()->index(row, column));
        table()->selectionModel()->select(
            {rows()->index(row, column), rows()->index(lastRow, lastColumn)}, QItemSelectionModel::ClearAndSelect);
    }

    void answer(const QString &text) { user.expect({}, {}, text); }

    void readAll()
    {
        answer(QStringLiteral("1-30"));
        press("LesenBut");
    }

    LocoRecord stored(int n)
    {
        LocoBytes bytes{};
        const QByteArray flash = flashBytes(LocoRecordAddress(n), LocoRecordSize);
        std::ranges::copy(flash, reinterpret_cast<char *>(bytes.data()));
        return DecodeLoco(bytes);
    }
    QString nameOf(int n) { return ShownName(stored(n)); }

    static constexpr int NameCell = 1;
    static constexpr int SymbolCell = 2;
    static constexpr int Function0 = 4;
    static constexpr int StateColumn = 29;
};

TEST_F(LokListWin, ReadEditedSentAndTakenBack)
{
    readAll();
    EXPECT_EQ(shown(),
        QStringList({QStringLiteral("3 LOK 3 im Handregler"), QStringLiteral("8 LOK 8 im Handregler"),
            QStringLiteral("9 LOK 9 im Handregler")}));
    EXPECT_FALSE(in<QPushButton>("SendenBut")->isEnabled()) << "there is nothing that the handheld does not have";
    const auto before = flash().state.memory;

    type(0, NameCell, QStringLiteral("e 94 ü"));
    type(0, Function0 + 2, QStringLiteral("18t"));
    type(0, Function0 + 2, QStringLiteral("256"));
    EXPECT_EQ(cell(0, Function0 + 2, Qt::EditRole), u"18T") << "what means nothing changes nothing";
    type(1, 0, QStringLiteral("20"));
    EXPECT_EQ(cell(1, StateColumn), u"geändert");
    EXPECT_TRUE(cell(0, Function0 + 2, Qt::AccessibleTextRole).startsWith(u"f2: Symbol 18"));
    act("NeuAction");
    EXPECT_EQ(cell(3, StateColumn), u"ungültig");
    EXPECT_TRUE(cell(3, NameCell, Qt::ToolTipRole).contains(u"Der Name fehlt"));
    type(3, 0, QStringLiteral("9"));
    type(3, NameCell, QStringLiteral("DOPPELT"));
    EXPECT_EQ(in<QPushButton>("SendenBut")->text(), u"4 Loks senden");
    answer(QStringLiteral("Nein")); // the two that share an address are named, the others not sent either
    press("SendenBut");
    EXPECT_TRUE(user.boxes.constLast().contains(u"9 (DOPPELT): Die Adresse 9 steht mehrmals"));
    EXPECT_EQ(flash().state.memory, before);
    act("LoeschenAction");
    EXPECT_EQ(in<QPushButton>("SendenBut")->text(), u"2 Loks senden");

    answer(QStringLiteral("Ja"));
    answer({}); // the report
    answer({}); // and the one on the old address
    press("SendenBut");
    EXPECT_TRUE(user.boxes.at(user.boxes.size() - 3).contains(u"8 → 20"));
    EXPECT_EQ(nameOf(3), u"E 94 Ü");
    EXPECT_EQ(stored(3).symbols.at(2), 18);
    EXPECT_EQ(stored(3).modes.at(2), 1);
    EXPECT_EQ(nameOf(20), u"LOK 8");
    EXPECT_EQ(nameOf(8), u"-leer-");
    EXPECT_EQ(nameOf(9), u"LOK 9");
    for (const QString &row : shown())
        EXPECT_TRUE(row.endsWith(u"im Handregler")) << row.toStdString();
    while (in<QAction>("UndoAction")->isEnabled())
        act("UndoAction");
    EXPECT_EQ(nameOf(3), u"E 94 Ü") << "undo changes only the list";
    for (int step = 0; step < 2; ++step) { // the old address, then the rest
        answer(QStringLiteral("Ja"));
        answer({});
        trigger("zuruecknehmen_menu");
    }
    EXPECT_EQ(flash().state.memory, before);
}

/// What was in the cells at the click is sent, and an old address is never deleted unasked nor forgotten.
TEST_F(LokListWin, WhatIsTypedWhileASendingWaitsBelongsToTheNextOne)
{
    readAll();
    type(0, NameCell, QStringLiteral("KLICK"));
    user.onBox = [] { type(0, NameCell, QStringLiteral("SPAETER")); };
    answer(QStringLiteral("Ja"));
    answer({});
    press("SendenBut");
    user.onBox = nullptr;
    EXPECT_EQ(nameOf(3), u"KLICK");
    EXPECT_EQ(cell(0, StateColumn), u"geändert");
    type(0, NameCell, QStringLiteral("KLICK"));

    flash().setBytes(LocoRecordAddress(21), flashBytes(LocoRecordAddress(8), LocoRecordSize)); // it is there already
    type(1, 0, QStringLiteral("21"));
    answer({}); // nothing was to be written
    answer(QStringLiteral("Nein"));
    press("SendenBut");
    EXPECT_EQ(nameOf(8), u"LOK 8") << "not without the question";
    EXPECT_EQ(in<QPushButton>("SendenBut")->text(), u"1 Lok senden") << "the old address waits";
    answer({});
    answer(QStringLiteral("Ja"));
    answer({});
    press("SendenBut");
    EXPECT_EQ(nameOf(8), u"-leer-");
    EXPECT_EQ(nameOf(21), u"LOK 8");
    EXPECT_FALSE(in<QPushButton>("SendenBut")->isEnabled());
}

TEST_F(LokListWin, CellsGoToASpreadsheetAndBack)
{
    readAll();
    select(0, 0, 1, Function0 + 3);
    act("KopierenAction");
    EXPECT_EQ(QApplication::clipboard()->text(), u"3\tLOK 3\t5\t\t\t\t17\t\n8\tLOK 8\t5\t\t\t\t17\t");
    QApplication::clipboard()->setText(QStringLiteral("21\tNEU 1\t7\tja\tT\t1\t2T\r\n22\tNEU 2\t7\t\t\tx\r\n"));
    select(2, 0, 2, 0);
    answer({});
    act("EinfuegenAction");
    EXPECT_TRUE(user.boxes.constLast().contains(u"\"x\" in Spalte f1"));
    EXPECT_EQ(
        shown().mid(2), QStringList({QStringLiteral("21 NEU 1 geändert"), QStringLiteral("22 NEU 2 geändert")}));
    EXPECT_EQ(cell(2, Function0, Qt::EditRole), u"T");
    EXPECT_EQ(cell(2, Function0 + 2, Qt::EditRole), u"2T");
    act("UndoAction");
    EXPECT_EQ(rows()->rowCount(), 3) << "one step";
    select(0, Function0 + 2, 2, Function0 + 2);
    act("LeerenAction");
    EXPECT_EQ(cell(1, Function0 + 2, Qt::EditRole), u"");
    select(0, SymbolCell, 2, SymbolCell);
    QApplication::clipboard()->setText(QStringLiteral("9"));
    act("EinfuegenAction");
    EXPECT_EQ(cell(2, SymbolCell, Qt::EditRole), u"9") << "one cell into all selected ones";
    in<QLineEdit>("FilterTxt")->setText(QStringLiteral("Symbol 9"));
    EXPECT_EQ(rows()->rowCount(), 3);
    in<QLineEdit>("FilterTxt")->setText(QStringLiteral("Symbol 17"));
    EXPECT_EQ(rows()->rowCount(), 0);
    in<QLineEdit>("FilterTxt")->setText(QStringLiteral("lok 8"));
    EXPECT_EQ(rows()->rowCount(), 1);
}

TEST_F(LokListWin, FilesAreAddedAndABackupKeepsItsOtherRecords)
{
    readAll();
    const QString backup = folder.filePath(QStringLiteral("a.dds"));
    const QByteArray other = PackRecord({RecordKind::Loco, 500}, named(QStringLiteral("FUENFHUNDERT")))
        + PackRecord({RecordKind::RouteTable, 0}, Routes());
    ASSERT_TRUE(ReplaceFile(backup, other + PackRecord({RecordKind::Loco, 3}, named(QStringLiteral("ALT")))));
    answer(backup);
    answer(QStringLiteral("Nein")); // 3 stays
    answer(QStringLiteral("Nein")); // and it is asked about the next one again
    press("OeffnenBut");
    EXPECT_EQ(shown().constLast(), u"500 FUENFHUNDERT aus Datei");
    EXPECT_EQ(cell(0, NameCell), u"LOK 3");
    act("UndoAction");
    answer(backup);
    answer(QStringLiteral("Ja"));
    answer({});
    press("SpeichernBut");
    const DdsContent content = ReadDds(*LoadDds(backup));
    ASSERT_EQ(content.records.size(), 5U);
    EXPECT_EQ(content.records.at(0).id.number, 500);
    EXPECT_EQ(content.records.at(1).id.kind, RecordKind::RouteTable);
    EXPECT_EQ(std::get<LocoRecord>(UnpackRecord(content.records.at(2))).name.trimmed(), u"LOK 3");
    // An ending that says nothing, and a list with a fault, replace no file.
    answer(folder.filePath(QStringLiteral("a.txt")));
    answer({});
    press("SpeichernBut");
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("a.txt"))));
    type(0, NameCell, QString());
    answer({});
    press("SpeichernBut");
    EXPECT_TRUE(user.boxes.constLast().contains(u"Der Name fehlt"));
}

TEST_F(LokListWin, WhatIsReadOrDeletedElsewhereIsThereAtOnce)
{
    readAll();
    QLineEdit *address = field("AdrTxt");
    address->setText(QStringLiteral("8"));
    click("ResetLokdatenBut");
    EXPECT_EQ(shown().at(1), u"8 LOK 8 geändert");
    user.onEditor = [this](int n, const LocoRecord &record) { window().showLoco(n, record); };
    select(1, 0, 1, 0);
    act("EditorAction");
    EXPECT_EQ(address->text(), u"8");
    click("SchreibeLokDatensatzBut");
    EXPECT_EQ(nameOf(8), u"LOK 8");
    EXPECT_EQ(shown().at(1), u"8 LOK 8 im Handregler");
    ForgetKnownLocos();
    EXPECT_EQ(shown().at(1), u"8 LOK 8 unbekannt") << "another handheld may hold something else";
    type(0, NameCell, QStringLiteral("X"));
    answer(QStringLiteral("Nein")); // the end of the program
    window().close();
    events.run(1);
    EXPECT_TRUE(user.boxes.constLast().contains(u"Lokliste"));
}

/// Beside the editor: what is known of the handheld, kept for the next start.
TEST_F(LokListWin, ThePanelShowsWhatTheHandheldHoldsAndKeepsIt)
{
    TellConnectionChange();
    const auto panel = [this] {
        const QAbstractItemModel *locos = window().findChild<QTableView *>(QStringLiteral("LoksTab"))->model();
        QStringList list;
        for (int row = 0; row < locos->rowCount(); ++row) {
            QString line;
            for (const int column : {0, NameCell, StateColumn})
                line += locos->index(row, column).data().toString() + u' ';
            list += line.trimmed();
        }
        return list;
    };
    readAll();
    EXPECT_EQ(panel(),
        QStringList({QStringLiteral("3 LOK 3 ✓"), QStringLiteral("8 LOK 8 ✓"), QStringLiteral("9 LOK 9 ✓")}));
    field("AdrTxt")->setText(QStringLiteral("8"));
    click("ResetLokdatenBut");
    EXPECT_EQ(panel(), QStringList({QStringLiteral("3 LOK 3 ✓"), QStringLiteral("9 LOK 9 ✓")}));
    field("LoksFilterTxt")->setText(QStringLiteral("lok 9"));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(field("LoksFilterTxt"), &enter);
    events.run(5);
    EXPECT_EQ(field("AdrTxt")->text(), u"9");
    EXPECT_EQ(field("LoknameTxt")->text().trimmed(), u"LOK 9");
    EXPECT_TRUE(
        window().findChild<QLabel *>(QStringLiteral("StandLbl"))->text().startsWith(u"1 von 2 Loks, Stand: 23.11."));
    restart();
    ShowHandheld({QStringLiteral("9.9"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
    TellConnectionChange();
    EXPECT_EQ(panel(), QStringList()) << "another handheld has its own list";
    ShowHandheld({QStringLiteral("1.2"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
    TellConnectionChange();
    EXPECT_EQ(panel(), QStringList({QStringLiteral("3 LOK 3 ?"), QStringLiteral("9 LOK 9 ?")}))
        << "not looked at yet";
}

TEST_F(LokListWin, TwoThousandLocosAreNoBurden)
{
    QByteArray file;
    for (int n = 1; n <= 2000; ++n)
        file += PackRecord({RecordKind::Loco, n}, named(QStringLiteral("LOK %1").arg(n)));
    const QString backup = folder.filePath(QStringLiteral("viele.dds"));
    ASSERT_TRUE(ReplaceFile(backup, file));
    answer(backup);
    QElapsedTimer time;
    const auto isBelow = [&time](int limitMs, const char *what) {
        EXPECT_LT(time.restart(), limitMs * 4) << what; // unoptimised, under sanitizers, beside others
    };
    time.start();
    press("OeffnenBut");
    ASSERT_EQ(rows()->rowCount(), 2000);
    isBelow(500, "opening");
    type(1000, NameCell, QStringLiteral("ANDERS"));
    isBelow(20, "an edit");
    in<QLineEdit>("FilterTxt")->setText(QStringLiteral("anders"));
    isBelow(50, "a key in the filter");
    EXPECT_EQ(rows()->rowCount(), 1);
}

} // namespace hr::tests
