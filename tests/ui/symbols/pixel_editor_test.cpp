#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/symbols/pixel_editor.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>

namespace hr::tests
{

class PixelEditing : public WindowWorld
{
protected:
    /// Opens the editor of function or loco symbols on an empty picture, acts in it and leaves it.
    void edit(const char *editButton, const std::function<void()> &actions)
    {
        bool acted = false;
        events.after(300'000, [&] {
            find();
            ASSERT_NE(editor, nullptr);
            press("ClrBut");
            actions();
            acted = true;
            press("OK_but");
        });
        click(editButton);
        EXPECT_TRUE(acted);
    }

    void find()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == u"Pixeledit" && widget->isVisible())
                editor = widget;
        }
    }

    [[nodiscard]] const EditedPicture &edited() const { return dynamic_cast<PixelEditor &>(*editor).edited(); }

    /// The top pixel row of the picture shown, '#' for black.
    [[nodiscard]] QString topRow() const
    {
        const int width = edited().SymbolWidth;
        QString row;
        for (int x = 0; x < width; ++x)
            row += edited().Pixel.at(static_cast<size_t>(width * (edited().SymbolHeight - 1) + x)) == Black ? u'#'
                                                                                                            : u'.';
        return row;
    }

    [[nodiscard]] int blackCells() const
    {
        const int cells = edited().SymbolWidth * edited().SymbolHeight;
        return static_cast<int>(std::count(edited().Pixel.begin(), edited().Pixel.begin() + cells, Black));
    }

    void press(const char *name) { editor->findChild<QPushButton *>(QLatin1String(name))->click(); }

    /// What a key combination does in the editor: the one command that is bound to it.
    void keys(const QKeySequence &combination)
    {
        QList<QAction *> bound;
        for (QAction *action : editor->actions()) {
            if (action->shortcuts().contains(combination))
                bound += action;
        }
        ASSERT_EQ(bound.size(), 1) << combination.toString().toStdString();
        bound.constFirst()->trigger(); // nothing happens when it is disabled
    }
    void keys(QKeyCombination combination) { keys(QKeySequence(combination)); }

    void mouse(QEvent::Type type, int column, int row, Qt::MouseButtons held)
    {
        auto *canvas = editor->findChild<QWidget *>(QStringLiteral("Pixel"));
        const QPointF at(20 + column * 15, 20 + row * 15);
        QMouseEvent event(type, at, canvas->mapToGlobal(at),
            type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(canvas, &event);
    }

    void stroke(int fromColumn, int toColumn, int row)
    {
        mouse(QEvent::MouseButtonPress, fromColumn, row, Qt::LeftButton);
        mouse(QEvent::MouseMove, toColumn, row, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, toColumn, row, Qt::NoButton);
    }

    QString saveImage(const char *name, const QImage &image)
    {
        QString path = folder.path() + u'/' + QLatin1String(name);
        EXPECT_TRUE(image.save(path, "PNG"));
        return path;
    }

    void expectFile(const QString &path)
    {
        user.expect(QStringLiteral("*.bmp"), QStringLiteral("Öffne BMP File"), path);
    }

    QWidget *editor = nullptr;
    const QKeyCombination undo = Qt::CTRL | Qt::Key_Z;
    const QKeyCombination redo = Qt::CTRL | Qt::Key_Y;
};

TEST_F(PixelEditing, AStrokeIsOneStep)
{
    edit("EditFktSymBut", [this] {
        stroke(0, 4, 0);
        stroke(8, 9, 0);
        stroke(8, 9, 0); // nothing changes: no step
        EXPECT_EQ(topRow(), u"#####...##....");
        keys(undo);
        EXPECT_EQ(topRow(), u"#####.........");
        keys(undo);
        EXPECT_EQ(topRow(), u"..............");
        keys(redo);
        keys(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
        EXPECT_EQ(topRow(), u"#####...##....");
        keys(undo);
        stroke(13, 13, 0); // what was taken back is gone for good now
        keys(redo);
        EXPECT_EQ(topRow(), u"#####........#");
        mouse(QEvent::MouseButtonPress, 6, 0, Qt::LeftButton);
        keys(undo); // the stroke under way
        mouse(QEvent::MouseMove, 8, 0, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, 8, 0, Qt::NoButton);
        EXPECT_EQ(topRow(), u"#####.###....#");
        keys(undo);
        EXPECT_EQ(topRow(), u"#####........#");
        press("ClrBut");
        keys(undo);
        EXPECT_EQ(topRow(), u"#####........#");
    });
    EXPECT_EQ(SpiBuf.at(6 + 26), 0xF8) << "what is committed is what was seen";
    events.after(300'000, [this] {
        find();
        keys(undo);
        EXPECT_EQ(topRow(), u"#####........#") << "steps of an earlier opening are over";
        press("OK_but");
    });
    click("EditFktSymBut");
}

