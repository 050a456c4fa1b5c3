#include "ui/backup/backup_commands.h"

#include "handheld/backup/dds_file.h"
#include "jobs/selection.h"
#include "link/open_link.h"
#include "platform/text.h"
#include "program/branding.h"
#include "program/recent_files.h"
#include "program/run_control.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/backup/backup_viewer.h"
#include "ui/backup/table_print.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>

namespace hr::tests
{

class BackupWindows : public WindowWorld
{
protected:
    void SetUp() override
    {
        WindowWorld::SetUp();
        ResetSelection();
        file = folder.path() + QStringLiteral("/test.dds");
    }

    static QWidget *openWindow(const char *name)
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String(name) && widget->isVisible())
                return widget;
        }
        return nullptr;
    }

    template <typename Control> static Control *in(const char *window, const char *name)
    {
        QWidget *found = openWindow(window);
        return found != nullptr ? found->findChild<Control *>(QLatin1String(name)) : nullptr;
    }

    static QCheckBox *check(const char *name) { return in<QCheckBox>("SicherungWin", name); }
    static QLineEdit *entry(const char *name) { return in<QLineEdit>("SicherungWin", name); }
    static QString hint() { return in<QLabel>("SicherungWin", "HinweisLbl")->text(); }
    static bool okPossible() { return in<QPushButton>("SicherungWin", "OKButton")->isEnabled(); }
    static void pressIn(const char *window, const char *button) { in<QPushButton>(window, button)->click(); }

    void expectSaveDialog() { user.expect(QStringLiteral("*.dds"), TheBranding().saveDialogTitle, file); }

    /// What the user does in the selection window; it opens within the menu command.
    void inSelection(const std::function<void()> &does) { events.after(200'000, does); }

    QByteArray content(const QString &path)
    {
        QFile opened(path);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }

    QString file;
};

TEST_F(BackupWindows, TheSelectionIsCheckedKeptAndUsed)
{
    expectSaveDialog();
    inSelection([] {
        for (auto *box : openWindow("SicherungWin")->findChildren<QCheckBox *>()) {
            EXPECT_EQ(box->isChecked(), box->objectName() != u"LokDatenChk") << "the first backup misses nothing";
            box->setChecked(false);
        }
        EXPECT_FALSE(okPossible());
        EXPECT_EQ(hint(), QStringLiteral("Bitte wählen Sie aus, was gesichert werden soll."));
        check("LokDatenChk")->setChecked(true);
        entry("LokDatenTxt")->setText(QStringLiteral("3,10000"));
        EXPECT_EQ(hint(), QStringLiteral("Lokdatensätze: \"10000\" liegt nicht zwischen 1 und 9999"));
        EXPECT_EQ(entry("LokDatenTxt")->accessibleDescription(), hint().section(QStringLiteral(": "), 1));
        EXPECT_FALSE(okPossible());
        Q_EMIT entry("LokDatenTxt")->returnPressed();
        entry("LokDatenTxt")->setText(QStringLiteral("3, 8"));
        check("LokSucheChk")->setChecked(true);
        entry("LokSucheAdrStartTxt")->setText(QStringLiteral("30"));
        entry("LokSucheAdrStopTxt")->setText(QStringLiteral("20"));
        EXPECT_EQ(hint(), QStringLiteral("Lokdatensätze suchen: die kleinere Adresse gehört nach vorn"));
        entry("LokSucheAdrStopTxt")->setText(QStringLiteral("4x"));
        EXPECT_FALSE(okPossible());
        entry("LokSucheAdrStopTxt")->setText(QStringLiteral("40"));
        check("AlleMagSymChk")->click();
        EXPECT_TRUE(check("MagSymboleChk")->isChecked());
        check("MagSymboleChk")->click();
        EXPECT_TRUE(hint().startsWith(u"Dauer: höchstens 1 Minute") && hint().contains(u"etwa ein Fünftel"));
        pressIn("SicherungWin", "OKButton");
    });
    user.expect(QStringLiteral("Gesichert in %1:\r3 Lokdatensätze: 3, 8, 38").arg(QDir::toNativeSeparators(file)),
        QStringLiteral("Datensicherung"));
    trigger("datenlesen_menu");
    EXPECT_EQ(content(file).size(), 3 * 76) << "3 and 8 from the list, 38 by search";
    EXPECT_TRUE(content(folder.path() + QStringLiteral("/konf/Sicherung.txt"))
                    .startsWith("LokDaten:1 3, 8\r\nLokSymbole:0 \r\n"));
    EXPECT_EQ(in<QLabel>("LokSucheWin", "AnzahlLbl")->text(), QStringLiteral("1 Lokdatensatz gefunden:"));
    pressIn("LokSucheWin", "KopierenBut");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("38"));
    EXPECT_EQ(in<QPlainTextEdit>("LokSucheWin", "AdressenTxt")->toPlainText(),
        QStringLiteral("38\t") + WithoutTrailingBlanks(ReadLoco(SpiBuf, 38).value.name));
    pressIn("LokSucheWin", "ListeBut");
    EXPECT_TRUE(content(folder.path() + QStringLiteral("/konf/Sicherung.txt")).startsWith("LokDaten:1 38\r\n"));
    EXPECT_FALSE(ReadSelection().lokSuche);
    expectSaveDialog();
    inSelection([] {
        entry("LokDatenTxt")->setText(QStringLiteral("5"));
        pressIn("LokSucheWin", "ListeBut"); // while the selection is open
        EXPECT_EQ(entry("LokDatenTxt")->text(), QStringLiteral("38"));
        pressIn("SicherungWin", "CancelButton");
    });
    trigger("datenlesen_menu");
    EXPECT_EQ(RecentFiles(), QStringList{file});
    EXPECT_FALSE(user.progressVisible);
}

