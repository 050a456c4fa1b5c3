#include "ui/qt_frontend.h"

#include "link/open_port.h"
#include "platform/run_control.h"
#include "platform/text.h"
#include "ui/main_window.h"
#include "ui/progress_window.h"
#include "ui/zentrale_form.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

#include <algorithm>

namespace
{

std::vector<QWidget *> waitingWindows; // innermost last

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

void BringForward(QWidget *window)
{
    window->raise();
    window->activateWindow();
}

} // namespace

WaitingWindow::WaitingWindow(QWidget *window)
{
    waitingWindows.push_back(window);
}

WaitingWindow::~WaitingWindow()
{
    waitingWindows.pop_back();
}

QtFrontend::QtFrontend()
    : progress(std::make_unique<ProgressWindow>()), zentraleForm(std::make_unique<ZentraleForm>())
{
    QObject::connect(zentraleForm.get(), &ZentraleForm::interfaceChosen, zentraleForm.get(),
        [this] { mainWindow->updateLokDataMenu(); });
}

QtFrontend::~QtFrontend() = default;

void QtFrontend::setMainWindow(MainWindow *window)
{
    mainWindow = window;
}

std::unique_ptr<QMessageBox> QtFrontend::makeBox(const BoxText &box)
{
    auto widget = std::make_unique<QMessageBox>(QApplication::activeWindow());
    widget->setTextFormat(Qt::PlainText);
    widget->setText(ScreenLines(box.text));
    widget->setWindowTitle(box.title);
    widget->setIcon(QtIcon(box.icon));
    widget->setWindowModality(Qt::ApplicationModal);
    return widget;
}

void QtFrontend::waitFor(QDialog &dialog)
{
    const WaitingWindow waiting(&dialog);
    dialog.show();
    PumpUntil([&dialog] { return !dialog.isVisible(); });
    dialog.hide();
}

void QtFrontend::showBox(const BoxText &box)
{
    if (BoxesAreSilent())
        return;
    const auto widget = makeBox(box);
    widget->setStandardButtons(QMessageBox::Ok);
    waitFor(*widget);
}

void QtFrontend::postBox(const BoxText &box)
{
    std::erase_if(postedBoxes, [](const auto &posted) { return !posted->isVisible(); });
    auto widget = makeBox(box);
    widget->setStandardButtons(QMessageBox::Ok);
    widget->show();
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
    waitFor(*widget);
    return widget->clickedButton() == widget->button(QMessageBox::Yes);
}

QString QtFrontend::askText(const QString &prompt, const QString &title)
{
    if (BoxesAreSilent())
        return {};
    QInputDialog dialog(QApplication::activeWindow());
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setOkButtonText(QStringLiteral("OK"));
    dialog.setCancelButtonText(QStringLiteral("Abbrechen"));
    waitFor(dialog);
    return dialog.result() == QDialog::Accepted ? dialog.textValue() : QString();
}

QString QtFrontend::fileName(const QString &title, const QString &filter, bool forSaving)
{
    if (BoxesAreSilent())
        return {};
    QFileDialog dialog(QApplication::activeWindow(), title, QString(), filter);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setAcceptMode(forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(forSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(filter.section(u'.', -1));
    waitFor(dialog);
    const QStringList chosen = dialog.selectedFiles();
    return dialog.result() == QDialog::Accepted && !chosen.isEmpty() ? chosen.constFirst() : QString();
}

QString QtFrontend::openFileName(const QString &title, const QString &filter)
{
    return fileName(title, filter, false);
}

QString QtFrontend::saveFileName(const QString &title, const QString &filter)
{
    return fileName(title, filter, true);
}

void QtFrontend::showProgress(const QString &text)
{
    if (BoxesAreSilent())
        return;
    progress->showText(text);
    mainWindow->placeInFront(progress.get());
}

void QtFrontend::setProgressText(const QString &text)
{
    progress->setText(text);
}

void QtFrontend::hideProgress()
{
    progress->hide();
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
    mainWindow->show();
}

void QtFrontend::raiseMainWindow()
{
    BringForward(mainWindow);
}

void QtFrontend::setMainWindowEnabled(bool enabled)
{
    mainWindow->setEnabled(enabled);
}

void QtFrontend::setMainWindowTitle(const QString &title)
{
    mainWindow->setWindowTitle(title);
}

void QtFrontend::setLokDataMenuVisible(bool visible)
{
    mainWindow->setLokDataMenuVisible(visible);
}

void QtFrontend::raiseWaitingWindow()
{
    if (!waitingWindows.empty())
        BringForward(waitingWindows.back());
    else if (SelectionAwaited)
        BringForward(zentraleForm.get());
    else if (progress->isVisible())
        progress->raise();
}

void QtFrontend::hideAllWindows()
{
    for (QWidget *window : QApplication::topLevelWidgets())
        window->hide();
}
