#include "ui/widgets/progress_window.h"

#include "ui/widgets/build_controls.h"

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
    ausgabeLbl->setText(text);
    if (isVisible())
        return;
    show();
    raise();
}

void ProgressWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (onClose)
        onClose();
}
