#include "ui/help_win.h"

#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"
#include "ui/widgets/build_controls.h"

#include <QFontDatabase>
#include <QHBoxLayout>
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
    setDefaultButton(okButton);
}

void HelpWin::load()
{
    helpTxt->clear();
    const auto help = ReadWholeFile(KonfPath(QStringLiteral("\\konf\\hilfe.txt")));
    if (help)
        helpTxt->addItems(Lines(*help));
    present();
    if (!help) {
        TheAsk().showBox(
            {QStringLiteral("Die Hilfedatei konf\\hilfe.txt fehlt!"), QStringLiteral("Fehler!"), BoxIcon::Critical});
    }
}
