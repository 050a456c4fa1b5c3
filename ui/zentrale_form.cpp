#include "ui/zentrale_form.h"

#include "handheld/discovery.h"
#include "link/branding.h"
#include "link/open_port.h"
#include "link/settings_file.h"
#include "platform/run_control.h"
#include "platform/world.h"
#include "ui/build_controls.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QCompleter>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

ZentraleForm::ZentraleForm()
    : QWidget(nullptr, Qt::Dialog)
    , comPortNrTxt(NamedField(QStringLiteral("ComPortNrTxt"), QStringLiteral("ComPort Nr. :"), this))
{
    setObjectName(QStringLiteral("ZentraleForm"));
    setWindowTitle(QStringLiteral("Auswahl der Zentrale"));
    auto *portLabel = NamedLabel(QStringLiteral("ComPortNrLbl"), QStringLiteral("ComPort Nr. :"), this);
    portLabel->setBuddy(comPortNrTxt);
    auto *hint = NamedLabel(
        QStringLiteral("PortHinweis"), QStringLiteral("Zum Ausprobieren ohne Handregler: Demo eingeben"), this);
    auto *okButton = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
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
    connect(cancelButton, &QPushButton::clicked, this, &ZentraleForm::cancel);
    connect(comPortNrTxt, &QLineEdit::returnPressed, this, &ZentraleForm::accept);
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
    show();
    raise();
    activateWindow();
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
    if (!isVisible())
        return;
    if (SelectionAwaited) {
        takeSettings();
        return;
    }
    const BusyScope busy; // the port may not be closed under a running command
    if (!busy.ok())
        return;
    takeSettings();
}

void ZentraleForm::takeSettings()
{
    if (chosenKind() == InterfaceNone) {
        TheFrontend().showBox({QStringLiteral("Bitte wählen Sie das Interface aus, das angeschlossen ist!"),
            QStringLiteral("Achtung!"), BoxIcon::None});
        return;
    }
    CloseHandheld(); // a found one would stay in service behind the closed port
    if (Comm().isOpen())
        ClosePort();
    InterfaceType = chosenKind();
    PortNumber = {comPortNrTxt->text(), false};
    Q_EMIT interfaceChosen();
    hide();
    WriteSettings();
    SelectionAnswer = 1;
}

void ZentraleForm::cancel()
{
    hide();
    if (SelectionAwaited && SelectionAnswer == 0)
        SelectionAnswer = -1;
}

void ZentraleForm::closeEvent(QCloseEvent *event)
{
    event->ignore();
    cancel();
}

void ZentraleForm::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        cancel();
    else
        QWidget::keyPressEvent(event);
}
