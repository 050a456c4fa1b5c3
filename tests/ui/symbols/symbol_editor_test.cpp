#include "ui/symbols/symbol_editor.h"

#include "link/message_layer.h"
#include "link/open_link.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/symbols/pixel_editor.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>

namespace hr::tests
{

class SymbolEditors : public WindowWorld
{
protected:
    QWidget *topLevel(const char *name)
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String(name) && widget->isVisible())
                return widget;
        }
        return nullptr;
    }

    /// While a picker waits: act on it after some time.
    void later(std::function<void()> action) { events.after(300'000, std::move(action)); }

    QStringList filesOf(const char *subfolder, int number)
    {
        const QDir dir(folder.path() + QStringLiteral("/konf/") + QLatin1String(subfolder));
        return dir.entryList({QString::number(number) + QStringLiteral(" *")}, QDir::Files, QDir::Name);
    }

    void press(QWidget *target, QPoint at, Qt::MouseButton mouseButton)
    {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(at), target->mapToGlobal(QPointF(at)), mouseButton,
            mouseButton, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    }

    const QString descriptionTitle = QStringLiteral("Symbol Daten sichern");
    const QString prompt = QStringLiteral("Kurzbeschreibung:");
};

TEST_F(SymbolEditors, WritingReplacesOnlyThatHalfAndThatFile)
{
    const QByteArray area = flashBytes(0x0F0000, 0x4000);
    field("FunksymTxt")->setText(QStringLiteral("14"));
    click("LeseFktSymBut");
    field("FunksymTxt")->setText(QStringLiteral("200"));
    for (const char *description : {"Erste", "Zweite", "Zweite"}) { // the last one replaces itself
        user.expect(prompt, descriptionTitle, QString::fromUtf8(description));
        click("SchreibeFktSymBut");
    }
    window().findChild<QRadioButton *>(QStringLiteral("ONOFF1"))->setChecked(true);
    user.expect(prompt, descriptionTitle, QStringLiteral("Dritte"));
    click("SchreibeFktSymBut");
    EXPECT_EQ(filesOf("LokfktSymbole", 200),
        (QStringList{QStringLiteral("200 Dritte %OFF%.bmp"), QStringLiteral("200 Zweite %ON%.bmp")}));
    QByteArray expected = area;
    expected.replace(200 * 64, 30, area.mid(14 * 64, 30));
    expected.replace(200 * 64 + 32, 30, area.mid(14 * 64, 30));
    EXPECT_EQ(flashBytes(0x0F0000, 0x4000), expected);
    EXPECT_EQ(Katalog(SymbolKind::Function).at(200).at(1), QStringLiteral("200 Zweite %ON%.bmp"));
}

TEST_F(SymbolEditors, RefusedDescriptionsLeaveDiskAndFlashAlone)
{
    field("MagsymTxt")->setText(QStringLiteral("60"));
    const int programs = flash().state.executed.at(0x83);
    user.expect(prompt, descriptionTitle, QString());
    click("SchreibeMagSymBut");
    EnterSymbolFile(SymbolKind::Accessory, 60, CatalogueHalf(SymbolKind::Accessory, HalfOn),
        QStringLiteral("60 Signal %GRN%.bmp"));
    QString proposed = QStringLiteral("Signal");
    for (const char *wrong : {"a/b", "a\\b", "x:y", "*", "?", "\"", "<", ">", "|", "tab\there", "A %rot%"}) {
        user.expect(prompt, descriptionTitle, QString::fromUtf8(wrong));
        const QString reason = QString::fromUtf8(wrong).contains(u'%')
            ? QStringLiteral("Die Kurzbeschreibung darf %ROT% nicht enthalten!")
            : QStringLiteral("Die Kurzbeschreibung darf keines dieser Zeichen enthalten: / \\ : * ? \" < > |");
        user.expect(reason, QStringLiteral("Fehler!"));
        click("SchreibeMagSymBut");
        EXPECT_EQ(user.textProposal, proposed) << "what was typed is not lost";
        proposed = QString::fromUtf8(wrong);
    }
    EXPECT_TRUE(filesOf("MagSymbole", 60).isEmpty());
    EXPECT_EQ(flash().state.executed.at(0x83), programs);
}

TEST_F(SymbolEditors, EachEditorKeepsItsPictureAcrossOtherTransfers)
{
    const QByteArray loco = flashBytes(0x110000 + 3 * 512, 98);
    field("LokSymNrTxt")->setText(QStringLiteral("3"));
    click("LeseLoksymbolBut");
    field("MagsymTxt")->setText(QStringLiteral("5"));
    click("LeseMagSymBut");
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    field("LokSymNrTxt")->setText(QStringLiteral("61"));
    user.expect(prompt, descriptionTitle, QStringLiteral("Kopie"));
    click("SchreibeLoksymbolBut");
    EXPECT_EQ(flashBytes(0x110000 + 61 * 512, 98), loco);
}

TEST_F(SymbolEditors, PickersReturnTheChosenRowOrNothing)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    Grid *grid = window().findChild<Grid *>(QStringLiteral("FktTab"));
    later([this] { Q_EMIT topLevel("LokFktWin")->findChild<Grid *>()->cellActed(33, 1); });
    Q_EMIT grid->cellActed(4, 1);
    EXPECT_EQ(FktSymbol.at(4), 33);
    const std::function<void(QWidget *)> cancels[] = {[](QWidget *w) { w->close(); },
        [](QWidget *w) { w->findChild<QPushButton *>(QStringLiteral("OKButton"))->click(); },
        [](QWidget *w) {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QApplication::sendEvent(w, &escape);
        }};
    for (const auto &cancel : cancels) {
        later([&] { cancel(topLevel("LokFktWin")); });
        Q_EMIT grid->cellActed(4, 2);
        EXPECT_EQ(FktSymbol.at(4), 33);
        EXPECT_EQ(GewaehltesSymbol, NothingChosen);
    }
    later([this] { Q_EMIT topLevel("LokSymWin")->findChild<Grid *>()->cellActed(21, 0); });
    Q_EMIT window().findChild<PictureBox *>(QStringLiteral("LokSymPic"))->clicked();
    EXPECT_EQ(LokSymbol, 21);
    EXPECT_EQ(topLevel("LokSymWin"), nullptr);
    later([this] { Q_EMIT topLevel("MagSymWin")->findChild<Grid *>()->cellActed(40, 0); });
    QKeyEvent f4(QEvent::KeyPress, Qt::Key_F4, Qt::NoModifier);
    QApplication::sendEvent(field("MagsymTxt"), &f4);
    events.run(1);
    EXPECT_EQ(field("MagsymTxt")->text(), QStringLiteral("40"));
}

