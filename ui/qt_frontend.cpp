#include "ui/qt_frontend.h"

#include "platform/text.h"
#include "platform/world.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "ui/common/connection.h"
#include "ui/common/deeds.h"
#include "ui/compare/compare_commands.h"
#include "ui/main_window.h"
#include "ui/port/zentrale_form.h"
#include "ui/status_line.h"
#include "ui/widgets/progress_window.h"
#include "ui/widgets/window_place.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace hr::ui
{

namespace
{

constexpr qsizetype MostBoxLines = 25;
constexpr qint64 HintUs = 2'000'000;
constexpr int TitleButtons = 160; // logical pixels beside a box's title
constexpr int TextMargins = 16;
constexpr int LongestLine = 110; // characters; longer lines, such as lists of addresses, are broken
constexpr int LeastInputWidth = 360;
constexpr int BoxSurroundings = 200; // icon, margins, frame

QMessageBox::Icon QtIcon(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::Information:
        return QMessageBox::Information;
    case BoxIcon::Critical:
        return QMessageBox::Critical;
    default:
        return QMessageBox::NoIcon;
    }
}

/// The style's pictures on buttons say nothing that their captions do not.
void TakeIconsAway(const QDialog &dialog)
{
    for (QPushButton *button : dialog.findChildren<QPushButton *>())
        button->setIcon(QIcon());
}

/// A box is as wide as its title needs, beside the buttons of its frame, and as the lines of its text: it breaks none
/// of them that is a sentence while the screen has room.
void FitWidth(QMessageBox &box)
{
    auto *label = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
    label->ensurePolished(); // it may have a font of its own
    const QFontMetrics metrics = label->fontMetrics();
    const int text = metrics.size(0, box.text()).width() + TextMargins;
    const int room = box.screen()->availableSize().width() - BoxSurroundings;
    label->setMinimumWidth(qMin(text, qMin(room, metrics.averageCharWidth() * LongestLine)));
    const int title = box.fontMetrics().horizontalAdvance(box.windowTitle()) + TitleButtons;
    if (auto *layout = qobject_cast<QGridLayout *>(box.layout()))
        layout->addItem(
            new QSpacerItem(title, 0, QSizePolicy::Minimum), layout->rowCount(), 0, 1, layout->columnCount());
}

void BringForward(QWidget *window)
{
    window->raise();
    window->activateWindow();
}

} // namespace

QtFrontend::QtFrontend()
    : progress(std::make_unique<ProgressWindow>()), zentraleForm(std::make_unique<ZentraleForm>())
{
    QObject::connect(zentraleForm.get(), &ZentraleForm::interfaceChosen, zentraleForm.get(),
        [this] { mainWindow->updateLokDataMenu(); });
    progress->onClose = [this] { askToStop(false); };
    OnBusyAgain([this] { raiseWaitingWindow(); });
}

QtFrontend::~QtFrontend() = default;

void QtFrontend::setMainWindow(MainWindow *window)
{
    mainWindow = window;
}

/// Boxes have no parent widget, since the window in front may be destroyed before them; the window system is told over
/// which window they belong.
std::unique_ptr<QMessageBox> QtFrontend::makeBox(const BoxText &box)
{
    auto widget = std::make_unique<QMessageBox>();
    widget->setTextFormat(Qt::PlainText);
    const QStringList lines = ScreenLines(box.text).split(u'\n');
    widget->setText(lines.first(qMin(lines.size(), MostBoxLines)).join(u'\n'));
    if (lines.size() > MostBoxLines)
        widget->setDetailedText(lines.join(u'\n')); // the buttons must stay on the screen
    widget->setWindowTitle(box.title);
    widget->setIcon(QtIcon(box.icon));
    widget->setWindowModality(Qt::ApplicationModal);
    FitWidth(*widget);
    BelongTo(*widget, front());
    return widget;
}

void QtFrontend::showBox(const BoxText &box)
{
    if (BoxesAreSilent())
        return;
    NoteReport(box.title, box.text);
    const auto widget = makeBox(box);
    widget->setStandardButtons(QMessageBox::Ok);
    TakeIconsAway(*widget);
    WaitForDialog(*widget);
}

