#include "ui/main_window.h"

#include "handheld/discovery.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/common/connection.h"
#include "ui/common/symbol_pictures.h"
#include "ui/guide_win.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"
#include "ui/widgets/row_names.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QTextBrowser>

namespace hr::tests
{

class MainWindowTest : public WindowWorld
{
protected:
    Grid *functions() { return window().findChild<Grid *>(QStringLiteral("FktTab")); }
    QLabel *label(const char *name) { return window().findChild<QLabel *>(QLatin1String(name)); }
    QCheckBox *multiUni() { return window().findChild<QCheckBox *>(QStringLiteral("MultiUniChk")); }

    void read(const char *address)
    {
        field("AdrTxt")->setText(QLatin1String(address));
        click("LeseLokDatensatzBut");
    }
};

TEST_F(MainWindowTest, ControlsAndMenusCarryTheirNamesAndCaptions)
{
    const std::pair<const char *, const char *> controls[] = {{"Label1", "Lokadresse:"}, {"Label2", "Lokname:"},
        {"Label3", "Symbol:"}, {"Label4", "Funktion"}, {"Label5", "Symbole"}, {"Label6", "Tastfunktion"},
        {"MultiUniChk", "identische Sym. für alle Funktionen"}, {"LeseLokDatensatzBut", "Lese Lokdatensatz"},
        {"SchreibeLokDatensatzBut", "Schreibe Lokdatensatz"}, {"ResetLokdatenBut", "Lokdatensatz löschen"},
        {"Label10", "0 .. 63"}, {"EditLokSymBut", "Edit Loksym."}, {"ONOFF0", "ON"}, {"ONOFF1", "OFF"},
        {"ONOFFMag0", "Grün"}, {"ONOFFMag1", "Rot"}, {"SchreibeMagSymBut", "Schreibe Mag.-Symbol"}};
    for (const auto &[name, caption] : controls) {
        const auto *control = window().findChild<QWidget *>(QString::fromUtf8(name));
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->property("text").toString(), QString::fromUtf8(caption)) << name;
    }
    QStringList menus;
    for (const QAction *menu : window().menuBar()->actions()) {
        menus += menu->text();
        for (const QAction *item : menu->menu()->actions())
            menus += u' ' + item->text();
    }
    EXPECT_EQ(menus.join(u'\n'),
        (QStringList{QStringLiteral("Datei"), QStringLiteral(" Daten eines Handreglers sichern"),
            QStringLiteral(" Datensicherung (Lokdatensätze) anzeigen"),
            QStringLiteral(" Datensicherung zurückschreiben"), QStringLiteral(" Beenden"), TheBranding().productLabel,
            QStringLiteral(" zurück in den Bedienmodus"), QStringLiteral(" alle Lokdatensätze löschen"),
            QStringLiteral(" -----------------------------"), QStringLiteral(" Abschaltzeit korrigieren"),
            QStringLiteral(" Funktionssymbole korrigieren"), QStringLiteral("Mag.Art. und Fahrstr."),
            QStringLiteral(" Mag.Art. Symbole zuordnen"), QStringLiteral(" Mag.Art. Liste ändern"),
            QStringLiteral(" Fahrstraßendaten ändern"), QStringLiteral(" Startbild ändern"),
            QStringLiteral("Zentralen"), QStringLiteral(" Zentrale auswählen"),
            u' ' + TheBranding().lokDataMenuCaption, QStringLiteral("Info"), QStringLiteral(" Zeichensatz"),
            QStringLiteral(" Hilfe"), QStringLiteral(" Programminfo"), QStringLiteral("Werkzeuge"),
            QStringLiteral(" Lokliste…"), QStringLiteral(" Vergleichen…"),
            QStringLiteral(" Letzte Änderung zurücknehmen…"), QStringLiteral(" Busmonitor…"),
            QStringLiteral(" Problembericht speichern…"), QStringLiteral(" Loks anzeigen"), QStringLiteral(" "),
            QStringLiteral(" Rückgängig"), QStringLiteral(" Wiederholen"), QStringLiteral(" "),
            QStringLiteral(" Lokdatensatz kopieren"), QStringLiteral(" Lokdatensatz einfügen"),
            QStringLiteral(" Funktionen kopieren"), QStringLiteral(" Funktionen einfügen"),
            QStringLiteral(" Funktionen auf andere Adressen übertragen…")}
                .join(u'\n')));
}

TEST_F(MainWindowTest, ReadChangeAndWriteARecord)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    const QString nameBefore = field("LoknameTxt")->text();
    EXPECT_FALSE(nameBefore.isEmpty());
    EXPECT_NE(nameBefore, QStringLiteral("-leer-"));
    const QByteArray before = flashBytes(0, 512);
    field("LoknameTxt")->setText(QStringLiteral("Müller 7"));
    Grid *grid = window().findChild<Grid *>(QStringLiteral("FktTab"));
    const QString mode = grid->text(5, 3);
    Q_EMIT grid->cellActed(5, 3);
    EXPECT_NE(grid->text(5, 3), mode);
    const QString word = mode == u"1" ? QStringLiteral("Dauerfunktion") : QStringLiteral("Tastfunktion");
    EXPECT_EQ(grid->model()->index(5, 3).data(Qt::AccessibleTextRole).toString(), word);
    click("SchreibeLokDatensatzBut");
    const char name[] = {22, 38, 21, 21, 14, 27, 39, 7};
    const QByteArray after = flashBytes(0, 512);
    EXPECT_EQ(after.mid(192, 21), QByteArray(name, 8).append(13, 39));
    EXPECT_EQ(after.at(192 + 28), static_cast<char>(before.at(192 + 28) ^ 0x20));
    EXPECT_EQ(after.mid(192 + 29, 3), before.mid(192 + 29, 3));
    EXPECT_EQ(after.mid(192 + 33, 24), before.mid(192 + 33, 24));
    EXPECT_EQ(after.at(192 + 61), before.at(192 + 61));
    EXPECT_EQ(after.left(192), before.left(192));
    EXPECT_EQ(after.mid(256), before.mid(256));
    EXPECT_EQ(user.progress.last(2),
        (QStringList{QStringLiteral("Lese Lokdatensatz"), QStringLiteral("Schreibe Lokdatensatz")}));
}

