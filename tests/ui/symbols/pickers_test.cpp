#include "shown/catalogue.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

namespace hr::tests
{

class Pickers : public WindowWorld
{
protected:
    /// Lets the user act in the picker and returns what was picked; a picker still open is cancelled.
    int pick(const std::function<void()> &actions, int present = 0, SymbolKind kind = SymbolKind::Function)
    {
        events.after(300'000, [&] {
            findPicker();
            ASSERT_NE(picker, nullptr);
            actions();
            picker->close();
        });
        return PickSymbol(kind, present);
    }

    void findPicker()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->findChild<QLineEdit *>(QStringLiteral("SuchTxt")) != nullptr)
                picker = widget;
        }
    }

    Grid *grid() { return picker->findChild<Grid *>(); }
    QLineEdit *search() { return picker->findChild<QLineEdit *>(QStringLiteral("SuchTxt")); }
    QCheckBox *usedOnly() { return picker->findChild<QCheckBox *>(QStringLiteral("NurBelegteChk")); }

    QList<int> shownRows()
    {
        QList<int> rows;
        for (int row = 0; row < grid()->rowCount(); ++row) {
            if (!grid()->isRowHidden(row))
                rows += row;
        }
        return rows;
    }

    QList<int> shownRecent()
    {
        QList<int> numbers;
        for (int i = 0; i < 8; ++i) {
            const auto *box = picker->findChild<PictureBox *>(QStringLiteral("Zuletzt") + QString::number(i));
            if (!box->isHidden())
                numbers += box->toolTip().section(u' ', 0, 0).toInt();
        }
        return numbers;
    }

    static void type(QWidget *target, int key, const QString &text = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(target, &event);
    }

    QWidget *picker = nullptr;
};

TEST_F(Pickers, SearchHidesRowsByNumberAndByDescription)
{
    ASSERT_TRUE(SymbolPicture(SymbolKind::Function, 200, 0).isNull());
    EnterSymbolFile(SymbolKind::Function, 200, 1, QStringLiteral("200 Rauchgenerator %ON%.bmp"));
    EnterSymbolFile(SymbolKind::Function, 201, 1, QStringLiteral("201 Rauch aus %ON%.bmp"));
    const int chosen = pick([this] {
        EXPECT_EQ(shownRows().size(), grid()->rowCount());
        EXPECT_EQ(picker->focusWidget(), grid());
        type(grid(), Qt::Key_2, QStringLiteral("2"));
        EXPECT_EQ(picker->focusWidget(), search()) << "typing in the grid searches";
        type(search(), Qt::Key_0, QStringLiteral("0"));
        for (const int row : {20, 200, 209})
            EXPECT_TRUE(shownRows().contains(row)) << row;
        for (const int row : {2, 12, 21, 199, 210})
            EXPECT_FALSE(shownRows().contains(row)) << row;
        search()->setText(QStringLiteral(" rAUCH "));
        EXPECT_TRUE(shownRows().contains(200));
        EXPECT_TRUE(shownRows().contains(201));
        EXPECT_FALSE(shownRows().contains(202));
        type(search(), Qt::Key_Escape);
        EXPECT_TRUE(search()->text().isEmpty() && picker->isVisible()) << "the first one empties the search";
        search()->setText(QStringLiteral("20"));
        EXPECT_EQ(grid()->currentRow(), 20) << "an exact number before 200";
        search()->setText(QStringLiteral("LAMPE"));
        search()->setText(QStringLiteral("rauch"));
        EXPECT_EQ(grid()->currentRow(), 10) << "the whole name before longer ones";
        type(search(), Qt::Key_Down);
        EXPECT_EQ(picker->focusWidget(), grid()) << "to what was found";
        search()->setText(QStringLiteral("bmp"));
        EXPECT_TRUE(shownRows().isEmpty());
        type(grid(), Qt::Key_Return);
        type(search(), Qt::Key_Return);
        EXPECT_TRUE(picker->isVisible()) << "a hidden row is never chosen";
        search()->setText(QStringLiteral("rauch"));
        type(grid(), Qt::Key_Down);
        search()->setText(QStringLiteral("rauchg"));
        EXPECT_EQ(grid()->currentRow(), 200);
        EXPECT_EQ(grid()->text(200, 0), u"200");
        type(search(), Qt::Key_Return);
    });
    EXPECT_EQ(chosen, 200);
    EXPECT_EQ(pick(
                  [this] {
                      EXPECT_TRUE(search()->text().isEmpty());
                      EXPECT_EQ(shownRows().size(), grid()->rowCount());
                      EXPECT_EQ(grid()->currentRow(), 7);
                      for (QAction *action : picker->actions()) {
                          if (action->shortcut() == QKeySequence(Qt::CTRL | Qt::Key_F))
                              action->trigger();
                      }
                      EXPECT_EQ(picker->focusWidget(), search());
                      type(search(), Qt::Key_Escape); // nothing to be emptied: it closes
                  },
                  7),
        NothingChosen);
}

