#include "ui/qt_frontend.h"

#include "link/open_link.h"
#include "platform/files.h"
#include "platform/port_name.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "shown/record.h"
#include "tests/support/window_world.h"
#include "ui/port/zentrale_form.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QWindow>

#include <algorithm>

namespace hr::tests
{

namespace
{

QList<QMessageBox *> OpenBoxes()
{
    QList<QMessageBox *> boxes;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (box != nullptr && box->isVisible())
            boxes += box;
    }
    return boxes;
}

QMessageBox *BoxTitled(const QString &title)
{
    for (QMessageBox *box : OpenBoxes()) {
        if (box->windowTitle() == title)
            return box;
    }
    return nullptr;
}

} // namespace

class RealFrontend : public WindowWorld
{
protected:
    void SetUp() override
    {
        WindowWorld::SetUp();
        window().show();
        InstallAsk(frontend.get());
        InstallDesktop(frontend.get());
    }

    static QWidget *topLevel(const char *name)
    {
        const auto all = QApplication::topLevelWidgets();
        const auto found = std::ranges::find(all, QLatin1String(name), &QWidget::objectName);
        return found != all.end() ? *found : nullptr;
    }

    static ZentraleForm *selection()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == u"ZentraleForm" && widget->isVisible())
                return qobject_cast<ZentraleForm *>(widget);
        }
        return nullptr;
    }

    static QPushButton *in(ZentraleForm *form, const char *name)
    {
        return form->findChild<QPushButton *>(QLatin1String(name));
    }

    /// While a box waits: do something with it.
    void later(std::function<void()> action) { events.after(300'000, std::move(action)); }

    const BoxText question{QStringLiteral("a\rb"), QStringLiteral("Frage"), BoxIcon::Information};
};

TEST_F(RealFrontend, PostedBoxesOutliveTheWindowsInFront)
{
    later([this] {
        frontend->postBox({QStringLiteral("eins"), QStringLiteral("Erste"), BoxIcon::Critical});
        BoxTitled(QStringLiteral("Vorn"))->button(QMessageBox::Ok)->click();
    });
    frontend->showBox({QStringLiteral("x"), QStringLiteral("Vorn"), BoxIcon::Critical});
    frontend->postBox({QStringLiteral("zwei"), QStringLiteral("Zweite"), BoxIcon::Critical});
    EXPECT_EQ(OpenBoxes().size(), 2);
    restart(); // the main window goes, the boxes stay
    EXPECT_EQ(OpenBoxes().size(), 2);
    BoxTitled(QStringLiteral("Erste"))->button(QMessageBox::Ok)->click();
    frontend->postBox({QStringLiteral("drei"), QStringLiteral("Dritte"), BoxIcon::Critical});
    EXPECT_EQ(OpenBoxes().size(), 2);
}

TEST_F(RealFrontend, QuestionsSpeakGermanAndEndWithTheProgram)
{
    later([this] {
        QMessageBox *box = BoxTitled(QStringLiteral("Frage"));
        EXPECT_EQ(box->text(), QStringLiteral("a\nb"));
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::No));
        EXPECT_EQ(box->button(QMessageBox::No)->text(), QStringLiteral("&Nein"));
        box->button(QMessageBox::Yes)->click();
    });
    EXPECT_TRUE(frontend->askYesNo(question, false));
    later([] {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(BoxTitled(QStringLiteral("Frage")), &escape);
    });
    EXPECT_FALSE(frontend->askYesNo(question, true));
    later([] {
        QWidget *dialog = QApplication::activeModalWidget();
        EXPECT_GE(dialog->width(), 360) << "its title is to be read";
        dialog->close();
    });
    EXPECT_TRUE(frontend->askText(QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")).isEmpty());
    later([this] { window().close(); });
    EXPECT_FALSE(frontend->askYesNo(question, true));
    EXPECT_TRUE(OpenBoxes().isEmpty());
    EXPECT_FALSE(frontend->askYesNo(question, true)) << "no box any more while the program ends";
    EXPECT_TRUE(frontend->saveFileName(QStringLiteral("x"), QStringLiteral("*.dds"), QString()).isEmpty());
}

/// Pictures and backups each open where their last file was; the pixel editor is offered PNG files too.
TEST_F(RealFrontend, FileDialogsRememberAFolderForEachKind)
{
    QStringList filters;
    QString began;
    const auto choose = [&](const QString &filter, const QString &name) {
        later([&] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            filters = dialog->nameFilters();
            began = dialog->directory().path();
            dialog->selectFile(name);
            static_cast<QDialog *>(dialog)->accept();
        });
        EXPECT_EQ(frontend->openFileName(QStringLiteral("x"), filter), name);
    };
    const QString picture = folder.filePath(QStringLiteral("a/1.bmp"));
    const QString backup = folder.filePath(QStringLiteral("b/1.dds"));
    for (const QString &name : {picture, backup})
        ASSERT_TRUE(MakeFolder(QFileInfo(name).path()) && ReplaceFile(name, "x"));
    choose(QStringLiteral("*.bmp"), picture);
    EXPECT_EQ(filters.mid(0, 2), QStringList({QStringLiteral("*.bmp"), QStringLiteral("Bilder (*.bmp *.png)")}));
    choose(QStringLiteral("*.dds"), backup);
    EXPECT_EQ(filters, QStringList(QStringLiteral("*.dds")));
    choose(QStringLiteral("*.bmp"), picture);
    EXPECT_EQ(began, QFileInfo(picture).path());
    choose(QStringLiteral("*.dds"), backup);
    EXPECT_EQ(began, QFileInfo(backup).path());
}

