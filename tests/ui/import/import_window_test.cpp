#include "ui/import/import_window.h"

#include "handheld/discovery.h"
#include "handheld/known_locos.h"
#include "link/open_link.h"
#include "program/branding.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/widgets/grid.h"

#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace hr::tests
{

class Import : public WindowWorld
{
protected:
    void SetUp() override
    {
        WindowWorld::SetUp();
        layout().station.settings.present = true;
        layout().station.locos = sim::DemoStationLocos();
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
};

TEST_F(Import, TheWindowCorrectsSendsAndSaves)
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
    user.expect(question, title, QStringLiteral("Ja"));
    user.expect(QStringLiteral("2 Loks in den Handregler geschrieben."), title);
    press("SendenBut");
    EXPECT_EQ(LokName(), QStringLiteral("-leer-")) << "the editor's record stays";
    EXPECT_EQ(flashBytes(3 * 64 + 33, 24), before.mid(33, 24)) << "the station knows no function symbols";
    EXPECT_TRUE(ReadLocoRecord(24).ok());
    EXPECT_EQ(LokName(), QStringLiteral("STRASSE 0123456789012"));
    EXPECT_EQ(FktModus.at(0), 1);
    EXPECT_EQ(LokSymbol, 8);
}

TEST_F(Import, RowsAreSortedAndMarkedWhereTheHandheldHasTheLoco)
{
    trigger("LokDataMenu");
    auto *grid = importWindow()->findChild<Grid *>(QStringLiteral("LokImportTab"));
    const auto known = [grid](int row) { return !grid->item(row, 0)->icon().isNull(); };
    EXPECT_EQ(grid->text(0, 0), QStringLiteral("3"));
    EXPECT_FALSE(known(0)) << "nothing has been read yet";
    EXPECT_TRUE(ReadLocoRecord(3).ok());
    flash().setBytes(24 * 64, QByteArray(64, '\xFF'));
    EXPECT_TRUE(ReadLocoRecord(24).ok());
    importWindow()->hide();
    trigger("LokDataMenu");
    EXPECT_TRUE(known(0));
    const QIcon mark = grid->item(0, 0)->icon();
    EXPECT_EQ(mark.pixmap(mark.availableSizes().constFirst()).toImage().pixelColor(0, 0).alpha(), 0)
        << "no white square on a dark window";
    EXPECT_TRUE(grid->item(0, 0)->toolTip().contains(KnownLocoName(3)));

    grid->selectRow(0);
    for (const bool descending : {false, true}) {
        Q_EMIT grid->horizontalHeader()->sectionClicked(0);
        QList<int> addresses;
        for (int row = 0; row < grid->rowCount(); ++row) {
            addresses += grid->text(row, 0).toInt();
            EXPECT_EQ(grid->selectionModel()->isRowSelected(row), addresses.last() == 3);
            EXPECT_EQ(known(row), addresses.last() == 3);
            EXPECT_EQ(row == grid->currentRow(), addresses.last() == 3) << "F2 and F4 mean the selected loco";
        }
        EXPECT_TRUE(descending ? std::is_sorted(addresses.rbegin(), addresses.rend())
                               : std::is_sorted(addresses.begin(), addresses.end()));
    }
    TheLink().HandreglerGefunden = false;
    EXPECT_TRUE(FindHandheld().ok()); // perhaps another one
    importWindow()->hide();
    trigger("LokDataMenu");
    EXPECT_FALSE(known(0));
}

TEST_F(Import, ASecondSmallerDownloadReplacesTheFirst)
{
    trigger("LokDataMenu");
    importWindow()->findChild<QLineEdit *>(QStringLiteral("FilterTxt"))->setText(QStringLiteral("4"));
    layout().station.locos.resize(2);
    trigger("LokDataMenu");
    EXPECT_EQ(importWindow()->findChild<Grid *>(QStringLiteral("LokImportTab"))->rowCount(), 2);
}

} // namespace hr::tests
