#include "ui/help_win.h"

#include "platform/files.h"
#include "platform/text.h"
#include "program/ask.h"
#include "ui/widgets/build_controls.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace hr::ui
{

namespace
{

constexpr QSize StartSize(880, 600);
constexpr int SmallestLetters = 6; // points
constexpr int LargestLetters = 32;

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

bool IsUnderline(const QString &line)
{
    return line.startsWith(u"--") || line.startsWith(u"==");
}

/// A line that the next one underlines is a heading.
void MarkHeadings(QListWidget *list)
{
    for (int row = 0; row + 1 < list->count(); ++row) {
        if (!IsUnderline(list->item(row + 1)->text()))
            continue;
        QFont font = list->font();
        font.setBold(true);
        list->item(row)->setFont(font);
    }
}

} // namespace

HelpWin::HelpWin()
    : helpTxt(new QListWidget(this))
    , searchField(NamedField(QStringLiteral("HilfeSuchTxt"), QStringLiteral("In der Hilfe suchen"), this))
    , normalSize(std::max(SmallestLetters, QFontDatabase::systemFont(QFontDatabase::FixedFont).pointSize()))
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
    helpTxt->setSelectionMode(QAbstractItemView::ExtendedSelection);
    helpTxt->viewport()->installEventFilter(this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(helpTxt);
    layout->addLayout(buildBottomRow());
    connectKeys();
}

QHBoxLayout *HelpWin::buildBottomRow()
{
    searchField->setPlaceholderText(QStringLiteral("Wort, dann Enter"));
    searchField->setClearButtonEnabled(true);
    auto *label = NamedLabel(QStringLiteral("HilfeSuchLabel"), QStringLiteral("&Suchen:"), this);
    label->setBuddy(searchField);
    auto *guideButton = NamedButton(QStringLiteral("HandbuchBut"), QStringLiteral("&Benutzerhandbuch (F1)"), this);
    auto *okButton = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    auto *row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(searchField);
    row->addStretch();
    row->addWidget(guideButton);
    row->addWidget(okButton);
    connect(guideButton, &QPushButton::clicked, this, &HelpWin::guideAsked);
    connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
    setDefaultButton(okButton);
    return row;
}

void HelpWin::connectKeys()
{
    const auto on = [this](const QKeySequence &key, auto action) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, action);
    };
    on(QKeySequence::Find, [this] {
        searchField->setFocus();
        searchField->selectAll();
    });
    on(Qt::Key_F3, [this] { findNext(); });
    on(QKeySequence::ZoomIn, [this] { zoom(1); });
    on(QKeySequence::ZoomOut, [this] { zoom(-1); });
    on(Qt::CTRL | Qt::Key_0, [this] { zoom(normalSize - helpTxt->font().pointSize()); });
    auto *copy = new QShortcut(QKeySequence::Copy, helpTxt);
    copy->setContext(Qt::WidgetShortcut); // in the search field the key copies what is marked there
    connect(copy, &QShortcut::activated, this, &HelpWin::copyMarkedLines);
    connect(searchField, &QLineEdit::textEdited, this, [this] { MarkField(searchField, {}); });
}

/// Goes on behind the current line and begins anew at the end.
void HelpWin::findNext()
{
    const QString word = searchField->text().trimmed();
    const int count = helpTxt->count();
    if (word.isEmpty())
        return;
    for (int step = 1; step <= count; ++step) {
        QListWidgetItem *item = helpTxt->item((helpTxt->currentRow() + step) % count);
        if (!item->text().contains(word, Qt::CaseInsensitive))
            continue;
        helpTxt->setCurrentItem(item, QItemSelectionModel::ClearAndSelect);
        helpTxt->scrollToItem(item, QAbstractItemView::PositionAtCenter);
        return;
    }
    MarkField(searchField, QStringLiteral("nicht gefunden"));
}

void HelpWin::copyMarkedLines()
{
    QStringList lines;
    for (int row = 0; row < helpTxt->count(); ++row) {
        if (helpTxt->item(row)->isSelected())
            lines.append(helpTxt->item(row)->text());
    }
    if (!lines.isEmpty())
        QApplication::clipboard()->setText(lines.join(u'\n'));
}

void HelpWin::zoom(int steps)
{
    QFont font = helpTxt->font();
    font.setPointSize(std::clamp(font.pointSize() + steps, SmallestLetters, LargestLetters));
    helpTxt->setFont(font);
    MarkHeadings(helpTxt); // they have a font of their own
}

void HelpWin::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && focusWidget() == searchField)
        findNext();
    else
        LeavableWindow::keyPressEvent(event);
}

bool HelpWin::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel)
        return LeavableWindow::eventFilter(watched, event);
    const auto *wheel = static_cast<QWheelEvent *>(event);
    if (!wheel->modifiers().testFlag(Qt::ControlModifier))
        return false;
    zoom(wheel->angleDelta().y() > 0 ? 1 : -1);
    return true;
}

void HelpWin::load()
{
    helpTxt->clear();
    const auto help = ReadWholeFile(KonfPath(QStringLiteral("\\konf\\hilfe.txt")));
    if (help)
        helpTxt->addItems(Lines(*help));
    MarkHeadings(helpTxt);
    const QWidget *front = QApplication::activeWindow();
    presentBeside(front != nullptr && front != this ? front->frameGeometry() : QRect());
    if (!help) {
        TheAsk().showBox(
            {QStringLiteral("Die Hilfedatei konf\\hilfe.txt fehlt!"), QStringLiteral("Fehler!"), BoxIcon::Critical});
    }
}

} // namespace hr::ui
