// The bus monitor, through its real controls, while the program works.
#include "ui/busmonitor/bus_monitor_window.h"

#include "link/open_link.h"
#include "platform/files.h"
#include "platform/world.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "tests/support/window_world.h"
#include "ui/common/deeds.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

namespace hr::tests
{

class BusMonitor : public WindowWorld
{
protected:
    void SetUp() override
    {
        WindowWorld::SetUp();
        ShowHandheld({QStringLiteral("1.2"), QStringLiteral("14.3.8"), QStringLiteral("51201"), {}});
        window().show();
        trigger("busmonitor_menu");
        look();
    }
    static QWidget *win() { return WindowNamed(u"BusMonitorWin"); }
    template <typename Control> static Control *in(const char *name)
    {
        return win()->findChild<Control *>(QLatin1String(name));
    }
    static QAbstractItemModel *rows() { return in<QTableView>("BusTab")->model(); }
    static QString cell(int row, int column) { return rows()->index(row, column).data().toString(); }
    static QString state() { return in<QLabel>("StandLbl")->text(); }
    static void look() { WaitSeconds(0.3); }
};

TEST_F(BusMonitor, ShowsWhatATransferSendsAndWhatOthersSay)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    layout().inject({0x83, 0x7C});
    layout().inject({0x83, 0x11});
    look();
    ASSERT_GT(rows()->rowCount(), 8);
    EXPECT_EQ(cell(0, 1), QStringLiteral("eigene"));
    EXPECT_EQ(cell(0, 4), QStringLiteral("liest Flash 0x0000C0, 64 Bytes"));
    EXPECT_EQ(cell(1, 4), QStringLiteral("Quittung: erledigt"));
    const int last = rows()->rowCount() - 1;
    EXPECT_EQ(cell(last, 3), QStringLiteral("falsch"));
    EXPECT_EQ(cell(last - 1, 1), QStringLiteral("fremd"));
    EXPECT_TRUE(state().contains(QStringLiteral("1 mit falscher Prüfsumme"))) << state().toStdString();
    const auto count = [] { return rows()->rowCount(); };
    in<QLineEdit>("OpcodeTxt")->setText(QStringLiteral("83"));
    EXPECT_EQ(count(), 2);
    in<QCheckBox>("NurFalscheChk")->setChecked(true);
    EXPECT_EQ(count(), 1);
    in<QCheckBox>("NurFalscheChk")->setChecked(false);
    in<QLineEdit>("OpcodeTxt")->setText(QStringLiteral("zz"));
    EXPECT_EQ(count(), last + 1) << "what is no opcode filters nothing";
    in<QLineEdit>("OpcodeTxt")->clear();
    in<QLineEdit>("FilterTxt")->setText(QStringLiteral("puffer ab"));
    EXPECT_EQ(cell(0, 4), QStringLiteral("Puffer ab 0 lesen"));
    in<QLineEdit>("FilterTxt")->clear();
    in<QComboBox>("VonBox")->setCurrentIndex(2);
    EXPECT_EQ(cell(0, 4), QStringLiteral("Quittung: erledigt"));
    in<QPushButton>("KopierenBut")->click();
    EXPECT_TRUE(
        QApplication::clipboard()->text().endsWith(QStringLiteral(" < 83 11 ; FALSCHE PRÜFSUMME, Fahrstrom ein")));
}