void QtFrontend::postBox(const BoxText &box)
{
    std::erase_if(postedBoxes, [](const auto &posted) { return !posted->isVisible(); });
    const QRect over = front()->frameGeometry();
    auto widget = makeBox(box);
    const auto tells = [&widget](const auto &posted) { return posted->text() == widget->text(); };
    if (std::ranges::any_of(postedBoxes, tells))
        return; // it stands on the screen already
    NoteReport(box.title, box.text);
    widget->setStandardButtons(QMessageBox::Ok);
    TakeIconsAway(*widget);
    widget->show();
    PlaceOver(*widget, over);
    postedBoxes.push_back(std::move(widget));
}

bool QtFrontend::askYesNo(const BoxText &box, bool defaultYes)
{
    if (BoxesAreSilent())
        return false;
    const auto widget = makeBox(box);
    widget->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    widget->button(QMessageBox::Yes)->setText(QStringLiteral("&Ja"));
    widget->button(QMessageBox::No)->setText(QStringLiteral("&Nein"));
    widget->setDefaultButton(defaultYes ? QMessageBox::Yes : QMessageBox::No);
    widget->setEscapeButton(QMessageBox::No);
    TakeIconsAway(*widget);
    WaitForDialog(*widget);
    return widget->clickedButton() == widget->button(QMessageBox::Yes);
}

QString QtFrontend::askText(const QString &prompt, const QString &title, const QString &proposal)
{
    if (BoxesAreSilent())
        return {};
    QInputDialog dialog;
    dialog.setTextValue(proposal);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setOkButtonText(QStringLiteral("OK"));
    dialog.setCancelButtonText(QStringLiteral("Abbrechen"));
    // The dialog keeps to the size of its contents: only these make it wide enough for its title.
    const int width = qMax(LeastInputWidth, dialog.fontMetrics().horizontalAdvance(title) + TitleButtons);
    for (QLineEdit *field : dialog.findChildren<QLineEdit *>())
        field->setMinimumWidth(width);
    TakeIconsAway(dialog);
    BelongTo(dialog, front());
    WaitForDialog(dialog);
    return dialog.result() == QDialog::Accepted ? dialog.textValue() : QString();
}