TEST_F(MainWindowTest, EmptyRecordsAreShownAndNotWritten)
{
    field("AdrTxt")->setText(QStringLiteral("5000"));
    click("LeseLokDatensatzBut");
    EXPECT_EQ(field("LoknameTxt")->text(), QStringLiteral("-leer-"));
    EXPECT_EQ(LokName(), QStringLiteral("-leer-"));
    user.expect(QStringLiteral("Der Lokdatensatz ist leer!\nEs wird nichts geschrieben!"), QStringLiteral("Achtung"));
    const int programs = flash().state.executed.at(0x83);
    click("SchreibeLokDatensatzBut");
    EXPECT_EQ(flash().state.executed.at(0x83), programs);
}

TEST_F(MainWindowTest, DeleteWorksWithoutHandheldInMemoryOnly)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    TheLink().HandreglerGefunden = false;
    const size_t messages = layout().bus.log.size();
    click("ResetLokdatenBut");
    EXPECT_EQ(layout().bus.log.size(), messages);
    EXPECT_EQ(LokName(), QString(22, QChar(0xFF)));
    EXPECT_EQ(field("LoknameTxt")->text(), QStringLiteral("-leer-"));
    TheLink().HandreglerGefunden = true;
    click("ResetLokdatenBut");
    EXPECT_EQ(flashBytes(192, 21), QByteArray(21, '\xFF'));
}

TEST_F(MainWindowTest, AnEmptyRecordStaysEmptyWhenWhatWasTypedIsTakenBack)
{
    const auto type = [this](int key, Qt::KeyboardModifiers held, const char *text) {
        QKeyEvent press(QEvent::KeyPress, key, held, QString::fromUtf8(text));
        QApplication::sendEvent(field("LoknameTxt"), &press);
    };
    field("AdrTxt")->setText(QStringLiteral("5000"));
    click("LeseLokDatensatzBut");
    type(Qt::Key_X, Qt::NoModifier, "x");
    EXPECT_EQ(LokName(), QStringLiteral("X-LEER-"));
    const QString empty = QStringLiteral("Der Lokdatensatz ist leer!\nEs wird nichts geschrieben!");
    const int programs = executed(0x83);
    for (const bool byField : {false, true}) { // by the record's undo, and by the field's own, as its menu does
        if (byField) {
            type(Qt::Key_X, Qt::NoModifier, "x");
            field("LoknameTxt")->undo();
        } else {
            type(Qt::Key_Z, Qt::ControlModifier, "");
        }
        EXPECT_EQ(field("LoknameTxt")->text(), QStringLiteral("-leer-"));
        user.expect(empty, QStringLiteral("Achtung"));
        click("SchreibeLokDatensatzBut");
    }
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    const LocoRecord read = CurrentLoco.record;
    Q_EMIT functions()->cellActed(5, 3);
    type(Qt::Key_X, Qt::NoModifier, "x");
    type(Qt::Key_Z, Qt::ControlModifier, "");
    EXPECT_NE(CurrentLoco.record, read) << "first what was typed";
    type(Qt::Key_Z, Qt::ControlModifier, "");
    EXPECT_EQ(CurrentLoco.record, read);
    EXPECT_EQ(executed(0x83), programs);
}