TEST_F(SymbolEditors, ClosingTheProgramEndsAPick)
{
    later([this] { window().close(); });
    Q_EMIT window().findChild<Grid *>(QStringLiteral("FktTab"))->cellActed(4, 1);
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
    EXPECT_EQ(topLevel("LokFktWin"), nullptr);
}

TEST_F(SymbolEditors, PaintingIsCommittedByOkAndByClosing)
{
    field("FunksymTxt")->setText(QStringLiteral("200"));
    click("LeseFktSymBut");
    later([this] {
        QWidget *editor = topLevel("Pixeledit");
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(editor->width(), 5120 / 15);
        auto *canvas = editor->findChild<QWidget *>(QStringLiteral("Pixel"));
        press(canvas, {20, 20}, Qt::LeftButton);                     // top left
        press(canvas, {20 + 13 * 15, 20 + 13 * 15}, Qt::LeftButton); // bottom right
        press(canvas, {35, 20}, Qt::MiddleButton);
        editor->close();
    });
    click("EditFktSymBut");
    EXPECT_EQ(SpiBuf.at(6 + 26), 0x80);
    EXPECT_EQ(SpiBuf.at(7), 0x04);
    later([this] {
        QWidget *editor = topLevel("Pixeledit");
        EXPECT_TRUE(editor->findChild<QPushButton *>(QStringLiteral("SaveBMPBut"))->isEnabled());
        press(editor->findChild<QWidget *>(QStringLiteral("Pixel")), {20, 20}, Qt::RightButton);
        editor->findChild<QPushButton *>(QStringLiteral("OK_but"))->click();
    });
    click("EditFktSymBut");
    EXPECT_EQ(SpiBuf.at(6 + 26), 0);
    EXPECT_EQ(SpiBuf.at(4), 6);
    EXPECT_EQ(SpiBuf.at(5), 13);
}