TEST_F(BackupWindows, CancellingDoesNothing)
{
    user.expect(QStringLiteral("*.dds"), TheBranding().saveDialogTitle);
    trigger("datenlesen_menu");
    const std::function<void()> ways[] = {[] { openWindow("SicherungWin")->close(); },
        [] { pressIn("SicherungWin", "CancelButton"); }, [] { RequestEnd(); }};
    for (const auto &way : ways) {
        expectSaveDialog();
        inSelection([&] {
            trigger("datenschreiben_menu"); // ignored: one command runs
            pressIn("SicherungWin", "AllesBut");
            for (const char *name : {"LokSucheChk", "AlleLokSymChk", "FSdatenChk", "MagSymZuordChk", "MagListeChk"})
                EXPECT_TRUE(okPossible() && check(name)->isChecked()) << name;
            way();
        });
        trigger("datenlesen_menu");
        EXPECT_EQ(openWindow("SicherungWin"), nullptr);
    }
    EXPECT_EQ(user.raised, 3);
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/konf/Sicherung.txt")));
    EXPECT_EQ(handheld().state.readBacks, 0);
}

TEST_F(BackupWindows, WhatIsTypedDuringABackupIsWhatTheWindowWrites)
{
    WriteSelection({});
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    expectSaveDialog();
    inSelection([] {
        entry("LokDatenTxt")->setText(QStringLiteral("8-12"));
        check("LokDatenChk")->setChecked(true);
        pressIn("SicherungWin", "OKButton");
    });
    events.after(1'500'000, [this] { field("LoknameTxt")->setText(QStringLiteral("neu")); });
    const int symbol = LokSymbol;
    user.acceptAnyBox();
    trigger("datenlesen_menu");
    EXPECT_EQ(LokName(), QStringLiteral("NEU"));
    EXPECT_EQ(LokSymbol, symbol);
}

TEST_F(BackupWindows, RestoreLooksForTheHandheldFirst)
{
    QFile backup(file);
    ASSERT_TRUE(backup.open(QIODevice::WriteOnly));
    backup.write(PackRecord({RecordKind::Loco, 5}, LocoRecord{QStringLiteral("LOK"), {}, {}, 0, 1}));
    backup.close();
    TheLink().HandreglerGefunden = false;
    handheld().settings.present = false;
    expectSaveDialog();
    user.expect(QStringLiteral("Handregler antwortet nicht!\rAnschluss überprüfen!"), QStringLiteral("Achtung"));
    trigger("datenschreiben_menu");
    handheld().settings.present = true;
    user.ignoreTexts = true;
    for (const char *answer : {"Nein", "Ja"}) {
        expectSaveDialog();
        user.expect(QString(), QString(), QString::fromUtf8(answer));
        user.acceptAnyBox();
        trigger("datenschreiben_menu");
        EXPECT_FALSE(user.defaultYes);
        EXPECT_EQ(flashBytes(5 * 64, 1) == QByteArray(1, 21), QString::fromUtf8(answer) == u"Ja");
    }
    EXPECT_TRUE(user.boxes.constLast().endsWith(u"In den Handregler geschrieben:\r1 Lokdatensatz: 5"));
}