TEST_F(MainWindowTest, TheSecondHalfOfADoubleClickStaysWithTheWindowThatClosed)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    const QByteArray record = flashBytes(LocoRecordAddress(3), LocoRecordSize);
    QPushButton *deleteBut = button("ResetLokdatenBut");
    const QPoint place = deleteBut->mapToGlobal(deleteBut->rect().center());
    const auto mouse = [&place](QWidget *target, std::initializer_list<QEvent::Type> types) {
        for (const QEvent::Type type : types) {
            const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
            QMouseEvent event(type, target->rect().center(), QPointF(place), Qt::LeftButton, held, Qt::NoModifier);
            QApplication::sendEvent(target, &event);
        }
    };
    const auto press = QEvent::MouseButtonPress;
    const auto release = QEvent::MouseButtonRelease;
    struct Row {
        const char *opener;
        const char *window;
        const char *chooses;
    };
    for (const Row &row : {Row{"LokSymPic", "LokSymWin", "LokSymTab"}, Row{"EditLokSymBut", "Pixeledit", "OK_but"}}) {
        for (const int pause : {180'000, 1'000'000}) {
            SCOPED_TRACE(std::string(row.window) + " " + std::to_string(pause));
            click("LeseLokDatensatzBut");
            const QString name = LokName();
            events.after(300'000, [&] {
                for (QWidget *opened : QApplication::topLevelWidgets()) {
                    if (opened->objectName() != QLatin1String(row.window) || !opened->isVisible())
                        continue;
                    auto *target = opened->findChild<QWidget *>(QLatin1String(row.chooses));
                    auto *inside = target->findChild<QWidget *>(QStringLiteral("qt_scrollarea_viewport"));
                    mouse(inside != nullptr ? inside : target, {press, release});
                }
            });
            events.after(300'000 + pause, [&] {
                mouse(deleteBut, {pause < 500'000 ? QEvent::MouseButtonDblClick : press, release});
            });
            mouse(window().findChild<QWidget *>(QLatin1String(row.opener)), {press, release});
            events.run(1.5);
            EXPECT_EQ(LokName() == name, pause < 500'000);
            flash().setBytes(LocoRecordAddress(3), record);
        }
    }
}

TEST_F(MainWindowTest, WhatIsChangedAndNotWrittenIsMarkedAndNamedAtTheEnd)
{
    const auto marked = [this](const char *name) { return !label(name)->isHidden(); };
    const auto undo = [this] { window().findChild<QAction *>(QStringLiteral("UndoAction"))->trigger(); };
    window().show();
    EXPECT_FALSE(marked("GeaendertLbl")) << "nothing at the start";
    read("3");
    ClickCell(functions(), 5, 3, Qt::ControlModifier); // marks nothing here: a plain click
    EXPECT_TRUE(marked("GeaendertLbl"));
    const auto *undoAction = window().findChild<QAction *>(QStringLiteral("UndoAction"));
    EXPECT_TRUE(undoAction->isEnabled());
    undo();
    EXPECT_FALSE(undoAction->isEnabled()) << "grey while there is nothing to take back";
    EXPECT_FALSE(marked("GeaendertLbl"));
    click("ResetLokdatenBut");
    EXPECT_FALSE(marked("GeaendertLbl")) << "the handheld holds what is shown: nothing";
    EXPECT_TRUE(label("LetzteTatLbl")->text().startsWith(u"Lok 3 gelöscht, Strg+Z zeigt sie wieder, 10:0"));
    undo();
    EXPECT_TRUE(marked("GeaendertLbl"));
    EXPECT_EQ(label("WohinLbl")->text(), QStringLiteral("Lok 3 fehlt im Handregler"));

    field("LokSymNrTxt")->setText(QStringLiteral("5"));
    events.after(300'000, [] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() != u"Pixeledit" || !widget->isVisible())
                continue;
            widget->findChild<QAction *>(QStringLiteral("InvertAction"))->trigger();
            widget->close();
        }
    });
    click("EditLokSymBut");
    EXPECT_TRUE(marked("SchreibeLoksymbolButGeaendertLbl"));
    for (const char *answer : {"Nein", "Ja"}) {
        user.expect(QStringLiteral("Diese Änderungen sind nicht in den Handregler geschrieben:\rLokdatensatz 3\r%1\r"
                                   "Soll das Programm trotzdem beendet werden?")
                        .arg(SymbolWords(SymbolKind::Loco, 5, 0)),
            QStringLiteral("Beenden?"), QString::fromUtf8(answer));
        window().close();
        events.run(1);
        EXPECT_FALSE(user.defaultYes);
    }
    EXPECT_EQ(CurrentRunState(), RunState::Ending);
}

TEST_F(MainWindowTest, AWriteThatFailedLeavesTheMarkAndASureOneShowsWhatTheHandheldHolds)
{
    read("24");
    const QString there = field("LoknameTxt")->text();
    read("8");
    field("AdrTxt")->setText(QStringLiteral("24"));
    EXPECT_EQ(label("WohinLbl")->text(), QStringLiteral("schreibt Lok 8 unter 24 (dort steht: %1)").arg(there));
    EXPECT_TRUE(label("GeaendertLbl")->isHidden()) << "a typed address changes nothing";
    const QByteArray before = flashBytes(24 * 64, 64);
    user.acceptAnyBox();
    strike(&sim::Faults::missedRequest, 3);
    click("SchreibeLokDatensatzBut");
    EXPECT_FALSE(label("GeaendertLbl")->isHidden());
    layout().faults.set({});
    click("SchreibeLokDatensatzBut");
    EXPECT_TRUE(label("GeaendertLbl")->isHidden());
    EXPECT_TRUE(label("WohinLbl")->text().isEmpty());
    EXPECT_NE(flashBytes(24 * 64, 64), before);
    EXPECT_EQ(functions()->text(5, 3), QString::number(FktModus.at(5))) << "the grid was blank under the new address";
    auto *names = window().findChild<RowNames *>(QStringLiteral("FktNamen"));
    EXPECT_EQ(names->name(5), SymbolName(SymbolKind::Function, FktSymbol.at(5)));

    field("FunksymTxt")->setText(QStringLiteral("14"));
    EXPECT_EQ(button("SchreibeFktSymBut")->toolTip(), QStringLiteral("frei sind 164 bis 255"));
    click("LeseFktSymBut");
    field("FunksymTxt")->setText(QStringLiteral("164"));
    EXPECT_TRUE(button("SchreibeFktSymBut")->toolTip().isEmpty());
    EXPECT_EQ(label("SchreibeFktSymButWasLbl")->text(), QStringLiteral("geschrieben wird: Bild von 14 ON"));
    user.expect(QStringLiteral("Kurzbeschreibung:"), QStringLiteral("Symbol Daten sichern"), QStringLiteral("Neu"));
    click("SchreibeFktSymBut");
    EXPECT_TRUE(label("SchreibeFktSymButWasLbl")->text().isEmpty());
    EXPECT_TRUE(window().findChild<PictureBox *>(QStringLiteral("LokFktPic"))->showsPicture());
}

