#include "ui/help_win.h"

#include "platform/files.h"
#include "platform/text.h"
#include "platform/world.h"
#include "ui/build_controls.h"

#include <QFile>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr QSize StartSize(880, 600);

/// The file is UTF-8; a file that is not (edited with an old editor) is taken as Latin-1.
QStringList Lines(const QByteArray &bytes)
{
    QString text = QString::fromUtf8(bytes);
    if (text.contains(QChar::ReplacementCharacter))
        text = QString::fromLatin1(bytes);
    QStringList lines = ScreenLines(text).split(u'\n');
    if (!lines.isEmpty() && lines.constLast().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

HelpWin::HelpWin() : helpTxt(new QListWidget(this))
{
    setObjectName(QStringLiteral("HelpWin"));
    setWindowTitle(QStringLiteral("Hilfe"));
    resize(StartSize);
    helpTxt->setObjectName(QStringLiteral("HelpTxt"));
    helpTxt->setAccessibleName(QStringLiteral("Hilfe"));
    helpTxt->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont)); // the lines are set in columns
    helpTxt->setWordWrap(true);
    helpTxt->setUniformItemSizes(false);
    helpTxt->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *okButton = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(helpTxt);
    layout->addLayout(buttonRow);
    connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
}

void HelpWin::load()
{
    helpTxt->clear();
    QFile file(KonfPath(QStringLiteral("\\konf\\hilfe.txt")));
    const bool found = file.open(QIODevice::ReadOnly);
    if (found)
        helpTxt->addItems(Lines(file.readAll()));
    show();
    raise();
    activateWindow();
    if (!found) {
        TheFrontend().showBox(
            {QStringLiteral("Die Hilfedatei konf\\hilfe.txt fehlt!"), QStringLiteral("Fehler!"), BoxIcon::Critical});
    }
}

void HelpWin::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        hide();
    else
        QWidget::keyPressEvent(event);
}