TEST_F(SymbolEditors, LoadAndSaveInThePixelEditor)
{
    const QString wrong = folder.path() + QStringLiteral("/konf/LokSymbole/") + Katalog(SymbolKind::Loco).at(3).at(0);
    const QString right =
        folder.path() + QStringLiteral("/konf/MagSymbole/") + Katalog(SymbolKind::Accessory).at(3).at(0);
    const QString saved = folder.path() + QStringLiteral("/saved.bmp");
    const QString loadTitle = QStringLiteral("Öffne BMP File");
    user.expect(QStringLiteral("*.bmp"), loadTitle, wrong);
    user.expect(QStringLiteral("Fehler Bildbreite nicht richtig: 14 <> 48"), QStringLiteral("Fehler!"));
    user.expect(QStringLiteral("*.bmp"), loadTitle, QString());
    user.expect(QStringLiteral("*.bmp"), loadTitle, right);
    user.expect(QStringLiteral("*.bmp"), QStringLiteral("BMP File speichern"), saved);
    later([this] {
        QWidget *editor = topLevel("Pixeledit");
        for (int i = 0; i < 3; ++i)
            editor->findChild<QPushButton *>(QStringLiteral("LoadBMPBut"))->click();
        editor->findChild<QPushButton *>(QStringLiteral("ClrBut"))->click();
        editor->findChild<QPushButton *>(QStringLiteral("SaveBMPBut"))->click(); // the picture before Clr all
        editor->findChild<QPushButton *>(QStringLiteral("OK_but"))->click();
    });
    click("EditMagSymBut");
    QFile a(right);
    QFile b(saved);
    ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    EXPECT_EQ(a.readAll(), b.readAll());
    EXPECT_EQ(std::count(SpiBuf.begin() + 6, SpiBuf.begin() + 34, 0), 28);
}

TEST_F(SymbolEditors, StartImageIsReadPaintedAndWrittenOnYes)
{
    const QByteArray before = flashBytes(0x118000, 512);
    const QString question = QStringLiteral("Soll das Startbild in den Handregler geschrieben werden?");
    for (const char *answer : {"Nein", "Ja"}) {
        user.expect(question, QStringLiteral("Startbild ändern?"), QString::fromUtf8(answer));
        events.after(6'000'000, [this] {
            QWidget *editor = topLevel("Pixeledit");
            ASSERT_NE(editor, nullptr);
            EXPECT_FALSE(editor->findChild<QPushButton *>(QStringLiteral("SaveBMPBut"))->isEnabled());
            editor->findChild<QPushButton *>(QStringLiteral("ClrBut"))->click();
            editor->close();
        });
        trigger("StartBildMenu");
        EXPECT_EQ(flashBytes(0x118000, 512) == before, QString::fromUtf8(answer) == u"Nein");
    }
    EXPECT_EQ(flashBytes(0x118000, 262), QByteArray("\x27\x19", 2).append(260, '\0'));
    EXPECT_EQ(flashBytes(0x118000 + 262, 250), before.mid(262));
}

TEST_F(SymbolEditors, APortLostWhileTheDescriptionIsAskedChangesNothing)
{
    field("FunksymTxt")->setText(QStringLiteral("200"));
    user.expect(prompt, descriptionTitle, QStringLiteral("Neu"));
    user.onBox = [this] {
        user.onBox = nullptr;
        port.hangUp();
        events.run(0.1);
        port.refuseOpens(1);
    };
    user.onSelection = [] { RequestEnd(); };
    user.acceptAnyBox();
    const QByteArray before = flashBytes(0x0F0000, 0x4000);
    click("SchreibeFktSymBut");
    EXPECT_TRUE(filesOf("LokfktSymbole", 200).isEmpty());
    EXPECT_EQ(flashBytes(0x0F0000, 0x4000), before);
    EXPECT_GE(user.boxes.size(), 2) << "the loss is told";
}