TEST_F(MainWindowTest, OnASmallScreenEveryControlIsReachedByTabAndNamedForThoseWhoHearIt)
{
    window().show();
    QApplication::setActiveWindow(&window());
    window().resize(683 - 20, 384 - 80); // 1366 × 768 at twice the size
    QSet<QString> names;
    for (QWidget *control = field("AdrTxt"); !names.contains(control->objectName());) {
        names += control->objectName();
        control->setFocus(Qt::TabFocusReason);
        const QRect seen(control->mapTo(&window(), QPoint()), control->size());
        EXPECT_FALSE(control->visibleRegion().isEmpty()) << control->objectName().toStdString();
        EXPECT_TRUE(window().rect().intersects(seen)) << control->objectName().toStdString();
        const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(control);
        EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty()) << control->objectName().toStdString();
        do
            control = control->nextInFocusChain();
        while (!control->isVisibleTo(&window()) || !control->isEnabled()
            || (control->focusPolicy() & Qt::TabFocus) == 0);
    }
    for (const char *name : {"LeseLokDatensatzBut", "ResetLokdatenBut", "EditLokSymBut", "EditMagSymBut", "FktTab"})
        EXPECT_TRUE(names.contains(QLatin1String(name))) << name;
    const QSet<QString> numbers{field("LokSymNrTxt")->accessibleName(), field("FunksymTxt")->accessibleName(),
        field("MagsymTxt")->accessibleName()};
    EXPECT_EQ(numbers.size(), 3) << "three fields, three names";
}

TEST_F(MainWindowTest, TheFunctionsAreSaidInWords)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    QAccessibleInterface *grid = QAccessible::queryAccessibleInterface(window().findChild<Grid *>("FktTab"));
    QAccessibleTableInterface *cells = grid->tableInterface();
    const auto said = [cells](int row, int column) {
        const QAccessibleInterface *cell = cells->cellAt(row, column);
        return cell == nullptr ? QStringLiteral("-") : cell->text(QAccessible::Name);
    };
    const LocoRecord &record = CurrentLoco.record;
    for (int row = 0; row < FunctionCount; ++row) {
        EXPECT_EQ(cells->rowDescription(row), QStringLiteral("f%1").arg(row));
        const bool momentary = record.modes.at(static_cast<size_t>(row)) == 1;
        EXPECT_EQ(said(row, 3), momentary ? QStringLiteral("Tastfunktion") : QStringLiteral("Dauerfunktion")) << row;
        const int symbol = record.symbols.at(static_cast<size_t>(row));
        if (row > 0) {
            EXPECT_TRUE(said(row, 1).startsWith(QStringLiteral("Funktionssymbol %1").arg(symbol))) << row;
        }
    }
}

TEST_F(MainWindowTest, TheStatusLineTellsWhereOneStands)
{
    FollowService();
    TellConnectionChange();
    const auto connection = [this] { return label("VerbindungLbl")->text().section(QStringLiteral(", "), 1); };
    EXPECT_EQ(connection(), QStringLiteral("Orvanto 2: verbunden"));
    trigger("Opt_VeskaNormalModus");
    EXPECT_EQ(connection(), QStringLiteral("Orvanto 2: im Bedienmodus"));
    click("LeseLokDatensatzBut");
    EXPECT_EQ(connection(), QStringLiteral("Orvanto 2: verbunden"));
    user.acceptAnyBox();
    port.hangUp();
    events.run(0.1);
    EXPECT_EQ(connection(), QStringLiteral("Orvanto 2: kein Handregler"));
    TheLink().use({{QStringLiteral("Demo"), false}, InterfaceDirect});
    TellConnectionChange();
    EXPECT_EQ(label("VerbindungLbl")->text(),
        QStringLiteral("Demo: nachgebildeter Handregler, nichts wird gesendet (kein Handregler)"));
    EXPECT_TRUE(label("VerbindungLbl")->autoFillBackground()) << "marked by its colour";
}

TEST_F(MainWindowTest, NumberFieldsFollowTheirRules)
{
    const QAction *startImage = window().findChild<QAction *>(QStringLiteral("StartBildMenu"));
    EXPECT_FALSE(startImage->isVisible());
    for (const char *wrong : {"rupo", "RUPO", "Rupo "})
        field("AdrTxt")->setText(QString::fromUtf8(wrong));
    EXPECT_FALSE(startImage->isVisible());
    field("AdrTxt")->setText(QStringLiteral("Rupo"));
    EXPECT_TRUE(startImage->isVisible());
    struct Row {
        const char *field;
        const char *typed;
        const char *shown;
        const char *button;
        bool enabled;
    };
    const Row rows[] = {{"AdrTxt", "9999", "9999", nullptr, false}, {"AdrTxt", "10000", "??", nullptr, false},
        {"LokSymNrTxt", "63", "63", "SchreibeLoksymbolBut", true}, {"LokSymNrTxt", "64", "??", nullptr, false},
        {"FunksymTxt", "163", "163", "SchreibeFktSymBut", false},
        {"FunksymTxt", "164", "164", "SchreibeFktSymBut", true},
        {"FunksymTxt", "256", "??", "SchreibeFktSymBut", false},
        {"MagsymTxt", "27", "27", "SchreibeMagSymBut", false}, {"MagsymTxt", "28", "28", "SchreibeMagSymBut", true},
        {"MagsymTxt", "300", "??", "SchreibeMagSymBut", false}};
    for (const Row &row : rows) {
        field(row.field)->setText(QString::fromUtf8(row.typed));
        EXPECT_EQ(field(row.field)->text(), QString::fromUtf8(row.shown)) << row.typed;
        if (QByteArray(row.field) == "AdrTxt") {
            const bool none = field("AdrTxt")->text() == u"??";
            EXPECT_EQ(field("AdrTxt")->selectedText(), none ? QStringLiteral("??") : QString());
            EXPECT_EQ(field("AdrTxt")->toolTip(), none ? QStringLiteral("1 bis 9999") : QString());
        }
        if (row.button != nullptr) {
            EXPECT_EQ(button(row.button)->isEnabled(), row.enabled) << row.typed;
        }
    }
}