TEST_F(Pickers, FunctionsAreAWordAndTwoEntersEach)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    Grid *functions = window().findChild<Grid *>(QStringLiteral("FktTab"));
    functions->setCurrentCell(1, 1);
    const std::pair<const char *, int> words[] = {{"horn", 16}, {"glocke", 18}, {"20", 20}};
    for (const auto &[word, symbol] : words) {
        const int row = functions->currentRow();
        events.after(300'000, [&, typed = word] {
            findPicker();
            ASSERT_NE(picker, nullptr);
            EXPECT_EQ(picker->findChild<QLabel *>(QStringLiteral("ZweckLbl"))->text(),
                QStringLiteral("Symbol für f%1").arg(row));
            for (const char *letter = typed; *letter != 0; ++letter)
                type(picker->focusWidget(), Qt::Key_unknown, QString(QLatin1Char(*letter)));
            type(search(), Qt::Key_Return);
        });
        type(functions, Qt::Key_Return);
        EXPECT_EQ(FktSymbol.at(static_cast<size_t>(row)), symbol);
        EXPECT_EQ(functions->currentRow(), row + 1);
    }
}

TEST_F(Pickers, OnlySymbolsWithPicturesOnDemand)
{
    EnterSymbolFile(SymbolKind::Function, 200, 1, QStringLiteral("200 Datei fehlt %ON%.bmp"));
    const int chosen = pick(
        [this] {
            usedOnly()->setChecked(true);
            const QList<int> rows = shownRows();
            EXPECT_FALSE(rows.contains(200));
            EXPECT_FALSE(rows.isEmpty());
            for (int row = 0; row < grid()->rowCount(); ++row) {
                const bool pictures = !SymbolPicture(SymbolKind::Function, row, 0).isNull()
                    || !SymbolPicture(SymbolKind::Function, row, 1).isNull();
                EXPECT_EQ(rows.contains(row), pictures) << row;
            }
            EXPECT_TRUE(rows.contains(grid()->currentRow())) << "Enter never chooses what is not seen";
            type(grid(), Qt::Key_Return);
        },
        200);
    EXPECT_NE(chosen, 200);
    EXPECT_NE(chosen, NothingChosen);
    pick([this] { EXPECT_TRUE(usedOnly()->isChecked()); });
}

TEST_F(Pickers, AClickMeansItsRowWhateverKeyIsHeldAndWhereverItEndsInTheRow)
{
    const auto drag = [this](int from, int to, Qt::KeyboardModifiers held) {
        const auto centre = [this](int column) { return grid()->visualItemRect(grid()->item(5, column)).center(); };
        Mouse(QEvent::MouseButtonPress, grid()->viewport(), centre(from), held);
        Mouse(QEvent::MouseButtonRelease, grid()->viewport(), centre(to), held);
    };
    for (const auto held : {Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier}) {
        EXPECT_EQ(pick([&] { drag(1, 1, held); }), 5) << held;
        EXPECT_EQ(pick([&] { drag(0, 2, held); }), 5) << held;
        EXPECT_EQ(pick([&] { // into another row: no click
            const QPoint first = grid()->visualItemRect(grid()->item(5, 1)).center();
            const QPoint second = grid()->visualItemRect(grid()->item(6, 1)).center();
            Mouse(QEvent::MouseButtonPress, grid()->viewport(), first, held);
            Mouse(QEvent::MouseButtonRelease, grid()->viewport(), second, held);
        }),
            NothingChosen);
    }
}

TEST_F(Pickers, TheLastUsedSymbolsAreOnTop)
{
    pick([this] { EXPECT_TRUE(shownRecent().isEmpty()); });
    for (const int number : {1, 2, 3, 4, 5, 6, 7, 8, 9, 3})
        EXPECT_EQ(pick([&] { Q_EMIT grid()->cellActed(number, 0); }), number);
    const int chosen = pick([this] {
        EXPECT_EQ(shownRecent(), (QList<int>{3, 9, 8, 7, 6, 5, 4, 2}));
        EXPECT_EQ(picker->focusWidget(), grid());
        Q_EMIT picker->findChild<PictureBox *>(QStringLiteral("Zuletzt2"))->clicked();
    });
    EXPECT_EQ(chosen, 8);
    pick([this] { EXPECT_TRUE(shownRecent().isEmpty()) << "each kind has its own"; }, 0, SymbolKind::Accessory);
    const int loco = pick([this] { Q_EMIT grid()->cellActed(21, 0); }, 0, SymbolKind::Loco);
    EXPECT_EQ(loco, 21);
    pick(
        [this] {
            EXPECT_EQ(shownRecent(), QList<int>{21});
            const QRect grids(grid()->mapTo(picker, QPoint()), grid()->size());
            EXPECT_LE(grids.right(), picker->width());
        },
        0, SymbolKind::Loco);
}

} // namespace hr::tests
