#include "handheld/flash_map.h"
#include "link/open_link.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/tables.h"
#include "tests/support/window_world.h"
#include "ui/editors/editor_windows.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/window_place.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>
#include <array>

namespace hr::tests
{

namespace
{

void Press(QWidget *widget, Qt::Key key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

} // namespace

/// The table windows on a connected handheld; every wait of the user is scripted with after().
class TableWindows : public DesktopWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        flash().setBytes(RoutesAddress + 4, QByteArray(320, '\xFF'));
        flash().setBytes(RoutesAddress + 4, QByteArray("\x10\x00\x01\x07\x10\x01\x02\x07", 8));
        QDir().mkpath(SymbolPath(SymbolKind::Accessory, {}));
        for (const char *name : {"1 a %ROT%.bmp", "1 a %GRN%.bmp", "5 b %ROT%.bmp", "7 c %GRN%.bmp"})
            QImage(14, 14, QImage::Format_Mono).save(SymbolPath(SymbolKind::Accessory, QLatin1String(name)));
        ScanCatalogues();
    }

    static QWidget *topLevel(const char *name)
    {
        const auto all = QApplication::topLevelWidgets();
        const auto found = std::ranges::find(all, QLatin1String(name), &QWidget::objectName);
        return found != all.end() ? *found : nullptr;
    }

    void open(void (*opener)(), const char *name)
    {
        opener();
        window = topLevel(name);
        ASSERT_NE(window, nullptr);
        grid = window->findChild<Grid *>();
        QApplication::setActiveWindow(window);
    }

    void openRoutes() { open(OpenRouteEditor, "FSEdit"); }

    QPushButton *button(const char *name) { return window->findChild<QPushButton *>(QLatin1String(name)); }

    /// Triggers a command of the grid with some cells marked.
    void edit(const char *action, int top, int left, int bottom, int right, const char *clipboard = nullptr)
    {
        grid->setCurrentCell(top, left, QItemSelectionModel::Clear);
        grid->setRangeSelected({top, left, bottom, right}, true);
        if (clipboard != nullptr)
            QApplication::clipboard()->setText(QString::fromUtf8(clipboard));
        grid->findChild<QAction *>(QLatin1String(action))->trigger();
    }

    QPoint centre(int row, int column) { return grid->visualRect(grid->model()->index(row, column)).center(); }

    /// A click on a cell; returns when its command has ended.
    void click(int row, int column)
    {
        grid->scrollTo(grid->model()->index(row, column));
        const QPoint at = centre(row, column);
        Mouse(QEvent::MouseButtonPress, grid->viewport(), at);
        Mouse(QEvent::MouseButtonRelease, grid->viewport(), at);
    }