TEST_F(MainWindowTest, ATypedAddressClearsTheShownRecordButKeepsItForWriting)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    const QString name = field("LoknameTxt")->text();
    field("AdrTxt")->setText(QStringLiteral("4001"));
    const Grid *grid = window().findChild<Grid *>(QStringLiteral("FktTab"));
    EXPECT_EQ(grid->text(24, 0), QStringLiteral("f24"));
    EXPECT_TRUE(grid->text(1, 3).isEmpty());
    EXPECT_EQ(field("LoknameTxt")->text(), name);
    click("SchreibeLokDatensatzBut");
    EXPECT_EQ(flashBytes(4001 * 64, 21), flashBytes(3 * 64, 21));
    EXPECT_EQ(flashBytes(4001 * 64 + 33, 24), flashBytes(3 * 64 + 33, 24));
}

TEST_F(MainWindowTest, ASecondCommandIsIgnoredWhileOneRuns)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    events.after(400'000, [this] {
        for (const char *name : {"LeseLokDatensatzBut", "SchreibeLokDatensatzBut", "ResetLokdatenBut",
                 "LeseLoksymbolBut", "EditLokSymBut", "LeseMagSymBut"})
            button(name)->click();
        for (const char *name : {"Opt_abschalt", "Opt_clear_all_loco", "ZentraleMenu", "Opt_VeskaNormalModus"})
            action(name)->trigger();
    });
    const int programs = flash().state.executed.at(0x83);
    click("LeseLokDatensatzBut");
    EXPECT_EQ(handheld().state.readBacks, 4);
    EXPECT_EQ(flash().state.executed.at(0x83), programs);
    EXPECT_EQ(user.raised, 10);
    EXPECT_TRUE(TheLink().HandreglerGefunden);
}

TEST_F(MainWindowTest, ClosingInMidTransferFinishesThePageAndEndsOnce)
{
    for (int delayMs = 0; delayMs <= 1500; delayMs += 75) {
        restart();
        int ends = 0;
        OnEndReady([&ends] {
            ++ends;
            SetRunState(RunState::Leaving);
            static_cast<void>(SendHandheldBack());
            SetRunState(RunState::Ended);
        });
        field("AdrTxt")->setText(QStringLiteral("3"));
        click("LeseLokDatensatzBut");
        const int programs = flash().state.executed.at(0x83);
        const int normalModes = handheld().state.normalModes;
        events.after(delayMs * 1000, [this] {
            window().close();
            window().close();
            action("ende_menu")->trigger();
        });
        click("SchreibeLokDatensatzBut");
        events.run(4);
        EXPECT_EQ(ends, 1) << delayMs;
        EXPECT_EQ(handheld().state.normalModes, normalModes + 1) << delayMs;
        EXPECT_LE(flash().state.executed.at(0x83) - programs, 1);
        EXPECT_EQ(flash().state.executed.at(0x53), flash().state.executed.at(0x83))
            << "every loaded page is programmed";
    }
}

TEST_F(MainWindowTest, OptionsAskFirst)
{
    const QString question = QStringLiteral(
        "Soll die Abschaltzeit auf Null gesetzt werden?\r (für die Version 1.0 des Handreglers)        ");
    flash().setBytes(0x3F0005, QByteArray(1, 9));
    user.expect(question, TheBranding().toolTitle, QStringLiteral("Nein"));
    trigger("Opt_abschalt");
    EXPECT_EQ(flashBytes(0x3F0005, 1), QByteArray(1, 9));
    user.expect(question, TheBranding().toolTitle, QStringLiteral("Ja"));
    trigger("Opt_abschalt");
    EXPECT_EQ(flashBytes(0x3F0005, 1), QByteArray(1, 0));

    user.expect(QStringLiteral("Sollen alle 9999 Lokdatensätze gelöscht werden?\r          (Löschdauer: ca. 80min)"),
        QStringLiteral("Lokdatensätze löschen"), QStringLiteral("Nein"));
    trigger("Opt_clear_all_loco");

    const int before = handheld().state.normalModes;
    trigger("Opt_VeskaNormalModus");
    trigger("Opt_VeskaNormalModus"); // not connected any more: nothing
    EXPECT_EQ(handheld().state.normalModes, before + 1);
    EXPECT_FALSE(TheLink().HandreglerGefunden);
}