TEST_F(PixelEditing, TheCellUnderTheCursorIsSaid)
{
    edit("EditFktSymBut", [this] {
        auto *canvas = editor->findChild<QWidget *>(QStringLiteral("Pixel"));
        const auto press = [canvas](Qt::Key key) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(canvas, &event);
            return QAccessible::queryAccessibleInterface(canvas)->text(QAccessible::Description);
        };
        EXPECT_EQ(press(Qt::Key_Right), QStringLiteral("Zeile 1, Spalte 2: weiß"));
        EXPECT_EQ(press(Qt::Key_Down), QStringLiteral("Zeile 2, Spalte 2: weiß"));
        EXPECT_EQ(press(Qt::Key_Space), QStringLiteral("Zeile 2, Spalte 2: schwarz"));
    });
}

TEST_F(PixelEditing, AStrokeThatLeavesTheWindowPaintsNothingThere)
{
    edit("EditFktSymBut", [this] {
        stroke(0, -6, 5);
        EXPECT_EQ(blackCells(), 1);
        stroke(2, -6, 5);
        EXPECT_EQ(blackCells(), 3);
    });
}

TEST_F(PixelEditing, ShiftingMirroringAndInvertingAreStepsOfTheirOwn)
{
    edit("EditFktSymBut", [this] {
        stroke(0, 1, 0);
        keys(Qt::CTRL | Qt::Key_Right);
        EXPECT_EQ(topRow(), u".##...........");
        keys(Qt::CTRL | Qt::Key_H);
        EXPECT_EQ(topRow(), u"...........##.");
        keys(Qt::CTRL | Qt::Key_Down);
        EXPECT_EQ(blackCells(), 2);
        EXPECT_EQ(topRow(), u"..............");
        keys(Qt::CTRL | Qt::Key_Up);
        keys(Qt::CTRL | Qt::Key_I);
        EXPECT_EQ(topRow(), u"###########..#");
        EXPECT_EQ(blackCells(), 14 * 14 - 2);
        keys(Qt::CTRL | Qt::Key_J);
        EXPECT_EQ(topRow(), u"##############");
        for (int i = 0; i < 6; ++i)
            keys(undo);
        EXPECT_EQ(topRow(), u"##............");
        keys(Qt::CTRL | Qt::Key_Left);
        keys(Qt::CTRL | Qt::Key_Right);
        EXPECT_EQ(topRow(), u".#............") << "what is pushed out is lost";
    });
}

TEST_F(PixelEditing, PicturesGoFromOneSymbolToAnother)
{
    edit("EditFktSymBut", [this] {
        stroke(0, 13, 0);
        stroke(0, 0, 13);
        keys(Qt::CTRL | Qt::Key_C);
    });
    EXPECT_EQ(QApplication::clipboard()->image().depth(), 1);
    edit("EditLokSymBut", [this] { // 17 columns and one line of room on each side
        keys(Qt::CTRL | Qt::Key_V);
        EXPECT_EQ(blackCells(), 15);
        EXPECT_EQ(topRow().count(u'#'), 0);
        keys(Qt::CTRL | Qt::Key_Up);
        EXPECT_EQ(topRow(), QString(17, u'.') + QString(14, u'#') + QString(17, u'.'));
        keys(undo);
        keys(undo);
        EXPECT_EQ(blackCells(), 0);
    });
    QImage photo(20, 14, QImage::Format_ARGB32);
    photo.fill(Qt::transparent);
    QPainter(&photo).fillRect(0, 0, 4, 14, QColor(120, 120, 120));
    QPainter(&photo).fillRect(4, 0, 4, 14, QColor(140, 140, 140));
    QApplication::clipboard()->setImage(photo);
    edit("EditFktSymBut", [this] {
        keys(Qt::CTRL | Qt::Key_V);
        EXPECT_EQ(topRow(), u"#.............") << "three columns are cut off on each side";
        QApplication::clipboard()->setText(QStringLiteral("kein Bild"));
        user.expect(QStringLiteral("In der Zwischenablage ist kein Bild."), QStringLiteral("Einfügen"));
        keys(Qt::CTRL | Qt::Key_V);
        EXPECT_EQ(blackCells(), 14);
    });
}

