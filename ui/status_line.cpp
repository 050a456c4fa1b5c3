#include "ui/status_line.h"

#include "link/link_state.h"
#include "platform/port_name.h"
#include "platform/world.h"
#include "program/branding.h"
#include "ui/common/connection.h"
#include "ui/widgets/build_controls.h"

#include <QLabel>
#include <QPalette>
#include <QProgressBar>

namespace hr::ui
{

namespace
{

constexpr int BarWidth = 140;
constexpr QColor DemoColour(255, 224, 130);

/// A word or two; the whole caption is the tool tip.
QString InterfaceName()
{
    switch (TheLink().InterfaceType) {
    case InterfaceOrvanto1:
        return QStringLiteral("Orvanto 1");
    case Interface48230:
        return QStringLiteral("Interface 48230");
    case InterfaceDirect:
        return QStringLiteral("Orvanto 2");
    default:
        return QStringLiteral("kein Interface gewählt");
    }
}

QString StateName()
{
    switch (PresentService()) {
    case Service::Connected:
        return QStringLiteral("verbunden");
    case Service::OperatingMode:
        return QStringLiteral("im Bedienmodus");
    case Service::NoHandheld:
        return QStringLiteral("kein Handregler");
    }
    Q_UNREACHABLE();
}

QString ConnectionText()
{
    const QString device = PortPath(TheLink().PortNumber.text);
    if (device.isEmpty())
        return QStringLiteral("kein Anschluss gewählt: ") + StateName();
    if (!IsDemoPort(TheLink().PortNumber.text))
        return QStringLiteral("%1, %2: %3").arg(device, InterfaceName(), StateName());
    const QString demo = QStringLiteral("Demo: nachgebildeter Handregler, nichts wird gesendet");
    return PresentService() == Service::Connected ? demo : demo + QStringLiteral(" (%1)").arg(StateName());
}

QString InterfaceWords()
{
    return TheLink().InterfaceType == InterfaceDirect ? TheBranding().directInterfaceCaption : QString();
}

} // namespace

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent)
    , connectionLbl(NamedLabel(QStringLiteral("VerbindungLbl"), QString(), this))
    , deedLbl(NamedLabel(QStringLiteral("LetzteTatLbl"), QString(), this))
    , bar(new QProgressBar(this))
{
    setObjectName(QStringLiteral("Statuszeile"));
    connectionLbl->setAccessibleName(QStringLiteral("Verbindung"));
    deedLbl->setAccessibleName(QStringLiteral("Zuletzt"));
    bar->setObjectName(QStringLiteral("StatusBalken"));
    bar->setAccessibleName(QStringLiteral("Fortschritt"));
    bar->setMaximumWidth(BarWidth);
    bar->setTextVisible(false);
    bar->hide();
    connectionLbl->setMargin(2);
    // A long text never makes the window wider; the rest of it is the tool tip.
    deedLbl->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    deedLbl->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    addWidget(connectionLbl);
    addWidget(deedLbl, 1);
    addWidget(bar);
    showConnection();
}

void StatusLine::showConnection()
{
    connectionLbl->setText(ConnectionText());
    connectionLbl->setToolTip(InterfaceWords());
    const bool demo = IsDemoPort(TheLink().PortNumber.text);
    QPalette colours = palette();
    if (demo) {
        colours.setColor(QPalette::Window, DemoColour);
        colours.setColor(QPalette::WindowText, Qt::black);
    }
    connectionLbl->setAutoFillBackground(demo);
    connectionLbl->setPalette(colours);
}

void StatusLine::showDeed(const QString &what)
{
    const QString text = what + TheEvents().now().toString(QStringLiteral(", HH:mm"));
    deedLbl->setText(text);
    deedLbl->setToolTip(text);
}

void StatusLine::showAmount(int done, int all)
{
    bar->setRange(0, all);
    bar->setValue(done);
    bar->show();
}

void StatusLine::hideAmount()
{
    bar->hide();
}

} // namespace hr::ui
