#include "ui/port/zentrale_form.h"

#include "handheld/discovery.h"
#include "link/cadence.h"
#include "link/open_link.h"
#include "platform/port_name.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/branding.h"
#include "program/preferences.h"
#include "program/run_control.h"
#include "shown/connection.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QCompleter>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QToolButton>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{

constexpr int PortNameRole = Qt::UserRole + 1;

/// Why the port could not be opened; empty when it was, or when nobody has tried.
QString PortFaultText()
{
    const QString port = PortPath(TheLink().PortNumber.text);
    if (const QString reason = Comm().faultText(); !reason.isEmpty())
        return reason + u'\n';
    switch (Comm().fault()) {
    case PortFault::None:
        return {};
    case PortFault::NotThere:
        return port.isEmpty() ? QString() : QStringLiteral("Den Anschluss %1 gibt es nicht.\n").arg(port);
    case PortFault::NotAllowed:
        return QStringLiteral("Für den Anschluss %1 fehlt die Berechtigung:\n"
                              "Der Benutzer muss zur Gruppe dialout gehören\n"
                              "(sudo adduser NAME dialout, dann neu anmelden).\n")
            .arg(port);
    case PortFault::InUse:
        return QStringLiteral("Den Anschluss %1 benutzt schon ein anderes Programm.\n").arg(port);
    case PortFault::Other:
        return QStringLiteral("Der Anschluss %1 lässt sich nicht öffnen.\n").arg(port);
    }
    Q_UNREACHABLE();
}

/// Why the window has come up, and what is to be done.
QString Reason()
{
    if (!SelectionAwaited)
        return QStringLiteral("Woran ist das Interface angeschlossen, und welches ist es?");
    const QString fault = PortFaultText();
    return (fault.isEmpty() ? QStringLiteral("Es wurde kein Handregler gefunden. ") : fault)
        + QStringLiteral("Bitte wählen Sie,\nworan das Interface angeschlossen ist und welches es ist.");
}

} // namespace

ZentraleForm::ZentraleForm()
    : LeavableWindow(nullptr, Qt::Dialog)
    , comPortNrTxt(NamedField(QStringLiteral("ComPortNrTxt"), QStringLiteral("ComPort Nr. :"), this))
    , schnellChk(new QCheckBox(QStringLiteral("Schnelle Übertragung"), this))
    , reasonLbl(NamedLabel(QStringLiteral("GrundLbl"), QString(), this))
    , hint(NamedLabel(QStringLiteral("PortHinweis"), QString(), this))
    , okButton(NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this))
    , cancelButton(NamedButton(QStringLiteral("CancelButton"), QStringLiteral("Abbrechen"), this))
    , withoutButton(NamedButton(QStringLiteral("OhneHandreglerBut"), QStringLiteral("Ohne Handregler weiter"), this))
{
    setObjectName(QStringLiteral("ZentraleForm"));
    setWindowTitle(QStringLiteral("Auswahl der Zentrale"));
    schnellChk->setObjectName(QStringLiteral("SchnellChk"));
    schnellChk->setToolTip(QStringLiteral(
        "Die Daten werden drei- bis fünfmal so schnell übertragen.\n"
        "Antwortet der Handregler dabei nicht sicher, geht es von selbst mit der gewohnten Geschwindigkeit weiter.\n"
        "Kommt das öfter vor, schalten Sie die schnelle Übertragung hier wieder aus."));
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(withoutButton);
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    buttonRow->addWidget(cancelButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(reasonLbl);
    layout->addWidget(makePortRow());
    layout->addWidget(hint);
    layout->addWidget(makeOptions());
    layout->addLayout(buttonRow);
    layout->addWidget(schnellChk);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    QWidget *last = comPortNrTxt;
    for (QWidget *control : std::initializer_list<QWidget *>{
             iopt.at(0), iopt.at(1), iopt.at(2), okButton, cancelButton, withoutButton, schnellChk}) {
        setTabOrder(last, control);
        last = control;
    }
    connect(okButton, &QPushButton::clicked, this, &ZentraleForm::accept);
    connect(cancelButton, &QPushButton::clicked, this, &ZentraleForm::leave);
    connect(withoutButton, &QPushButton::clicked, this, &ZentraleForm::goOnWithout);
    connect(comPortNrTxt, &QLineEdit::textEdited, this, &ZentraleForm::portChanged);
    setDefaultButton(okButton);
    AltKey(comPortNrTxt, Qt::Key_C);
    AltKey(okButton, Qt::Key_O);
    AltKey(cancelButton, Qt::Key_A);
    AltKey(withoutButton, Qt::Key_W);
    comPortNrTxt->setToolTip(QStringLiteral("Nummer oder Name des Anschlusses: 3, COM3, ttyUSB0\n"
                                            "im Netz: RECHNER:1234 (LocoNet over TCP)\n"
                                            "zum Ausprobieren: Demo"));
    withoutButton->setToolTip(QStringLiteral("Dateien, Vergleiche und Symbole lassen sich auch so bearbeiten."));
    showWorking(false);
}

/// The port field with the arrow that opens the list of ports.
QWidget *ZentraleForm::makePortRow()
{
    auto *row = new QWidget(this);
    auto *portLabel = NamedLabel(QStringLiteral("ComPortNrLbl"), QStringLiteral("ComPort Nr. :"), row);
    portLabel->setBuddy(comPortNrTxt);
    auto *arrow = new QToolButton(row);
    arrow->setObjectName(QStringLiteral("PortListeBut"));
    arrow->setArrowType(Qt::DownArrow);
    arrow->setToolTip(QStringLiteral("gefundene Anschlüsse zeigen"));
    arrow->setAccessibleName(arrow->toolTip());
    arrow->setFocusPolicy(Qt::NoFocus); // Down in the field does the same
    connect(arrow, &QToolButton::clicked, this, &ZentraleForm::showPorts);
    comPortNrTxt->installEventFilter(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(portLabel);
    layout->addWidget(comPortNrTxt, 1);
    layout->addWidget(arrow);
    return row;
}

bool ZentraleForm::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
        showPorts();
        return true;
    }
    return LeavableWindow::eventFilter(watched, event);
}