TEST_F(PixelEditing, PngFilesOfAnyDepthAndSizeAreLoaded)
{
    QImage image(14, 14, QImage::Format_RGB32);
    image.fill(QColor(140, 140, 140));
    image.setPixelColor(0, 0, QColor(120, 120, 120));
    image.setPixelColor(2, 0, Qt::black);
    const QString fitting = saveImage("passt.png", image);
    QImage wide(28, 14, QImage::Format_RGB32);
    wide.fill(Qt::black);
    const QString tooWide = saveImage("breit.png", wide);
    const QString question =
        QStringLiteral("Das Bild hat 28 × 14 statt 14 × 14 Bildpunkte. Soll es eingepasst werden?");
    edit("EditFktSymBut", [&] {
        // A photo: Escape leaves the picture, brighter takes the grey pixel away, Enter takes what is seen.
        struct Row {
            int steps;
            Qt::Key end;
            QString top;
        };
        for (const auto &[steps, end, top] :
            {Row{0, Qt::Key_Escape, QString(14, u'.')}, Row{1, Qt::Key_Return, QStringLiteral("..#...........")},
                Row{0, Qt::Key_Return, QStringLiteral("#.#...........")}}) {
            expectFile(fitting);
            events.after(300'000, [count = steps, key = end] {
                auto *dialog = QApplication::activeModalWidget();
                ASSERT_TRUE(dialog != nullptr && dialog->objectName() == u"HelligkeitWin");
                for (int i = 0; i <= count; ++i) {
                    QKeyEvent event(QEvent::KeyPress, i < count ? Qt::Key_Right : key, Qt::NoModifier);
                    QApplication::sendEvent(dialog->focusWidget(), &event);
                }
            });
            press("LoadBMPBut");
            EXPECT_EQ(topRow(), top);
        }
        EXPECT_EQ(edited().bytes.at(2 + 26), 0xA0) << "loading changes the picture at once";
        for (const char *answer : {"Nein", "Ja"}) {
            expectFile(tooWide);
            user.expect(question, QStringLiteral("Bild einpassen?"), QString::fromUtf8(answer));
            press("LoadBMPBut");
            EXPECT_FALSE(user.defaultYes);
            EXPECT_EQ(blackCells(), QString::fromUtf8(answer) == u"Ja" ? 14 * 7 : 2);
        }
        EXPECT_EQ(topRow().count(u'#'), 0) << "centred";
        keys(undo);
        EXPECT_EQ(topRow(), u"#.#...........");
        EXPECT_EQ(edited().bytes.at(2 + 26), 0xA0) << "the picture goes back with the cells";
        QFile damaged(tooWide);
        ASSERT_TRUE(damaged.resize(30));
        expectFile(tooWide);
        user.expect(
            QStringLiteral("Die Datei \"%1\" kann nicht gelesen werden!").arg(tooWide), QStringLiteral("Fehler!"));
        press("LoadBMPBut");
        EXPECT_EQ(blackCells(), 2);
    });
}

TEST_F(PixelEditing, AnEditorLeftDuringTheQuestionKeepsItsPicture)
{
    QImage image(3, 3, QImage::Format_RGB32);
    image.fill(Qt::black);
    const QString small = saveImage("klein.png", image);
    events.after(300'000, [&] {
        find();
        press("ClrBut");
        expectFile(small);
        user.expect(QStringLiteral("Das Bild hat 3 × 3 statt 14 × 14 Bildpunkte. Soll es eingepasst werden?"),
            QStringLiteral("Bild einpassen?"), QStringLiteral("Ja"));
        user.onBox = [&] {
            if (user.boxes.constLast().contains(QStringLiteral("einpassen")))
                editor->close();
        };
        press("LoadBMPBut");
    });
    click("EditFktSymBut");
    EXPECT_EQ(std::count(SpiBuf.begin() + 6, SpiBuf.begin() + 34, 0), 28);
}

TEST_F(PixelEditing, TheBandShowsThePictureInTrueSizeAndTheCommands)
{
    for (const char *button : {"EditFktSymBut", "EditLokSymBut"}) {
        edit(button, [this] {
            auto *preview = editor->findChild<QWidget *>(QStringLiteral("VorschauPic"));
            auto *menuButton = editor->findChild<QWidget *>(QStringLiteral("BearbeitenBut"));
            const QRect band(0, edited().SymbolHeight * 15 + 400 / 15, editor->width(), 1000 / 15);
            for (const QWidget *extra : {preview, menuButton}) {
                EXPECT_TRUE(band.contains(extra->geometry())) << extra->objectName().toStdString();
                EXPECT_TRUE(extra->isVisible());
                for (const auto *other : editor->findChildren<QPushButton *>())
                    EXPECT_FALSE(other->geometry().intersects(extra->geometry()));
            }
            EXPECT_FALSE(preview->geometry().intersects(menuButton->geometry()));
            stroke(0, 2, 0);
            QImage shown(preview->size(), QImage::Format_RGB32);
            preview->render(&shown);
            EXPECT_EQ(shown.size(), QSize(edited().SymbolWidth + 4, edited().SymbolHeight + 4));
            EXPECT_EQ(shown.pixelColor(4, 2), QColor(Qt::black));
            EXPECT_EQ(shown.pixelColor(5, 2), QColor(Qt::white));
            EXPECT_EQ(shown.pixelColor(1, 2), QColor(Qt::white));
        });
    }
}

} // namespace hr::tests