TEST_F(RealFrontend, SelectionFromTheMenuSendsTheHandheldBackAndClosesThePort)
{
    trigger("ZentraleMenu");
    ZentraleForm *form = selection();
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->findChild<QRadioButton *>(QStringLiteral("Iopt2"))->isChecked());
    form->findChild<QLineEdit *>(QStringLiteral("ComPortNrTxt"))->setText(QStringLiteral(" ttyUSB7 "));
    form->findChild<QRadioButton *>(QStringLiteral("Iopt0"))->setChecked(true);
    auto *ok = form->findChild<QPushButton *>(QStringLiteral("OKButton"));
    const int before = handheld().state.normalModes;
    events.after(100'000, [ok] { ok->click(); }); // a second click while the first one works
    ok->click();
    EXPECT_EQ(handheld().state.normalModes, before + 1);
    EXPECT_FALSE(port.isOpen());
    EXPECT_FALSE(TheLink().HandreglerGefunden);
    EXPECT_EQ(TheLink().PortNumber.text, QStringLiteral(" ttyUSB7 "));
    EXPECT_EQ(TheLink().InterfaceType, InterfaceOrvanto1);
    EXPECT_FALSE(action("LokDataMenu")->isVisible());
    trigger("ZentraleMenu");
    form->close(); // Cancel: nobody waits, so the program goes on
    EXPECT_EQ(CurrentRunState(), RunState::Running);
}

TEST_F(RealFrontend, APortThatFailsSaysWhyAndTheUserGoesOnWithoutIt)
{
    TheLink().HandreglerGefunden = false;
    ClosePort();
    const QString full = PortPath(TheLink().PortNumber.text);
    for (const bool there : {true, false}) {
        if (there)
            port.refuseOpens(1);
        else
            port.hangUp();
        later([] { BoxTitled(QStringLiteral("Fehler"))->button(QMessageBox::Ok)->click(); });
        events.after(600'000, [&] {
            const QString reason = selection()->findChild<QLabel *>(QStringLiteral("GrundLbl"))->text();
            EXPECT_TRUE(reason.contains(full));
            EXPECT_TRUE(
                reason.contains(there ? QStringLiteral("anderes Programm") : QStringLiteral("gibt es nicht")));
            in(selection(), "OhneHandreglerBut")->click();
        });
        click("LeseLokDatensatzBut");
        EXPECT_EQ(CurrentRunState(), RunState::Running);
        EXPECT_EQ(selection(), nullptr);
    }
    trigger("ZentraleMenu");
    EXPECT_TRUE(in(selection(), "OhneHandreglerBut")->isHidden()) << "nobody waits for a handheld";
    selection()->close();
}

TEST_F(RealFrontend, TheProgressWindowAsksBeforeAJobStops)
{
    const StoppableJob job;
    frontend->showProgress(QStringLiteral("Lösche Lok 1"));
    QWidget *progress = topLevel("Fortschritt");
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->windowHandle()->transientParent(), window().windowHandle()) << "it never hides behind it";
    for (const char *text : {"Lösche Lok 1", "Lösche Lok 2"}) { // what stands there is what is heard
        frontend->showProgress(QString::fromUtf8(text));
        auto *line = progress->findChild<QLabel *>(QStringLiteral("AusgabeLbl"));
        EXPECT_EQ(QAccessible::queryAccessibleInterface(line)->text(QAccessible::Name), QString::fromUtf8(text));
    }
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        progress->close();
        progress->close();
        later([answer] {
            EXPECT_EQ(OpenBoxes().size(), 1);
            BoxTitled(QStringLiteral("Anhalten?"))->button(answer)->click();
        });
        events.run(1);
        EXPECT_EQ(StoppableJob::stopRequested(), answer == QMessageBox::Yes);
        EXPECT_TRUE(progress->isVisible());
    }
}