class ViewerTest : public BackupWindows
{
protected:
    static LocoRecord loco(const char *name, int symbol)
    {
        LocoRecord record{QString::fromUtf8(name), {}, {}, 0, symbol};
        record.symbols.at(3) = 20;
        record.modes.at(3) = 1;
        return record;
    }

    void show(const QByteArray &bytes)
    {
        QFile backup(file);
        ASSERT_TRUE(backup.open(QIODevice::WriteOnly));
        backup.write(bytes);
        backup.close();
        user.expect(QStringLiteral("*.dds"), TheBranding().showDialogTitle, file);
        trigger("datenanzeigen_menu");
    }

    static QAbstractItemModel *table() { return in<QTableView>("DatenAnzeigeWin", "LokDatenTab")->model(); }
    static QString cell(int row, int column) { return table()->index(row, column).data().toString(); }
    static QString summary() { return in<QLabel>("DatenAnzeigeWin", "ZusammenfassungLbl")->text(); }

    const QByteArray three = PackRecord({RecordKind::Loco, 1000}, loco("Zug", 1))
        + PackRecord({RecordKind::Loco, 20}, loco("Ä \"Lok\";", 2))
        + PackRecord({RecordKind::Loco, 300}, loco("Bahn", 99));
};

TEST_F(ViewerTest, ShowsSortsAndFilters)
{
    show(three + PackRecord({RecordKind::LocoSymbol, 1}, EmptyPicture(SymbolKind::Loco))
        + PackRecord({RecordKind::FunctionOn, 9}, EmptyPicture(SymbolKind::Function))
        + PackRecord({RecordKind::RouteTable, 0}, Routes{}));
    const QWidget *win = openWindow("DatenAnzeigeWin");
    EXPECT_EQ(win->windowTitle(),
        QStringLiteral("Lokdaten aus dem File: ") + QDir::toNativeSeparators(file).section(u'\\', -1));
    EXPECT_EQ(summary(),
        QStringLiteral("Außerdem enthalten: Loksymbole: 1, Funktionssymbole ON: 1, Fahrstraßen\n"
                       "Aufbau der Datei: in Ordnung"));
    EXPECT_EQ(cell(0, 0) + cell(1, 0) + cell(2, 0), QStringLiteral("203001000"));
    EXPECT_EQ(cell(1, BackupTable::SymbolColumn), QStringLiteral("99")) << "the number where there is no picture";
    EXPECT_EQ(cell(0, BackupTable::FirstFunctionColumn + 3), QStringLiteral("T"));
    EXPECT_FALSE(table()
                     ->index(0, BackupTable::FirstFunctionColumn + 3)
                     .data(BackupTable::PictureRole)
                     .value<QPixmap>()
                     .isNull());
    table()->sort(BackupTable::NameColumn, Qt::DescendingOrder);
    EXPECT_EQ(cell(0, 1), QStringLiteral("Zug"));
    auto *filter = in<QLineEdit>("DatenAnzeigeWin", "FilterTxt");
    for (const auto &[text, rows] :
        {std::pair("lok", 1), std::pair("00", 2), std::pair("BAHN ", 1), std::pair(".*", 0), std::pair("", 3)}) {
        filter->setText(QLatin1String(text));
        EXPECT_EQ(table()->rowCount(), rows) << text;
    }
}

