#include "ui/selection/zentrale_form.h"

#include "handheld/discovery.h"
#include "link/open_link.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/branding.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "ui/widgets/build_controls.h"

#include <QCompleter>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

ZentraleForm::ZentraleForm()
    : LeavableWindow(nullptr, Qt::Dialog)
    , comPortNrTxt(NamedField(QStringLiteral("ComPortNrTxt"), QStringLiteral("ComPort Nr. :"), this))
    , hint(NamedLabel(QStringLiteral("PortHinweis"), QString(), this))
    , okButton(NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this))
{
    setObjectName(QStringLiteral("ZentraleForm"));
    setWindowTitle(QStringLiteral("Auswahl der Zentrale"));
    auto *portLabel = NamedLabel(QStringLiteral("ComPortNrLbl"), QStringLiteral("ComPort Nr. :"), this);
    portLabel->setBuddy(comPortNrTxt);
    auto *cancelButton = NamedButton(QStringLiteral("CancelButton"), QStringLiteral("Abbrechen"), this);

    auto *portRow = new QHBoxLayout;
    portRow->addWidget(portLabel);
    portRow->addWidget(comPortNrTxt, 1);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    buttonRow->addWidget(cancelButton);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(portRow);
    layout->addWidget(hint);
    layout->addWidget(makeOptions());
    layout->addLayout(buttonRow);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    QWidget *last = comPortNrTxt;
    for (QWidget *control :
        std::initializer_list<QWidget *>{iopt.at(0), iopt.at(1), iopt.at(2), okButton, cancelButton}) {
        setTabOrder(last, control);
        last = control;
    }
    connect(okButton, &QPushButton::clicked, this, &ZentraleForm::accept);
    connect(cancelButton, &QPushButton::clicked, this, &ZentraleForm::leave);
    connect(comPortNrTxt, &QLineEdit::returnPressed, this, &ZentraleForm::accept);
    showWorking(false);
}

QWidget *ZentraleForm::makeOptions()
{
    const std::array<QString, 3> captions{QStringLiteral("Orvanto 1 oder Tessaro"), QStringLiteral("Interface 48230"),
        TheBranding().directInterfaceCaption};
    auto *frame = new QGroupBox(QStringLiteral("Interface:"), this);
    auto *layout = new QVBoxLayout(frame);
    for (size_t i = 0; i < iopt.size(); ++i) {
        iopt.at(i) = new QRadioButton(captions.at(i), frame);
        iopt.at(i)->setObjectName(QStringLiteral("Iopt%1").arg(i));
        layout->addWidget(iopt.at(i));
    }
    return frame;
}

void ZentraleForm::offerPorts()
{
    auto *completer = new QCompleter(Comm().availablePorts(), comPortNrTxt);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    delete comPortNrTxt->completer();
    comPortNrTxt->setCompleter(completer);
}

void ZentraleForm::load()
{
    offerPorts();
    comPortNrTxt->setText(PortNumber.text);
    for (size_t i = 0; i < iopt.size(); ++i) {
        iopt.at(i)->setAutoExclusive(false); // so that none can be chosen while nothing is known
        iopt.at(i)->setChecked(InterfaceType == static_cast<int>(i) + 1);
        iopt.at(i)->setAutoExclusive(true);
    }
    present();
    comPortNrTxt->setFocus();
    comPortNrTxt->selectAll();
}

int ZentraleForm::chosenKind() const
{
    for (size_t i = 0; i < iopt.size(); ++i) {
        if (iopt.at(i)->isChecked())
            return static_cast<int>(i) + 1;
    }
    return InterfaceNone;
}

void ZentraleForm::accept()
{
    if (!isVisible() || working)
        return;
    if (SelectionAwaited) {
        takeSettings();
        return;
    }
    const BusyScope busy; // the port may not be closed under a running command
    if (busy.ok())
        takeSettings();
}

void ZentraleForm::showWorking(bool works)
{
    working = works;
    cancelled = false;
    hint->setText(works ? QStringLiteral("Der Handregler wird in den Bedienmodus zurückgeschickt ...")
                        : QStringLiteral("Zum Ausprobieren ohne Handregler: Demo eingeben"));
    okButton->setEnabled(!works);
    comPortNrTxt->setEnabled(!works);
    for (QRadioButton *option : iopt)
        option->setEnabled(!works);
}

/// Sends a found handheld back, since it would stay in service behind the closed port. False after a cancel.
bool ZentraleForm::releasePort()
{
    showWorking(true);
    static_cast<void>(SendHandheldBack()); // a silent one needs nothing more
    const bool taken = !cancelled && !BoxesAreSilent();
    showWorking(false);
    if (taken && Comm().isOpen())
        ClosePort();
    return taken;
}

void ZentraleForm::takeSettings()
{
    const LinkSettings chosen{{comPortNrTxt->text(), false}, chosenKind()};
    if (chosen.interfaceType == InterfaceNone) {
        TheAsk().showBox({QStringLiteral("Bitte wählen Sie das Interface aus, das angeschlossen ist!"),
            QStringLiteral("Achtung!"), BoxIcon::None});
        return;
    }
    if (!releasePort())
        return;
    UseSettings(chosen);
    Q_EMIT interfaceChosen();
    hide();
    WriteSettings(chosen);
    SelectionAnswer = 1;
}

void ZentraleForm::leave()
{
    cancelled = working;
    hide();
    if (SelectionAwaited && SelectionAnswer == 0)
        SelectionAnswer = -1;
}