TEST_F(RealFrontend, CancelWhileOkWorksTakesNothingOver)
{
    trigger("ZentraleMenu");
    ZentraleForm *form = selection();
    ASSERT_NE(form, nullptr);
    const auto hint = [form] { return form->findChild<QLabel *>(QStringLiteral("PortHinweis"))->text(); };
    form->findChild<QLineEdit *>(QStringLiteral("ComPortNrTxt"))->setText(QStringLiteral("99"));
    events.after(100'000, [&] {
        EXPECT_TRUE(hint().startsWith(u"Der Handregler wird")) << "the window shows that it works";
        EXPECT_FALSE(in(form, "OKButton")->isEnabled());
        in(form, "CancelButton")->click();
    });
    const int before = handheld().state.normalModes;
    in(form, "OKButton")->click();
    EXPECT_EQ(handheld().state.normalModes, before + 1);
    EXPECT_EQ(TheLink().PortNumber.text, QStringLiteral("3"));
    EXPECT_TRUE(port.isOpen());
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(in(form, "OKButton")->isEnabled());
}

/// The program is ended while the "Timeout" box of a page sequence is open: the box goes, the flash is as it was or the
/// page is finished, and the program ends.
TEST_F(RealFrontend, TheEndClosesABoxInsideAPageSequence)
{
    for (int message = 1; message <= 6; ++message) {
        restart();
        InstallAsk(frontend.get());
        int ends = 0;
        OnEndReady([&ends] { ++ends; });
        field("AdrTxt")->setText(QStringLiteral("3"));
        click("LeseLokDatensatzBut");
        const QByteArray before = flashBytes(0, 512);
        field("LoknameTxt")->setText(QStringLiteral("NEU %1").arg(message));
        strike(&sim::Faults::missedRequest, message);
        const auto look = events.every(100, [] {
            if (BoxTitled(QStringLiteral("write_to_spibuf")) != nullptr
                || BoxTitled(QStringLiteral("move_spibuf_to_buf1")) != nullptr)
                RequestEnd();
        });
        click("SchreibeLokDatensatzBut");
        events.stop(look);
        events.run(1);
        EXPECT_EQ(ends, 1) << message;
        EXPECT_TRUE(OpenBoxes().isEmpty());
        EXPECT_EQ(flashBytes(0, 192), before.left(192)) << message;
        EXPECT_EQ(flashBytes(256, 256), before.mid(256)) << message;
        layout().faults.set({});
    }
}

TEST_F(RealFrontend, LongJobsShowHowFarTheyAreAndClosingTheMainWindowAsksFirst)
{
    auto *progress = topLevel("Fortschritt");
    ASSERT_NE(progress, nullptr);
    frontend->showProgress(QStringLiteral("Lese Lokdatensatz")); // a single command
    EXPECT_FALSE(progress->windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_TRUE(progress->findChild<QWidget *>(QStringLiteral("FortschrittBar"))->isHidden());
    frontend->hideProgress();
    {
        const StoppableJob job;
        frontend->showProgress(QStringLiteral("Lok-Daten: 3"));
        frontend->showAmount({3, 12, 100});
        EXPECT_TRUE(progress->windowFlags().testFlag(Qt::WindowCloseButtonHint));
        EXPECT_EQ(progress->windowTitle(), QStringLiteral("Fortschritt: 25 %"));
        EXPECT_FALSE(window().findChild<QWidget *>(QStringLiteral("StatusBalken"))->isHidden());
        EXPECT_EQ(
            progress->findChild<QLabel *>(QStringLiteral("RestzeitLbl"))->text(), QStringLiteral("noch 2 Minuten"));
        frontend->raiseWaitingWindow(); // a second command
        auto *hint = progress->findChild<QLabel *>(QStringLiteral("LaeuftLbl"));
        EXPECT_EQ(hint->text(), QStringLiteral("läuft noch …"));
        events.run(2.1);
        EXPECT_TRUE(hint->isHidden());
        for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
            later([answer] { BoxTitled(QStringLiteral("Anhalten?"))->button(answer)->click(); });
            window().close();
            events.run(1);
            EXPECT_EQ(CurrentRunState() == RunState::Ending, answer == QMessageBox::Yes);
        }
    }
    frontend->hideProgress();
    EXPECT_EQ(progress->windowTitle(), QStringLiteral("Fortschritt:"));
}

} // namespace hr::tests