/// A list that the user has asked for: one that comes up by itself would swallow his next click.
void ZentraleForm::showPorts()
{
    offerPorts();
    comPortNrTxt->setFocus();
    QAbstractItemView *popup = portList->popup();
    popup->setMinimumWidth(popup->sizeHintForColumn(0) + 2 * popup->frameWidth());
    portList->complete();
}

/// The simulated handheld and a port in the network answer like the third interface.
void ZentraleForm::portChanged()
{
    if (IsDemoPort(comPortNrTxt->text()) || NetworkPortOf(comPortNrTxt->text()))
        iopt.at(InterfaceDirect - 1)->setChecked(true);
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
        AltKey(iopt.at(i), static_cast<Qt::Key>(Qt::Key_1 + static_cast<int>(i)));
    }
    TabToChosen({iopt.begin(), iopt.end()});
    return frame;
}

void ZentraleForm::offerPorts()
{
    auto *model = new QStandardItemModel(this);
    for (const PortEntry &port : Comm().availablePorts()) {
        auto *item = new QStandardItem;
        const QString words = port.description.isEmpty() ? QString() : QStringLiteral(" – ") + port.description;
        item->setText(port.name + words);
        item->setData(port.name, PortNameRole);
        model->appendRow(item);
    }
    delete portList;
    auto *completer = new QCompleter(model, this); // not the field's own: it opens only when it is asked for
    model->setParent(completer);
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    completer->setWidget(comPortNrTxt);
    connect(
        completer, qOverload<const QModelIndex &>(&QCompleter::activated), this, [this](const QModelIndex &chosen) {
            comPortNrTxt->setText(chosen.data(PortNameRole).toString());
            portChanged();
        });
    portList = completer;
}

void ZentraleForm::load()
{
    reasonLbl->setText(Reason());
    cancelButton->setToolTip(SelectionAwaited ? QStringLiteral("beendet das Programm") : QString());
    withoutButton->setVisible(SelectionAwaited);
    comPortNrTxt->setText(TheLink().PortNumber.text.isEmpty() ? likelyPort() : TheLink().PortNumber.text);
    for (size_t i = 0; i < iopt.size(); ++i) {
        iopt.at(i)->setAutoExclusive(false); // so that none can be chosen while nothing is known
        iopt.at(i)->setChecked(TheLink().InterfaceType == static_cast<int>(i) + 1);
        iopt.at(i)->setAutoExclusive(true);
    }
    schnellChk->setChecked(ChosenCadence() == Cadence::Events);
    present();
    comPortNrTxt->setFocus();
    comPortNrTxt->selectAll();
}

/// The port to propose where nothing is known: the only adapter that is plugged in.
QString ZentraleForm::likelyPort()
{
    QStringList plugged;
    for (const PortEntry &port : Comm().availablePorts()) {
        if (port.pluggedIn)
            plugged += port.name;
    }
    return plugged.size() == 1 ? plugged.constFirst() : QString();
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
    TheLink().use(chosen);
    ChooseCadence(schnellChk->isChecked() ? Cadence::Events : Cadence::Ticks);
    PreferFast(schnellChk->isChecked());
    Q_EMIT interfaceChosen();
    hide();
    WriteSettings(TheLink().settings());
    SelectionAnswer = SelectionRetry;
}

void ZentraleForm::leave()
{
    cancelled = working;
    hide();
    if (SelectionAwaited && SelectionAnswer == SelectionOpen)
        SelectionAnswer = SelectionCancelled;
}

/// As Cancel, but the program stays: the next command that needs the handheld looks for it again.
void ZentraleForm::goOnWithout()
{
    if (SelectionAwaited && SelectionAnswer == SelectionOpen)
        SelectionAnswer = SelectionWithout;
    leave();
}

} // namespace hr::ui