TEST_F(MainWindowTest, AWriteTakesTheRecordAtTheClick)
{
    read("3");
    const QByteArray before = flashBytes(4 * 64, 64);
    TheLink().HandreglerGefunden = false; // the write begins with a search
    field("LoknameTxt")->setText(QStringLiteral("ALT"));
    events.after(200'000, [this] {
        field("LoknameTxt")->setText(QStringLiteral("NEU"));
        multiUni()->setChecked(true);
        field("AdrTxt")->setText(QStringLiteral("4"));
    });
    click("SchreibeLokDatensatzBut");
    EXPECT_EQ(flashBytes(3 * 64, 4), QByteArray("\x0A\x15\x1D\x27", 4));
    EXPECT_EQ(flashBytes(3 * 64 + 31, 1).at(0) & 0x80, 0);
    EXPECT_EQ(flashBytes(4 * 64, 64), before);
    EXPECT_EQ(LokName(), QStringLiteral("NEU")) << "what was typed meanwhile belongs to the next command";
}

TEST_F(MainWindowTest, AnAddressTypedDuringAReadLeavesNoHiddenValue)
{
    flash().setBytes(3 * 64 + 31, QByteArray(1, '\x80'));
    events.after(300'000, [this] { field("AdrTxt")->setText(QStringLiteral("5")); });
    read("3");
    EXPECT_FALSE(multiUni()->isChecked());
    EXPECT_EQ(MultiUni, 0);
    EXPECT_TRUE(functions()->text(1, 3).isEmpty());

    read("3");
    EXPECT_TRUE(multiUni()->isChecked());
    events.after(300'000, [this] { multiUni()->click(); });
    events.after(500'000, [this] { port.hangUp(); });
    user.acceptAnyBox();
    read("3");
    EXPECT_FALSE(multiUni()->isChecked());
    EXPECT_EQ(MultiUni, 0) << "box and memory agree after a broken-off read";
}

TEST_F(MainWindowTest, ANameTypedOverAnEmptyRecordShowsWhatMemoryHolds)
{
    flash().setBytes(5000 * 64 + 28, QByteArray("\x04\x00\x00\x80", 4)); // empty by its name, but not blank
    read("5000");
    EXPECT_TRUE(functions()->text(2, 3).isEmpty());
    field("LoknameTxt")->setText(QStringLiteral("N"));
    for (size_t f = 0; f < FunctionCount; ++f)
        EXPECT_EQ(functions()->text(static_cast<int>(f), 3), QString::number(FktModus.at(f))) << f;
    EXPECT_EQ(multiUni()->isChecked(), MultiUni == 1);
}

TEST_F(MainWindowTest, TheAddressFieldHasTheFocusAfterTheStart)
{
    window().show();
    window().setEnabled(false); // as during the search
    ASSERT_EQ(window().focusWidget(), nullptr);
    window().enable(true);
    EXPECT_EQ(window().focusWidget(), field("AdrTxt"));
}

TEST_F(MainWindowTest, OptionsLookAtTheGuardAgainAfterTheirQuestion)
{
    const QByteArray symbols = flashBytes(0x0F0000, 0x4000);
    flash().setBytes(0x3F0005, QByteArray(1, 9));
    for (const char *name : {"Opt_abschalt", "Opt_Fktsym"}) {
        user.acceptAnyBox();
        user.boxes.clear();
        user.onBox = [this] {
            if (user.boxes.size() > 1)
                return;
            port.hangUp();
            events.run(0.1);
        };
        user.onSelection = [] { RequestEnd(); };
        user.expect(QString(), QString(), QStringLiteral("Ja"));
        user.ignoreTexts = true;
        trigger(name);
        user.onBox = nullptr;
        EXPECT_EQ(flashBytes(0x3F0005, 1), QByteArray(1, 9));
        EXPECT_EQ(flashBytes(0x0F0000, 0x4000), symbols);
        EXPECT_FALSE(user.progressVisible);
        if (QLatin1String(name) == QLatin1String("Opt_Fktsym")) {
            EXPECT_FALSE(user.defaultYes);
        }
        port.replug();
        restart();
    }
    // A port that is back by then is opened and the handheld called again before anything is written.
    ASSERT_TRUE(ReplaceFile(folder.path() + QStringLiteral("/konf/ComPort.inf"), "3\r\n3\r\n"));
    user.onBox = [this] {
        user.onBox = nullptr;
        port.hangUp();
        events.run(0.1);
        port.replug();
    };
    user.expect(QString(), QString(), QStringLiteral("Ja"));
    trigger("Opt_abschalt");
    EXPECT_TRUE(TheLink().HandreglerGefunden);
    EXPECT_EQ(flashBytes(0x3F0005, 1), QByteArray(1, 0));
}

TEST_F(MainWindowTest, ARecordReadWithATimeoutIsMarkedAndWrittenOnlyOnPurpose)
{
    auto *doubt = window().findChild<QLabel *>(QStringLiteral("UnvollstaendigLbl"));
    EXPECT_TRUE(doubt->isHidden());
    strike(&sim::Faults::lostAck, 1);
    user.expect(QStringLiteral("Timeout"), QStringLiteral("read_flash_to_spibuf"));
    read("3");
    EXPECT_FALSE(doubt->isHidden());
    layout().faults.set({});
    const QByteArray before = flashBytes(192, 64);
    window().findChild<QAction *>(QStringLiteral("LokKopieren"))->trigger();
    user.expect(QStringLiteral("Beim Lesen hat der Handregler nicht immer richtig geantwortet;\rder Lokdatensatz ist "
                               "vielleicht unvollständig. Soll trotzdem geschrieben werden?"),
        QStringLiteral("Achtung!"), QStringLiteral("Nein"));
    click("SchreibeLokDatensatzBut");
    EXPECT_FALSE(user.defaultYes);
    EXPECT_EQ(flashBytes(192, 64), before);
    read("3");
    EXPECT_TRUE(doubt->isHidden());
    click("SchreibeLokDatensatzBut"); // without a question
    window().findChild<QAction *>(QStringLiteral("LokEinfuegen"))->trigger();
    EXPECT_FALSE(doubt->isHidden()) << "what was copied is as doubtful as before";
    click("ResetLokdatenBut");
    EXPECT_TRUE(doubt->isHidden()) << "after a deletion all of the record is known";
}

TEST_F(MainWindowTest, TheNameFieldTellsWhatTheHandheldDoesNotHave)
{
    read("3");
    field("LoknameTxt")->setText(QStringLiteral("Lok 100% (é)"));
    EXPECT_TRUE(field("LoknameTxt")->toolTip().contains(QStringLiteral("%(É)")));
    click("SchreibeLokDatensatzBut");
    EXPECT_EQ(field("LoknameTxt")->text(), QStringLiteral("LOK 100"));
    EXPECT_TRUE(field("LoknameTxt")->toolTip().isEmpty());
    field("AdrTxt")->setText(QStringLiteral("77"));
    EXPECT_EQ(button("SchreibeLokDatensatzBut")->toolTip(),
        QStringLiteral("Schreibt die gelesene Lok 3 unter die Adresse 77"));
}

TEST_F(MainWindowTest, EnterInTheAddressFieldReadsAndAFunctionTableFitsItsFont)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(field("AdrTxt"), &enter);
    EXPECT_FALSE(field("LoknameTxt")->text().isEmpty());
    EXPECT_TRUE(
        functions()->model()->index(2, 1).data(Qt::AccessibleTextRole).toString().startsWith(u"Funktionssymbol "));
    EXPECT_EQ(functions()->model()->index(0, 1).data(Qt::ToolTipRole).toString(),
        QStringLiteral("f0 hat im Handregler kein Symbol"));
    QFont large = QApplication::font();
    large.setPointSize(16);
    const QFont before = QApplication::font();
    QApplication::setFont(large);
    restart();
    EXPECT_LE(functions()->fontMetrics().horizontalAdvance(QStringLiteral("f24")), functions()->columnWidth(0));
    EXPECT_LE(functions()->fontMetrics().height(), functions()->rowHeight(24));
    QApplication::setFont(before);
}

TEST_F(MainWindowTest, ARecordOrItsFunctionsAreCopiedToAnotherAddress)
{
    const auto act = [this](const char *name) { window().findChild<QAction *>(QLatin1String(name))->trigger(); };
    read("3");
    const LocoRecord copied = CurrentLoco.record;
    act("LokKopieren");
    read("8");
    const QString name = LokName();
    act("FunktionenEinfuegen");
    EXPECT_EQ(FktSymbol, copied.symbols);
    EXPECT_EQ(LokName(), name);
    EXPECT_EQ(functions()->text(2, 3), QString::number(copied.modes.at(2)));
    act("LokEinfuegen");
    EXPECT_EQ(CurrentLoco.record, copied);
    EXPECT_EQ(field("LoknameTxt")->text(), copied.name.trimmed());
    user.expect(QStringLiteral("Adressen (zum Beispiel 1-5,8):"), QStringLiteral("Funktionen übertragen"),
        QStringLiteral("1-x"));
    user.expect(QStringLiteral("\"1-x\" ist keine Nummer und kein Bereich wie 1-5"), QStringLiteral("Fehler!"));
    act("FunktionenUebertragen");
}

TEST_F(MainWindowTest, WhatIsChangedInARecordIsTakenBack)
{
    const auto act = [this](const char *name) { window().findChild<QAction *>(QLatin1String(name))->trigger(); };
    Grid *grid = window().findChild<Grid *>(QStringLiteral("FktTab"));
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    const LocoRecord read = CurrentLoco.record;
    const QString name = field("LoknameTxt")->text();
    field("LoknameTxt")->setText(QStringLiteral("N"));
    field("LoknameTxt")->setText(QStringLiteral("NEU")); // one step
    Q_EMIT grid->cellActed(5, 3);
    window().findChild<QCheckBox *>(QStringLiteral("MultiUniChk"))->toggle();
    const LocoRecord changed = CurrentLoco.record;
    click("ResetLokdatenBut");
    act("UndoAction"); // brings a deleted record back for writing
    EXPECT_EQ(CurrentLoco.record, changed);
    EXPECT_EQ(field("LoknameTxt")->text(), QStringLiteral("NEU"));
    for (int i = 0; i < 3; ++i)
        act("UndoAction");
    EXPECT_EQ(CurrentLoco.record, read);
    EXPECT_EQ(field("LoknameTxt")->text(), name);
    for (int i = 0; i < 3; ++i)
        act("RedoAction");
    EXPECT_EQ(CurrentLoco.record, changed);
    EXPECT_EQ(grid->text(5, 3), QString::number(changed.modes.at(5)));
    click("LeseLokDatensatzBut");
    act("UndoAction"); // of another record
    EXPECT_EQ(LokName(), QStringLiteral("-leer-"));
}

TEST_F(MainWindowTest, NoKeyIsTakenTwiceInAWindow)
{
    for (const char *item : {"MagSymMenu", "MagListeMenu", "FSMenu", "ZentraleMenu", "help_menu"})
        trigger(item);
    for (const QWidget *top : QApplication::topLevelWidgets()) {
        QStringList keys;
        for (const QAction *action : top->findChildren<QAction *>()) {
            for (const QKeySequence &key : action->shortcuts())
                keys += key.toString();
        }
        for (const QShortcut *shortcut : top->findChildren<QShortcut *>())
            keys += shortcut->key().toString();
        for (const QAbstractButton *button : top->findChildren<QAbstractButton *>())
            keys += button->shortcut().toString();
        keys.removeAll(QString());
        EXPECT_EQ(keys.removeDuplicates(), 0)
            << top->objectName().toStdString() << ' ' << keys.join(u' ').toStdString();
    }
}

TEST_F(MainWindowTest, TabEntersAnOptionGroupAtTheChosenOne)
{
    const auto *green = window().findChild<QRadioButton *>(QStringLiteral("ONOFFMag0"));
    auto *red = window().findChild<QRadioButton *>(QStringLiteral("ONOFFMag1"));
    const auto entered = [](const QRadioButton *option) { return option->focusPolicy() == Qt::StrongFocus; };
    EXPECT_TRUE(entered(green) && !entered(red));
    red->click();
    EXPECT_TRUE(entered(red) && !entered(green));
}

TEST_F(MainWindowTest, TypingOnTheFunctionsGoesToARow)
{
    Grid *grid = window().findChild<Grid *>(QStringLiteral("FktTab"));
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    grid->setCurrentCell(0, 0);
    struct {
        const char *typed;
        double pause; // seconds before it
        int row;
    } const rows[] = {{"1", 2, 1}, {"2", 0.5, 12}, {"4", 2, 4}, {"x", 0, 4}};
    for (const auto &[typed, pause, row] : rows) {
        events.run(pause);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QLatin1String(typed));
        QApplication::sendEvent(grid, &key);
        EXPECT_EQ(grid->currentRow(), row) << typed;
    }
    const QString word = SymbolName(SymbolKind::Function, FktSymbol.at(7)).section(u' ', 0, 0);
    ASSERT_FALSE(word.isEmpty());
    events.run(2);
    grid->setCurrentCell(6, 1);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, word);
    QApplication::sendEvent(grid, &key);
    EXPECT_EQ(grid->currentRow(), 7);
}

