#include "ui/widgets/progress_window.h"

#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_place.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{

constexpr int MinimumWidth = 320;
constexpr int Margin = 20;

QString Title()
{
    return QStringLiteral("Fortschritt:");
}

QString TimeText(double seconds)
{
    const int whole = static_cast<int>(seconds) + 1;
    if (whole < 60)
        return whole == 1 ? QStringLiteral("noch 1 Sekunde") : QStringLiteral("noch %1 Sekunden").arg(whole);
    const int minutes = (whole + 59) / 60;
    if (minutes < 60)
        return minutes == 1 ? QStringLiteral("noch 1 Minute") : QStringLiteral("noch %1 Minuten").arg(minutes);
    return QStringLiteral("noch %1 Std. %2 Min.").arg(minutes / 60).arg(minutes % 60);
}

} // namespace

ProgressWindow::ProgressWindow()
    : QWidget(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint | Qt::WindowCloseButtonHint)
    , ausgabeLbl(NamedLabel(QStringLiteral("AusgabeLbl"), QString(), this))
    , bar(new QProgressBar(this))
    , restzeitLbl(NamedLabel(QStringLiteral("RestzeitLbl"), QString(), this))
    , hinweisLbl(NamedLabel(QStringLiteral("LaeuftLbl"), QString(), this))
    , stopBut(NamedButton(QStringLiteral("AnhaltenBut"), QStringLiteral("Anhalten…"), this))
{
    setObjectName(QStringLiteral("Fortschritt"));
    setWindowTitle(Title());
    setAttribute(Qt::WA_ShowWithoutActivating);
    ausgabeLbl->setMinimumWidth(MinimumWidth);
    bar->setObjectName(QStringLiteral("FortschrittBar"));
    bar->setAccessibleName(QStringLiteral("Fortschritt"));
    bar->setFormat(QStringLiteral("%v von %m")); // the percentage stands in the title
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    for (QWidget *control : std::initializer_list<QWidget *>{ausgabeLbl, bar, restzeitLbl, hinweisLbl})
        layout->addWidget(control);
    layout->addWidget(stopBut, 0, Qt::AlignRight);
    for (QWidget *control : std::initializer_list<QWidget *>{bar, restzeitLbl, hinweisLbl, stopBut})
        control->hide();
    stopBut->setFocusPolicy(Qt::TabFocus); // a key that was meant for another window must not press it
    connect(stopBut, &QPushButton::clicked, this, &QWidget::close);
    layout->setSizeConstraint(QLayout::SetMinAndMaxSize);
}

void ProgressWindow::showText(const QString &text, bool closable, const QWidget &front)
{
    ausgabeLbl->setText(text);
    ausgabeLbl->setAccessibleName(text); // it is what is read aloud
    if (isVisible())
        return;
    setWindowFlag(Qt::WindowCloseButtonHint, closable);
    adjustSize();
    BelongTo(*this, &front); // so that it never hides behind it
    PlaceOver(*this, front.frameGeometry());
    show();
    raise();
}

void ProgressWindow::showAmount(int done, int all, double secondsLeft)
{
    const bool appears = bar->isHidden();
    bar->setRange(0, all);
    bar->setValue(done);
    bar->show();
    restzeitLbl->setText(secondsLeft < 0 ? QString() : TimeText(secondsLeft));
    restzeitLbl->show();
    stopBut->setVisible((windowFlags() & Qt::WindowCloseButtonHint) != 0);
    setWindowTitle(Title() + QStringLiteral(" %1 %").arg(static_cast<int>(100.0 * done / all)));
    if (appears)
        activateWindow();
}

void ProgressWindow::showHint(const QString &hint)
{
    hinweisLbl->setText(hint);
    hinweisLbl->setVisible(!hint.isEmpty());
}

void ProgressWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (onClose)
        onClose();
}

void ProgressWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void ProgressWindow::hideEvent(QHideEvent *event)
{
    setWindowTitle(Title());
    bar->hide();
    restzeitLbl->hide();
    stopBut->hide();
    showHint(QString());
    QWidget::hideEvent(event);
}

} // namespace hr::ui