TEST_F(ViewerTest, ExportsWhatIsShown)
{
    show(three);
    in<QLineEdit>("DatenAnzeigeWin", "FilterTxt")->setText(QStringLiteral("20"));
    const QString csv = folder.path() + QStringLiteral("/t.csv");
    user.expect(QStringLiteral("*.csv"), QStringLiteral("Tabelle speichern"), csv);
    user.expect(QStringLiteral("1 Lok gespeichert in %1.").arg(QDir::toNativeSeparators(csv)),
        QStringLiteral("Tabelle speichern"));
    pressIn("DatenAnzeigeWin", "CsvBut");
    const QList<QByteArray> lines = content(csv).split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines.at(0).startsWith("\xEF\xBB\xBF"
                                       "Adresse;Name;Symbol;MultiUni;f1;f2;"));
    EXPECT_EQ(lines.at(1), QByteArray("20;\"Ä \"\"Lok\"\";\";2;0;0;0;20") + QByteArray(";0").repeated(21) + ";3\r");
    const QString pdf = folder.path() + QStringLiteral("/t.pdf");
    user.expect(QStringLiteral("*.pdf"), QStringLiteral("Tabelle speichern"), pdf);
    user.expect(QStringLiteral("1 Lok gespeichert in %1.").arg(QDir::toNativeSeparators(pdf)),
        QStringLiteral("Tabelle speichern"));
    pressIn("DatenAnzeigeWin", "PdfBut");
    EXPECT_TRUE(content(pdf).startsWith("%PDF-"));
    EXPECT_EQ(PdfOf(QStringLiteral("x"), std::vector<RosterLoco>(100, {1, loco("A", 1)})).count("/Type /Page\n"), 4);
    user.acceptAnyBox();
    user.expect(QStringLiteral("*.csv"), QStringLiteral("Tabelle speichern"), folder.path());
    user.expect(
        QStringLiteral("Die Datei %1 kann nicht geschrieben werden!").arg(QDir::toNativeSeparators(folder.path())),
        QStringLiteral("Fehler!"));
    pressIn("DatenAnzeigeWin", "CsvBut");
}

TEST_F(ViewerTest, RecentFilesAreOfferedUntilTheyAreGone)
{
    const auto offered = [] {
        QStringList names;
        for (const QAction *action : openWindow("DatenAnzeigeWin")->actions()) {
            if (action->isEnabled() && action->isVisible() && action->objectName() != u"SuchenAction")
                names += action->text();
        }
        return names;
    };
    QStringList shown;
    for (int i = 0; i < 10; ++i) {
        const QString name = folder.path() + QStringLiteral("/sicherung%1.dds").arg(i);
        QFile opened(name);
        ASSERT_TRUE(opened.open(QIODevice::WriteOnly) && opened.write(three) == three.size());
        opened.close();
        OpenBackupViewer(name);
        shown.prepend(QDir::toNativeSeparators(name));
    }
    EXPECT_EQ(offered(), shown.first(8));
    QFile::remove(folder.path() + QStringLiteral("/sicherung8.dds"));
    user.expect(QStringLiteral("Die Datei %1 gibt es nicht!").arg(shown.at(1)), QStringLiteral("Fehler!"));
    openWindow("DatenAnzeigeWin")->findChild<QAction *>(QStringLiteral("Zuletzt1Action"))->trigger();
    shown.remove(1);
    EXPECT_EQ(offered(), shown.first(7));
    openWindow("DatenAnzeigeWin")->findChild<QAction *>(QStringLiteral("Zuletzt4Action"))->trigger();
    shown.move(4, 0);
    EXPECT_EQ(offered(), shown.first(7));
}

TEST_F(ViewerTest, PrintingCanBeCancelled)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "the system's own dialog, which no test can see";
#endif
    show(three);
    bool asked = false;
    events.after(200'000, [&asked] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->inherits("QPrintDialog") && widget->isVisible())
                asked = widget->close();
        }
    });
    pressIn("DatenAnzeigeWin", "DruckenBut");
    EXPECT_TRUE(asked);
}

TEST_F(ViewerTest, ADamagedFileIsShownUpToTheDamage)
{
    show(three.left(200));
    EXPECT_EQ(table()->rowCount(), 2);
    EXPECT_TRUE(summary().endsWith(u"beschädigt, gelesen wurde bis dahin. Datensatz 3, Byteposition 200: die Datei "
                                   "endet mitten im Datensatz (48 von 76 Bytes)"))
        << summary().toStdString();
    show(QByteArray());
    EXPECT_EQ(table()->rowCount(), 0);
}

} // namespace hr::tests