QString QtFrontend::fileName(const QString &title, const QString &filter, const QString *proposal)
{
    const bool forSaving = proposal != nullptr;
    const QString first = filter.section(u' ', 0, 0); // backups have one folder, alone or with lists
    QFileDialog dialog(nullptr, title, lastFolders.value(first), filter);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setAcceptMode(forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    // The dialog's own questions would wait in a loop of their own.
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (!forSaving && filter == u"*.bmp") // the pixel editor reads PNG files as well
        dialog.setNameFilters({filter, QStringLiteral("Bilder (*.bmp *.png)"), QStringLiteral("Alle Dateien (*)")});
    dialog.setDefaultSuffix(first.section(u'.', -1));
    if (forSaving && !proposal->isEmpty())
        dialog.selectFile(*proposal);
    else if (const QString last = lastFiles.value(filter); !forSaving && QFileInfo(last).isFile())
        dialog.selectFile(last);
    BelongTo(dialog, front());
    while (!BoxesAreSilent()) {
        WaitForDialog(dialog);
        const QStringList chosen = dialog.selectedFiles();
        if (dialog.result() != QDialog::Accepted || chosen.isEmpty())
            return {};
        if (!fileAccepted(chosen.constFirst(), forSaving))
            continue;
        lastFolders.insert(first, QFileInfo(chosen.constFirst()).absolutePath());
        lastFiles.insert(filter, chosen.constFirst());
        return chosen.constFirst();
    }
    return {};
}

/// Asks before an existing file is replaced, and tells that a file to be opened does not exist.
bool QtFrontend::fileAccepted(const QString &name, bool forSaving)
{
    const bool exists = QFileInfo(name).isFile();
    if (forSaving && exists) {
        return askYesNo({QStringLiteral("Die Datei \"%1\" gibt es schon.\rSoll sie ersetzt werden?").arg(name),
                            QStringLiteral("Datei ersetzen?"), BoxIcon::None},
            false);
    }
    if (!forSaving && !exists)
        showBox({QStringLiteral("Die Datei \"%1\" gibt es nicht!").arg(name), QStringLiteral("Fehler!"),
            BoxIcon::Critical});
    return forSaving || exists;
}

QString QtFrontend::openFileName(const QString &title, const QString &filter)
{
    return fileName(title, filter, nullptr);
}

QString QtFrontend::saveFileName(const QString &title, const QString &filter, const QString &proposal)
{
    return fileName(title, filter, &proposal);
}

void QtFrontend::showProgress(const QString &text)
{
    if (BoxesAreSilent())
        return;
    progress->showText(text, JobCanBeStopped(), *front());
}

/// The window that the user works in, also when the progress window has just gone and none is active: a box over another
/// one would bring that to the front.
QWidget *QtFrontend::front()
{
    QWidget *active = QApplication::activeWindow();
    if (active != nullptr && active != progress.get()) {
        if (qobject_cast<QDialog *>(active) != nullptr)
            return active;
        worksIn = active;
    }
    return worksIn != nullptr && worksIn->isVisible() ? worksIn.data() : mainWindow;
}

void QtFrontend::showAmount(const Amount &amount)
{
    if (BoxesAreSilent())
        return;
    const auto done = static_cast<int>(amount.done);
    const auto all = static_cast<int>(amount.all);
    progress->showAmount(done, all, amount.secondsLeft);
    mainWindow->statusLine().showAmount(done, all);
}

/// During a job over many records: asks whether to stop after the current record.
void QtFrontend::askToStop(bool andEnd)
{
    if (!JobCanBeStopped() || askingToStop)
        return;
    askingToStop = true;
    // Asked from the event loop: a question may not wait inside the window system's close handling.
    TheEvents().post([this, andEnd] {
        const BoxText question{QStringLiteral("Soll nach dem laufenden Datensatz angehalten werden?"),
            QStringLiteral("Anhalten?"), BoxIcon::None};
        const bool stops = askYesNo(question, false);
        askingToStop = false;
        if (stops)
            ConfirmStop();
        if (stops && andEnd)
            RequestEnd();
    });
}

void QtFrontend::endProgram()
{
    if (JobCanBeStopped())
        askToStop(true);
    else
        RequestEnd();
}

void QtFrontend::hideProgress()
{
    progress->hide();
    mainWindow->statusLine().hideAmount();
}

void QtFrontend::showSelectionWindow()
{
    zentraleForm->load();
}

void QtFrontend::hideSelectionWindow()
{
    zentraleForm->hide();
}

void QtFrontend::openSelectionFromMenu()
{
    zentraleForm->load();
}

void QtFrontend::showMainWindow()
{
    mainWindow->appear();
}

void QtFrontend::raiseMainWindow()
{
    BringForward(mainWindow);
}

void QtFrontend::setMainWindowEnabled(bool enabled)
{
    mainWindow->enable(enabled);
}

void QtFrontend::compareWithHandheld(const QString &fileName)
{
    CompareBackupWithHandheld(fileName);
}

void QtFrontend::compareLocos(const std::vector<RosterLoco> &locos)
{
    CompareLocosWithHandheld(locos);
}

void QtFrontend::showInEditor(int address, const LocoRecord &record)
{
    mainWindow->showLoco(address, record);
    BringForward(mainWindow);
}

void QtFrontend::setMainWindowTitle(const QString &title)
{
    mainWindow->setWindowTitle(title);
}

void QtFrontend::setLokDataMenuVisible(bool visible)
{
    mainWindow->setLokDataMenuVisible(visible);
    TellConnectionChange();
}

void QtFrontend::raiseWaitingWindow()
{
    if (WaitedFor() != nullptr)
        BringForward(WaitedFor());
    else if (SelectionAwaited)
        BringForward(zentraleForm.get());
    else if (progress->isVisible())
        progress->raise();
    if (!progress->isVisible())
        return;
    progress->showHint(QStringLiteral("läuft noch …"));
    TheEvents().after(HintUs, [this, hint = ++hints] {
        if (hint == hints)
            progress->showHint(QString());
    });
}

void QtFrontend::hideAllWindows()
{
    for (QWidget *window : QApplication::topLevelWidgets())
        window->hide();
}

} // namespace hr::ui