TEST_F(BusMonitor, PausesSavesAndShowsAnEarlierTrace)
{
    in<QPushButton>("PauseBut")->setChecked(true);
    layout().inject({0x83, 0x7C});
    look();
    EXPECT_EQ(rows()->rowCount(), 0);
    EXPECT_TRUE(state().contains(QStringLiteral("1 neue warten"))) << state().toStdString();
    user.ignoreTexts = true;
    user.expect({}, {}, folder.filePath(QStringLiteral("pause.lntrace")));
    in<QPushButton>("SpeichernBut")->click();
    EXPECT_TRUE(ReadWholeFile(folder.filePath(QStringLiteral("pause.lntrace")))->contains("83 7C ;"));
    in<QPushButton>("PauseBut")->setChecked(false);
    EXPECT_EQ(rows()->rowCount(), 1);
    const QString file = folder.filePath(QStringLiteral("spur"));
    user.expect({}, {}, file);
    in<QPushButton>("SpeichernBut")->click();
    layout().inject({0x82, 0x7D}); // what comes later goes there too
    look();
    const QByteArray kept = ReadWholeFile(file + u".lntrace").value_or(QByteArray());
    EXPECT_TRUE(kept.contains("83 7C ; Fahrstrom ein\n")) << kept.toStdString();
    EXPECT_TRUE(kept.contains("82 7D ; Fahrstrom aus\n")) << kept.toStdString();
    EXPECT_TRUE(ReplaceFile(folder.filePath(QStringLiteral("alt.lntrace")), "0.000001 < 85 7A\n"));
    EXPECT_TRUE(ReplaceFile(folder.filePath(QStringLiteral("neu.lntrace")), "quatsch\n"));
    user.expect({}, {}, folder.filePath(QStringLiteral("alt.lntrace")));
    in<QPushButton>("OeffnenBut")->click();
    ASSERT_EQ(rows()->rowCount(), 1);
    EXPECT_EQ(cell(0, 4), QStringLiteral("Nothalt für alle"));
    user.expect({}, {}, folder.filePath(QStringLiteral("neu.lntrace")));
    user.expect({}, {}); // the box
    in<QPushButton>("OeffnenBut")->click();
    EXPECT_EQ(rows()->rowCount(), 1) << "the shown one stays";
    layout().inject({0x82, 0x7D});
    look();
    EXPECT_EQ(rows()->rowCount(), 1) << "an earlier trace does not grow";
    win()->close();
    trigger("busmonitor_menu");
    layout().inject({0x82, 0x7D});
    look();
    EXPECT_EQ(cell(0, 4), QStringLiteral("Fahrstrom aus")) << "it listens again";
}

TEST_F(BusMonitor, OpensAClosedPortAndTheNextCommandFindsTheHandheld)
{
    win()->close();
    ClosePort();
    TheLink().use({{QStringLiteral("3"), false}, InterfaceDirect});
    trigger("busmonitor_menu");
    EXPECT_TRUE(Comm().isOpen());
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    EXPECT_EQ(field("LoknameTxt")->text(), QStringLiteral("BR 01 1066"));
    look();
    EXPECT_EQ(cell(0, 4), QStringLiteral("Handregler rufen oder in den Bedienmodus schicken"));
}

TEST_F(BusMonitor, AProblemReportTellsNothingPersonalUnlessItMay)
{
    field("AdrTxt")->setText(QStringLiteral("3"));
    click("LeseLokDatensatzBut");
    NoteReport(QStringLiteral("Fehler!"), QStringLiteral("%1/a.dds mit BR 01 1066").arg(QDir::homePath()));
    TheLink().PortNumber.text = QStringLiteral("annas-pc:1234");
    const QString data = QStringLiteral("E5 1F 08 66 33");
    user.ignoreTexts = true;
    for (const bool shown : {false, true}) {
        const QString file = folder.filePath(QStringLiteral("bericht%1.txt").arg(shown));
        user.expect({}, {}, shown ? QStringLiteral("Ja") : QStringLiteral("Nein"));
        user.expect({}, {}, file);
        trigger("problembericht_menu");
        const QString text = QString::fromUtf8(ReadWholeFile(file).value_or(QByteArray()));
        for (const char *always :
            {"VESKA II TOOL ", "Interface 3", "51201", "liest Flash 0x0000C0, 64 Bytes", "Fehler!: "})
            EXPECT_TRUE(text.contains(QString::fromUtf8(always)) || (always[0] == 'V' && text.contains(u"Arvelo")))
                << always;
        EXPECT_EQ(text.contains(QStringLiteral("BR 01 1066")), shown) << text.toStdString();
        EXPECT_EQ(text.contains(QStringLiteral("annas-pc:1234")), shown);
        EXPECT_TRUE(shown || text.contains(QStringLiteral("RECHNER:1234")));
        EXPECT_EQ(text.contains(QDir::homePath()), shown);
        EXPECT_EQ(text.contains(data + QStringLiteral(" .. ; Handregler\n")), !shown);
    }
}

} // namespace hr::tests
