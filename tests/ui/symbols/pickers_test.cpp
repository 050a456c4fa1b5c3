#include "shown/catalogue.h"
#include "tests/support/window_world.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
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
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && widget->findChild<QLineEdit *>(QStringLiteral("SuchTxt")) != nullptr)
                    picker = widget;
            }
            ASSERT_NE(picker, nullptr);
            actions();
            picker->close();
        });
        return PickSymbol(kind, present);
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
        type(search(), Qt::Key_Return);
        EXPECT_TRUE(picker->isVisible()) << "more than one is left";
        type(search(), Qt::Key_Down);
        EXPECT_EQ(picker->focusWidget(), grid()) << "to what was found";
        search()->setText(QStringLiteral("bmp"));
        EXPECT_TRUE(shownRows().isEmpty());
        type(grid(), Qt::Key_Return);
        type(search(), Qt::Key_Return);
        EXPECT_TRUE(picker->isVisible()) << "a hidden row is never chosen";
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
                      type(search(), Qt::Key_Escape);
                  },
                  7),
        NothingChosen);
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