TEST_F(MainWindowTest, TheHelpIsSearchedAndItsHeadingsStandOut)
{
    action("help_menu")->trigger();
    QWidget *help = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets())
        help = widget->objectName() == u"HelpWin" && widget->isVisible() ? widget : help;
    ASSERT_NE(help, nullptr);
    const auto *lines = help->findChild<QListWidget *>(QStringLiteral("HelpTxt"));
    auto *search = help->findChild<QLineEdit *>(QStringLiteral("HilfeSuchTxt"));
    EXPECT_TRUE(lines->item(0)->font().bold());
    EXPECT_FALSE(lines->item(3)->font().bold());
    const auto enter = [search] {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(search, &key);
    };
    search->setFocus();
    search->setText(QStringLiteral("FAHRSTRA"));
    enter();
    ASSERT_NE(lines->currentItem(), nullptr);
    const int first = lines->currentRow();
    EXPECT_TRUE(lines->currentItem()->text().contains(QStringLiteral("fahrstra"), Qt::CaseInsensitive));
    enter();
    EXPECT_NE(lines->currentRow(), first);
    EXPECT_TRUE(help->isVisible()) << "Enter in the search does not press OK";
    search->setText(QStringLiteral("xyzzy"));
    enter();
    EXPECT_EQ(search->toolTip(), QStringLiteral("nicht gefunden"));
    help->hide();
}

