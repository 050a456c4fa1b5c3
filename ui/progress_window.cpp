#include "ui/progress_window.h"

#include "platform/run_control.h"
#include "platform/world.h"
#include "ui/build_controls.h"

#include <QCloseEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace
{
constexpr int MinimumWidth = 320;
constexpr int Margin = 20;
} // namespace

ProgressWindow::ProgressWindow()
    : QWidget(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint | Qt::WindowCloseButtonHint)
    , ausgabeLbl(NamedLabel(QStringLiteral("AusgabeLbl"), QString(), this))
{
    setObjectName(QStringLiteral("Fortschritt"));
    setWindowTitle(QStringLiteral("Fortschritt:"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    ausgabeLbl->setMinimumWidth(MinimumWidth);
    ausgabeLbl->setAccessibleName(QStringLiteral("Fortschritt"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->addWidget(ausgabeLbl);
}

void ProgressWindow::showText(const QString &text)
{
    setText(text);
    show();
    raise();
}

void ProgressWindow::setText(const QString &text)
{
    ausgabeLbl->setText(text);
}

void ProgressWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (!JobCanBeStopped() || asking)
        return;
    asking = true;
    // Asked from the event loop: a question may not wait inside the window system's close handling.
    TheEvents().post([this] {
        const BoxText question{QStringLiteral("Soll nach dem laufenden Datensatz aufgehört werden?"),
            QStringLiteral("Abbrechen?"), BoxIcon::None};
        if (TheFrontend().askYesNo(question, false))
            ConfirmStop();
        asking = false;
    });
}