    /// The user does this a moment later, while a command waits.
    void soon(const std::function<void()> &action) { events.after(100'000, action); }

    /// Types into a cell and ends with a key.
    void type(int row, int column, const char *text, Qt::Key end = Qt::Key_Return)
    {
        soon([this, text, end] {
            ASSERT_FALSE(grid->inputBox()->isHidden());
            grid->inputBox()->setText(QString::fromUtf8(text));
            Press(grid->inputBox(), end);
        });
        click(row, column);
    }

    /// Picks a symbol, or leaves the picker with Escape, after trying a second click on the grid.
    void pick(int row, int column, int symbol)
    {
        soon([this, symbol] {
            click(0, 1);
            if (symbol == NothingChosen)
                Press(topLevel("MagSymWin"), Qt::Key_Escape);
            else
                Q_EMIT topLevel("MagSymWin")->findChild<Grid *>()->cellActed(symbol, 0);
        });
        click(row, column);
    }

    /// The cells of a row behind its number; a picture shows as #.
    std::string row(int number)
    {
        QStringList cells;
        for (int column = 1; column < grid->columnCount(); ++column) {
            const bool picture = !grid->model()->index(number, column).data(Grid::PictureRole).isNull();
            cells += picture ? QStringLiteral("#") : grid->text(number, column);
        }
        return cells.join(u'|').toStdString();
    }

    QWidget *window = nullptr;
    Grid *grid = nullptr;
};

TEST_F(TableWindows, RoutesAreShownEditedAndWritten)
{
    openRoutes();
    EXPECT_FALSE(button("SchreibeFSDatenBut")->isEnabled());
    button("LeseFSDatenBut")->click();
    EXPECT_TRUE(button("SchreibeFSDatenBut")->isEnabled());
    EXPECT_EQ(grid->text(79, 0), QStringLiteral("80"));
    EXPECT_EQ(row(0), "4096||X");
    EXPECT_EQ(row(1), "-|X|");
    EXPECT_EQ(row(2), "-||X");

    type(0, 1, "12");   // the trigger byte becomes free under the old mark
    type(2, 1, "4097"); // also after a rejected address
    type(3, 1, "");
    type(4, 1, "4096 x");
    click(5, 0); // also by a click on the number
    click(6, 2);
    click(1, 3);
    type(7, 1, "5", Qt::Key_Escape); // nothing at all
    const std::array<const char *, 8> shown{
        "12||X", "-||X", "ERR!||X", "ERR!||X", "4096 x||X", "-||X", "-|X|", "-||X"};
    for (size_t i = 0; i < shown.size(); ++i)
        EXPECT_EQ(row(static_cast<int>(i)), shown.at(i)) << i;
    button("SchreibeFSDatenBut")->click();
    EXPECT_EQ(flashBytes(RoutesAddress + 4, 32),
        QByteArray::fromHex("000c0007 10010107 ffff00ff ffff00ff 100000ff ffff00ff ffff00ff ffffffff"));
    EXPECT_EQ(
        user.progress, (QStringList{QStringLiteral("Lese Fahrstraßen"), QStringLiteral("Schreibe Fahrstraßen")}));
    const QString kept = folder.filePath(QStringLiteral("Einstellungen.ini"));
    KeepWindowSizesIn(kept);
    window->resize(window->size() + QSize(0, 40));
    window->close();
    EXPECT_TRUE(QFile::exists(kept)) << "the size that the user chose";
    KeepWindowSizesIn(QString());
}

TEST_F(TableWindows, AClickElsewhereEndsTheInputAndDoesNothingElse)
{
    openRoutes();
    button("LeseFSDatenBut")->click();
    const auto pressElsewhere = [this] {
        grid->inputBox()->setText(QStringLiteral("33"));
        Mouse(QEvent::MouseButtonPress, grid->viewport(), centre(4, 2));
    };
    const auto release = [this] { Mouse(QEvent::MouseButtonRelease, grid->viewport(), centre(4, 2)); };
    soon(pressElsewhere);
    events.after(150'000, release);
    click(3, 1);
    EXPECT_EQ(row(3), "33||X");
    soon(pressElsewhere);
    click(2, 1);
    release(); // held until the box had closed
    EXPECT_EQ(row(2), "33||X");
    EXPECT_EQ(row(4), "-||X");
    EXPECT_EQ(FsDaten.at(18), 255);
    EXPECT_EQ(grid->currentRow(), 2);
    EXPECT_EQ(grid->currentColumn(), 1);
    EXPECT_TRUE(grid->inputBox()->isHidden());

    grid->setRangeSelected({5, 1, 7, 3}, true);
    Press(grid, Qt::Key_Space); // only collapses the range
    EXPECT_EQ(grid->selectedItems().size(), 1);
    EXPECT_EQ(FsDaten.at(10), 0);
    soon([this] { Press(grid->inputBox(), Qt::Key_Enter); });
    Press(grid, Qt::Key_F2);
    EXPECT_EQ(row(2), "33||X");
}

TEST_F(TableWindows, CommandsOfTheWindowFirstEndTheInput)
{
    openRoutes();
    button("LeseFSDatenBut")->click();
    soon([this] {
        grid->inputBox()->setText(QStringLiteral("258"));
        button("SchreibeFSDatenBut")->click();
        button("SchreibeFSDatenBut")->click();
        button("CancelButton")->click(); // only the first one counts
        EXPECT_EQ(grid->text(0, 1), QStringLiteral("4096"));
    });
    click(0, 1);
    events.run(10);
    EXPECT_EQ(flashBytes(RoutesAddress + 4, 4).toHex(), QByteArray("01020007"));
    EXPECT_EQ(flash().state.executed.at(0x83), 1);
    EXPECT_TRUE(window->isVisible());

    const std::function<void()> endings[] = {
        [this] { window->close(); }, [this] { window->hide(); }, [this] { button("CancelButton")->click(); }};
    for (const auto &end : endings) {
        openRoutes();
        FsDaten.at(5) = 0;
        soon([this, &end] {
            grid->inputBox()->setText(QStringLiteral("9"));
            end();
        });
        click(1, 1);
        events.run(1);
        EXPECT_EQ(FsDaten.at(5), 9);
        EXPECT_FALSE(window->isVisible());
    }
    openRoutes();
    soon([] { RequestEnd(); });
    click(1, 1); // the program's end leaves the wait, too
    EXPECT_EQ(grid->text(1, 1), QStringLiteral("9"));
}

TEST_F(TableWindows, TheTextBoxKeepsTheFocusWithinItsWindowOnly)
{
    openRoutes();
    QLineEdit *box = grid->inputBox();
    QWidget other;
    QLineEdit otherField(&other);
    other.show();
    soon([&] {
        button("LeseFSDatenBut")->setFocus();
        events.run(0.01);
        EXPECT_TRUE(box->hasFocus());
        QApplication::setActiveWindow(&other);
        otherField.setFocus();
        events.run(0.01);
        EXPECT_TRUE(otherField.hasFocus());
        grid->verticalScrollBar()->setValue(30);
        EXPECT_EQ(box->geometry(), grid->visualRect(grid->model()->index(3, 1)));
        Press(box, Qt::Key_Return);
    });
    click(3, 1);
    EXPECT_TRUE(otherField.hasFocus());
}

TEST_F(TableWindows, AReadThatIsCutKeepsTheTableAndDoesNotCount)
{
    struct {
        void (*opener)();
        const char *window, *read, *write;
        bool &loaded;
    } const tables[] = {{OpenRouteEditor, "FSEdit", "LeseFSDatenBut", "SchreibeFSDatenBut", RoutesLoaded},
        {OpenAssignmentEditor, "MagSymZuordWin", "LeseSymZuordBut", "SchreibeSymZuordBut", MagSymZuordLoaded},
        {OpenAccessoryListEditor, "MagListeWin", "LeseMagListeBut", "SchreibeMagListeBut", MagListeLoaded}};
    for (const auto &table : tables) {
        user.acceptAnyBox();
        open(table.opener, table.window);
        sim::Faults faults;
        faults.hangUp.nth = 8;
        layout().faults.set(faults);
        button(table.read)->click();
        EXPECT_FALSE(table.loaded);
        EXPECT_FALSE(button(table.write)->isEnabled());
        EXPECT_FALSE(user.progressVisible);
        events.run(0.1); // the loss is told
        layout().faults.set({});
        port.replug();
        soon([this, &table] { button(table.read)->click(); }); // a second press in mid-read is ignored
        button(table.read)->click();                           // finds the handheld again
        EXPECT_TRUE(table.loaded);
        EXPECT_TRUE(button(table.write)->isEnabled());
        button("CancelButton")->click();
        EXPECT_FALSE(window->isVisible());
    }
    EXPECT_EQ(handheld().state.identifications, 3);
}

TEST_F(TableWindows, TheAssignmentShowsPicksAndWritesSymbols)
{
    flash().setBytes(MagZuordAddress, QByteArray::fromHex("aa01050763"));
    flash().setBytes(MagZuordAddress + 2048, QByteArray::fromHex("01bb"));
    open(OpenAssignmentEditor, "MagSymZuordWin");
    button("LeseSymZuordBut")->click();
    QStringList texts{QStringLiteral("Lese Zuordnungsdaten")};
    for (int g = 0; g < 32; ++g)
        texts += QStringLiteral("Lese Zuordnungsdaten %1").arg(g);
    texts += QStringLiteral("Schreibe Tabelle");
    for (int n = 200; n <= 2000; n += 200)
        texts += QStringLiteral("Schreibe Tabelle %1").arg(n);
    EXPECT_EQ(user.progress, texts);
    for (const auto &[number, text] : {std::pair(0, "#|#"), {1, "#|"}, {2, "|#"}, {3, "|"}, {4, "|"}, {2047, "#|#"}})
        EXPECT_EQ(row(number), text) << number;

    pick(2047, 0, 5);
    EXPECT_EQ(row(2047), "#|");
    EXPECT_EQ(grid->currentRow(), 2047);
    EXPECT_EQ(grid->currentColumn(), 1);
    pick(1, 2, NothingChosen);
    EXPECT_EQ(row(1), "#|");
    user.progress.clear();
    button("SchreibeSymZuordBut")->click();
    EXPECT_EQ(user.progress.constFirst(), QStringLiteral("Schreibe Fahrstraßen"));
    EXPECT_EQ(flashBytes(MagZuordAddress, 5).toHex(), QByteArray("aa01050763"));
    EXPECT_EQ(flashBytes(MagZuordAddress + 2047, 3).toHex(), QByteArray("ff05bb"));
}

TEST_F(TableWindows, TheAccessoryListTakesAddressesDesignationsAndSymbols)
{
    flash().setBytes(MagListeAddress + 8, QByteArray::fromHex("0102200101060708"));
    open(OpenAccessoryListEditor, "MagListeWin");
    button("LeseMagListeBut")->click();
    EXPECT_EQ(row(0), "258|W1|#|#");
    EXPECT_EQ(row(31), "65535|ÿÿ||");

    struct {
        int column;
        const char *typed, *shown, *stored; // the first five bytes of the place
    } const entries[] = {{1, "2048", "2048", "0800ffffff"}, {1, "2049", "ERR!", "ffffffffff"},
        {1, "2048,4", "2048,4", "0800ffffff"}, {1, "2048.5", "ERR!", "ffffffffff"}, {1, "0,5", "0,5", "0001ffffff"},
        {1, " 12.6x", " 12.6X", "000dffffff"}, {1, "", "ERR!", "ffffffffff"}, {1, "-3", "ERR!", "ffffffffff"},
        {1, "99999999999", "ERR!", "ffffffffff"}, {2, "ab", "AB", "ffff0a0bff"}, {2, "ü", "Ü", "ffff2627ff"},
        {2, "", "", "ffff2727ff"}, {2, "ß1234", "ß1234", "ffff2701ff"}};
    int place = 1;
    for (const auto &entry : entries) {
        type(place, entry.column, entry.typed);
        EXPECT_EQ(grid->text(place, entry.column), QString::fromUtf8(entry.shown)) << entry.typed;
        QByteArray stored;
        for (size_t i = 0; i < 5; ++i)
            stored += static_cast<char>(MagListeDaten.at(static_cast<size_t>(place) * PlaceSize + i));
        EXPECT_EQ(stored.toHex(), QByteArray(entry.stored)) << entry.typed;
        ++place;
    }
    click(0, 0);
    pick(0, 4, NothingChosen);
    EXPECT_EQ(row(0), "258|W1|#|#");
    pick(0, 3, 7);
    EXPECT_EQ(row(0), "258|W1||#");
    button("SchreibeMagListeBut")->click();
    EXPECT_EQ(flashBytes(MagListeAddress + 8, 16).toHex(), QByteArray("01022001070607080800ffffffffffff"));
    EXPECT_EQ(user.progress.constLast(), QStringLiteral("Schreibe Mag.Listendaten"));
}

TEST_F(TableWindows, ATableReadWithATimeoutIsWrittenOnlyOnPurpose)
{
    openRoutes();
    strike(&sim::Faults::lostAck, 2);
    user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
    button("LeseFSDatenBut")->click();
    layout().faults.set({});
    EXPECT_FALSE(window->findChild<QLabel *>(QStringLiteral("UnvollstaendigLbl"))->isHidden());
    user.expect(
        QStringLiteral("Beim Lesen hat der Handregler nicht immer richtig geantwortet;\rdie Tabelle ist vielleicht "
                       "unvollständig. Soll trotzdem geschrieben werden?"),
        QStringLiteral("Achtung!"), QStringLiteral("Nein"));
    button("SchreibeFSDatenBut")->click();
    EXPECT_FALSE(user.defaultYes);
    EXPECT_EQ(executed(0x83), 0);
    button("LeseFSDatenBut")->click();
    EXPECT_TRUE(window->findChild<QLabel *>(QStringLiteral("UnvollstaendigLbl"))->isHidden());
    button("SchreibeFSDatenBut")->click();
    EXPECT_EQ(executed(0x83), 1);
}

TEST_F(TableWindows, ADraggedRangeCollapsesToWhereItBegan)
{
    openRoutes();
    button("LeseFSDatenBut")->click();
    const auto drag = [this](QPoint from, QPoint to) {
        Mouse(QEvent::MouseButtonPress, grid->viewport(), from);
        Mouse(QEvent::MouseMove, grid->viewport(), to);
        Mouse(QEvent::MouseButtonRelease, grid->viewport(), to);
    };
    const Routes before = FsDaten;
    drag(centre(2, 3), centre(5, 2));
    EXPECT_EQ(grid->currentRow(), 2);
    EXPECT_EQ(grid->currentColumn(), 3);
    EXPECT_EQ(grid->selectedItems().size(), 1);
    drag(centre(2, 3), QPoint(-20, -40)); // dragged out of the grid
    EXPECT_EQ(FsDaten, before);
}

TEST_F(TableWindows, WhatIsUnreadOrUnwrittenIsMarked)
{
    openRoutes();
    const auto shown = [this](const char *name) {
        return !window->findChild<QLabel *>(QLatin1String(name))->isHidden();
    };
    EXPECT_TRUE(shown("NichtGelesenLbl"));
    QApplication::sendPostedEvents();
    const QRect place = grid->geometry();
    EXPECT_EQ(window->focusWidget(), button("LeseFSDatenBut"));
    EXPECT_TRUE(button("LeseFSDatenBut")->isDefault());
    EXPECT_EQ(grid->accessibleDescription(), QStringLiteral("Noch nicht gelesen"));
    button("LeseFSDatenBut")->click();
    EXPECT_FALSE(button("LeseFSDatenBut")->isDefault());
    EXPECT_EQ(window->focusWidget(), grid);
    EXPECT_TRUE(grid->accessibleDescription().isEmpty());
    type(3, 1, "4097");
    EXPECT_EQ(grid->text(3, 1), QStringLiteral("ERR!"));
    EXPECT_EQ(grid->item(3, 1)->toolTip(), QStringLiteral("erlaubt sind 1 bis 4096, gespeichert bleibt -"));
    button("LeseFSDatenBut")->click();
    EXPECT_TRUE(grid->item(3, 1)->toolTip().isEmpty());
    EXPECT_FALSE(shown("NichtGelesenLbl"));
    EXPECT_FALSE(shown("GeaendertLbl"));
    click(0, 3); // the route is "occupied" already
    EXPECT_TRUE(UnwrittenTables().isEmpty());
    grid->setCurrentCell(3, 1);
    soon([this] {
        EXPECT_EQ(grid->inputBox()->text(), QStringLiteral("7"));
        Press(grid->inputBox(), Qt::Key_Return);
    });
    QKeyEvent seven(QEvent::KeyPress, Qt::Key_7, Qt::NoModifier, QStringLiteral("7"));
    QApplication::sendEvent(grid, &seven); // a digit begins the input
    EXPECT_EQ(row(3), "7||X");
    EXPECT_TRUE(shown("GeaendertLbl"));
    QApplication::sendPostedEvents();
    EXPECT_EQ(grid->geometry(), place) << "the next click hits the column below the pointer";
    EXPECT_EQ(UnwrittenTables(), QStringList{QStringLiteral("Fahrstraßendaten ändern")});
    user.acceptAnyBox();
    handheld().settings.present = false;
    button("SchreibeFSDatenBut")->click();
    EXPECT_TRUE(shown("GeaendertLbl")) << "it could not be written";
    handheld().settings.present = true;
    button("SchreibeFSDatenBut")->click();
    EXPECT_FALSE(shown("GeaendertLbl"));
    EXPECT_TRUE(UnwrittenTables().isEmpty());
}

TEST_F(TableWindows, CellsAreCopiedPastedFilledAndTakenBack)
{
    openRoutes();
    button("LeseFSDatenBut")->click();
    edit("CopyAction", 0, 0, 1, 3);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("1\t4096\t\tX\n2\t-\tX\t"));
    edit("PasteAction", 2, 1, 2, 1, "7\r\n8\t\tX\r\n");
    edit("FillAction", 3, 1, 5, 3);
    edit("PasteAction", 1, 0, 1, 0, "-"); // nothing new
    type(6, 1, "9");
    const std::array<const char *, 7> shown{"4096||X", "-|X|", "7||X", "8||X", "8||X", "8||X", "9||X"};
    for (size_t i = 0; i < shown.size(); ++i)
        EXPECT_EQ(row(static_cast<int>(i)), shown.at(i)) << i;
    EXPECT_EQ((std::vector<int>(FsDaten.begin() + 8, FsDaten.begin() + 15)),
        (std::vector<int>{0, 7, 255, 255, 0, 8, 1})); // an address alone leaves the trigger

    const Routes before = FsDaten;
    const std::pair<const char *, const char *> refused[] = {
        {"5\n4097", "FS 80, Rm.Adr.: \"4097\" geht nicht, erlaubt sind Zahlen von 1 bis 4096."},
        {"5\tY", "FS 79, frei: \"Y\" geht nicht, erlaubt ist nur X oder nichts."},
        {"5\n6\n7", "Der Text hat mehr Zeilen oder Spalten, als von der markierten Zelle an Platz haben."},
        {"\n", "Die Zwischenablage enthält keinen Text."}};
    for (const auto &[text, reason] : refused) {
        user.expect(
            QString::fromUtf8(reason) + QStringLiteral("\rEs wurde nichts geändert."), QStringLiteral("Einfügen"));
        edit("PasteAction", 78, 1, 78, 1, text);
        EXPECT_EQ(FsDaten, before) << text;
        EXPECT_EQ(row(78), "-||X");
    }
    const auto undo = [this](int steps) {
        for (int i = 0; i < steps; ++i)
            grid->findChild<QAction *>(QStringLiteral("UndoAction"))->trigger();
    };
    undo(3);
    EXPECT_EQ(row(3), "-||X");
    EXPECT_TRUE(UnwrittenTables().isEmpty());
    grid->findChild<QAction *>(QStringLiteral("RedoAction"))->trigger();
    EXPECT_EQ(row(2), "7||X");
    button("SchreibeFSDatenBut")->click();
    EXPECT_TRUE(UnwrittenTables().isEmpty());
    undo(1); // also what is written
    EXPECT_FALSE(UnwrittenTables().isEmpty());
    button("LeseFSDatenBut")->click();
    undo(1);
    EXPECT_EQ(row(2), "7||X");
}

TEST_F(TableWindows, SymbolsArePastedAndPickedForSeveralRows)
{
    open(OpenAccessoryListEditor, "MagListeWin");
    button("LeseMagListeBut")->click();
    edit("PasteAction", 3, 1, 3, 1, "12\tab\t7");
    EXPECT_EQ(row(3), "12|AB||#");
    user.expect(QStringLiteral("Platz 5, Bez.: \"ABC\" geht nicht, erlaubt sind höchstens 2 Zeichen."
                               "\rEs wurde nichts geändert."),
        QStringLiteral("Einfügen"));
    edit("PasteAction", 4, 2, 4, 2, "ABC");
    user.expect(QStringLiteral("Platz 5, Symbol: \"256\" geht nicht, erlaubt sind Symbolnummern von 0 bis 255."
                               "\rEs wurde nichts geändert."),
        QStringLiteral("Einfügen"));
    edit("PasteAction", 4, 4, 4, 4, "256");
    window->hide();
    open(OpenAssignmentEditor, "MagSymZuordWin");
    grid->setCurrentCell(4, 1);
    grid->setRangeSelected({4, 0, 6, 2}, true);
    soon([this] {
        click(0, 1); // refused, and changes no mark that counts
        Q_EMIT topLevel("MagSymWin")->findChild<Grid *>()->cellActed(5, 0);
    });
    Press(grid, Qt::Key_Return);
    EXPECT_EQ(
        (std::vector<int>(MagZuordDaten.begin() + 3, MagZuordDaten.begin() + 8)), (std::vector<int>{0, 5, 5, 5, 0}));
    edit("CopyAction", 6, 0, 7, 2);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("7\t5\n8\t0"));
    edit("PasteAction", 7, 0, 9, 2, "7");
    EXPECT_EQ(MagZuordDaten.at(9), 7);
    EXPECT_EQ(row(9), "|#");
}

} // namespace hr::tests