TEST_F(MainWindowTest, F1OpensTheGuideAtTheChapterOfTheWindow)
{
    const auto f1 = [](QWidget *control) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
        QApplication::sendEvent(control, &key);
    };
    user.expect(
        QStringLiteral("Das Benutzerhandbuch handbuch\\Benutzerhandbuch.html fehlt!"), QStringLiteral("Fehler!"));
    f1(field("AdrTxt"));
    const QString made = qEnvironmentVariable("HR_KONF") + QStringLiteral("/../handbuch/Benutzerhandbuch.html");
    const QString page = QString::fromUtf8(ReadWholeFile(made).value_or(QByteArray()));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("handbuch")));
    ASSERT_TRUE(ReplaceFile(folder.filePath(QStringLiteral("handbuch/Benutzerhandbuch.html")), page.toUtf8()));
    QStringList chapters;
    QWidget guide;
    for (const char *name : {"AdrTxt", "FunksymTxt", "MagsymTxt", "ZentraleForm", "LokSymWin", "Pixeledit", "FSEdit",
             "SicherungWin", "LokImportWin"}) {
        auto *other = new QWidget(&guide);
        other->setObjectName(QLatin1String(name));
        auto *here = window().findChild<QWidget *>(QLatin1String(name));
        chapters += GuideWin::chapterOf(here != nullptr ? here : other);
        EXPECT_TRUE(page.contains(QStringLiteral("name=\"%1\"").arg(chapters.constLast()))) << name;
    }
    chapters.removeDuplicates();
    EXPECT_EQ(chapters.size(), 8);
    f1(field("FunksymTxt"));
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() != u"HandbuchWin")
            continue;
        EXPECT_TRUE(widget->isVisible());
        EXPECT_EQ(widget->findChild<QTextBrowser *>()->source().fragment(), QStringLiteral("symbole"));
        widget->close();
    }
}

} // namespace hr::tests