TEST_F(SymbolEditors, APictureReadWithATimeoutIsWrittenOnlyOnPurpose)
{
    field("FunksymTxt")->setText(QStringLiteral("200"));
    strike(&sim::Faults::lostAck, 1);
    user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
    click("LeseFktSymBut");
    layout().faults.set({});
    const QString question =
        QStringLiteral("Beim Lesen hat der Handregler nicht immer richtig geantwortet;\rdas Bild ist "
                       "vielleicht unvollständig. Soll trotzdem geschrieben werden?");
    user.expect(question, QStringLiteral("Achtung!"), QStringLiteral("Nein"));
    click("SchreibeFktSymBut");
    EXPECT_FALSE(user.defaultYes);
    EXPECT_TRUE(filesOf("LokfktSymbole", 200).isEmpty());
    user.expect(question, QStringLiteral("Achtung!"), QStringLiteral("Ja"));
    user.expect(prompt, descriptionTitle, QStringLiteral("Egal"));
    click("SchreibeFktSymBut");
    EXPECT_EQ(flashBytes(0x0F0000 + 200 * 64, 2), QByteArray("\x06\x0D", 2)) << "the size bytes fit in any case";
    click("LeseFktSymBut");
    user.expect(prompt, descriptionTitle, QStringLiteral("Gut")); // no question any more
    click("SchreibeFktSymBut");
}

TEST_F(SymbolEditors, FilesWithoutANumberAndInAnotherCaseStay)
{
    const QString locos = folder.path() + QStringLiteral("/konf/LokSymbole/");
    QFile numberless(locos + QStringLiteral("Meine Lok.bmp"));
    ASSERT_TRUE(numberless.open(QIODevice::WriteOnly));
    numberless.close();
    for (const QString &file : filesOf("LokSymbole", 0))
        QFile::remove(locos + file);
    ScanCatalogues();
    ASSERT_EQ(Katalog(SymbolKind::Loco).at(0).at(0), QStringLiteral("Meine Lok.bmp"));
    user.expect(prompt, descriptionTitle, QStringLiteral("Null"));
    click("SchreibeLoksymbolBut"); // an empty field is number 0
    EXPECT_TRUE(QFile::exists(locos + QStringLiteral("Meine Lok.bmp")));
    EXPECT_EQ(filesOf("LokSymbole", 0), QStringList{QStringLiteral("0 Null.bmp")});

    EXPECT_FALSE(SymbolPicture(SymbolKind::Loco, 0, 0).isNull());
    user.expect(prompt, descriptionTitle, QStringLiteral("Neu"));
    const qint64 key = SymbolPicture(SymbolKind::Loco, 0, 0).cacheKey();
    click("SchreibeLoksymbolBut");
    EXPECT_NE(SymbolPicture(SymbolKind::Loco, 0, 0).cacheKey(), key) << "the written file is loaded anew";
}

TEST_F(SymbolEditors, ForeignMessagesDoNotReachAPictureUnderWork)
{
    const QByteArray before = flashBytes(0x118000, 262);
    user.expect(QStringLiteral("Soll das Startbild in den Handregler geschrieben werden?"),
        QStringLiteral("Startbild ändern?"), QStringLiteral("Ja"));
    user.onBox = [this] { // a memory transfer of somebody else, while the question is open
        sim::Bytes foreign(30, 0x55);
        foreign.at(0) = 0xE5;
        foreign.at(1) = 0x1F;
        layout().injectToPc(sim::WithChecksum(foreign));
        events.run(0.3);
    };
    events.after(6'000'000, [this] { topLevel("Pixeledit")->close(); });
    trigger("StartBildMenu");
    EXPECT_FALSE(user.defaultYes);
    EXPECT_EQ(flashBytes(0x118000 + 2, 260), before.mid(2));
}

} // namespace hr::tests
