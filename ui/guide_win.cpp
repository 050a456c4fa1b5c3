#include "ui/guide_win.h"

#include "platform/files.h"
#include "program/ask.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_place.h"

#include <QApplication>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>

#include <map>

namespace hr::ui
{

namespace
{

constexpr QSize StartSize(920, 700);

QString GuideFile()
{
    return ProgramFolder() + QStringLiteral("/handbuch/Benutzerhandbuch.html");
}

/// Windows and parts of windows by objectName, and the heading that tells of them.
const std::map<QString, QString> &Chapters()
{
    const QString symbols = QStringLiteral("symbole");
    const QString choice = QStringLiteral("symbole-auswählen");
    const QString tables = QStringLiteral("fahrstraßen-und-magnetartikel");
    const QString backups = QStringLiteral("sichern-und-zurückschreiben");
    static const std::map<QString, QString> chapters{
        {QStringLiteral("Frame1"), QStringLiteral("lokdatensätze")},
        {QStringLiteral("Frame2"), symbols},
        {QStringLiteral("Frame3"), symbols},
        {QStringLiteral("MagSymFrame"), symbols},
        {QStringLiteral("VeskaWin"), QStringLiteral("lokdatensätze")},
        {QStringLiteral("ZentraleForm"), QStringLiteral("mit-einem-handregler")},
        {QStringLiteral("LokSymWin"), choice},
        {QStringLiteral("LokFktWin"), choice},
        {QStringLiteral("MagSymWin"), choice},
        {QStringLiteral("Pixeledit"), QStringLiteral("zeichnen")},
        {QStringLiteral("MagSymZuordWin"), tables},
        {QStringLiteral("MagListeWin"), tables},
        {QStringLiteral("FSEdit"), tables},
        {QStringLiteral("SicherungWin"), backups},
        {QStringLiteral("LokSucheWin"), backups},
        {QStringLiteral("DatenAnzeigeWin"), backups},
        {QStringLiteral("Fortschritt"), backups},
        {QStringLiteral("VergleichWin"), QStringLiteral("vergleichen-und-vorsichtig-schreiben")},
        {QStringLiteral("LokImportWin"), QStringLiteral("lokdaten-einer-zentrale")},
    };
    return chapters;
}

} // namespace

GuideWin::GuideWin()
    : page(new QTextBrowser(this))
    , searchField(NamedField(QStringLiteral("HandbuchSuchTxt"), QStringLiteral("Im Handbuch suchen"), this))
{
    setObjectName(QStringLiteral("HandbuchWin"));
    setWindowTitle(QStringLiteral("Benutzerhandbuch"));
    resize(StartSize);
    page->setObjectName(QStringLiteral("HandbuchTxt"));
    page->setAccessibleName(windowTitle());
    page->setOpenExternalLinks(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(page);
    layout->addLayout(buildBottomRow());
    connectKeys();
    qApp->installEventFilter(this);
}

QHBoxLayout *GuideWin::buildBottomRow()
{
    searchField->setPlaceholderText(QStringLiteral("Wort, dann Enter"));
    searchField->setClearButtonEnabled(true);
    auto *label = NamedLabel(QStringLiteral("HandbuchSuchLabel"), QStringLiteral("&Suchen:"), this);
    label->setBuddy(searchField);
    auto *contents = NamedButton(QStringLiteral("InhaltBut"), QStringLiteral("&Inhalt"), this);
    auto *back = NamedButton(QStringLiteral("ZurueckBut"), QStringLiteral("&Zurück"), this);
    auto *browser = NamedButton(QStringLiteral("BrowserBut"), QStringLiteral("Im &Browser öffnen"), this);
    browser->setToolTip(QStringLiteral("zum Drucken"));
    auto *okButton = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    back->setEnabled(false);
    auto *row = new QHBoxLayout;
    for (QWidget *control : std::initializer_list<QWidget *>{contents, back, label, searchField})
        row->addWidget(control);
    row->addStretch();
    row->addWidget(browser);
    row->addWidget(okButton);
    connect(contents, &QPushButton::clicked, page, &QTextBrowser::home);
    connect(back, &QPushButton::clicked, page, &QTextBrowser::backward);
    connect(page, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(browser, &QPushButton::clicked, this, &GuideWin::openInBrowser);
    connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
    setDefaultButton(okButton);
    return row;
}

void GuideWin::connectKeys()
{
    const auto on = [this](const QKeySequence &key, auto action) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, action);
    };
    on(QKeySequence::Find, [this] {
        searchField->setFocus();
        searchField->selectAll();
    });
    on(Qt::Key_F3, [this] { findNext(); });
    on(QKeySequence::ZoomIn, [this] { page->zoomIn(); });
    on(QKeySequence::ZoomOut, [this] { page->zoomOut(); });
    on(Qt::CTRL | Qt::Key_0, [this] { page->setFont(QFont()); });
    connect(searchField, &QLineEdit::textEdited, this, [this] { MarkField(searchField, {}); });
}

QString GuideWin::chapterOf(const QWidget *control)
{
    for (const QWidget *part = control; part != nullptr; part = part->parentWidget()) {
        if (const auto found = Chapters().find(part->objectName()); found != Chapters().end())
            return found->second;
        if (part->isModal()) // a box or dialog
            return QStringLiteral("wenn-etwas-nicht-geht");
    }
    return {};
}

void GuideWin::open(const QString &chapter)
{
    QWidget *front = QApplication::activeWindow();
    const QString file = GuideFile();
    if (!FileExists(file)) {
        TheAsk().showBox({QStringLiteral("Das Benutzerhandbuch handbuch\\Benutzerhandbuch.html fehlt!"),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return;
    }
    belongTo(QApplication::activeModalWidget());
    presentBeside(front != nullptr && front != this ? front->frameGeometry() : QRect());
    QUrl place = QUrl::fromLocalFile(file);
    place.setFragment(chapter.isEmpty() ? QStringLiteral("benutzerhandbuch") : chapter);
    page->setSource(place); // after the window has its size: only then the chapter's place is known
    page->setFocus();
}

/// A box that waits for its answer would else keep the guide from being read.
void GuideWin::belongTo(QWidget *box)
{
    if (box != nullptr)
        winId(); // makes the window that is told; without need not, or it would be placed without its frame
    if (windowHandle() != nullptr)
        windowHandle()->setTransientParent(box != nullptr ? box->windowHandle() : nullptr);
}

void GuideWin::openInBrowser()
{
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(GuideFile())))
        return;
    TheAsk().showBox(
        {QStringLiteral("Der Browser lässt sich nicht öffnen. Das Handbuch steht in der Datei\r%1").arg(GuideFile()),
            QStringLiteral("Benutzerhandbuch"), BoxIcon::Information});
}

/// Goes on behind what was found last and begins anew at the end.
void GuideWin::findNext()
{
    const QString word = searchField->text().trimmed();
    if (word.isEmpty() || page->find(word))
        return;
    page->moveCursor(QTextCursor::Start);
    if (!page->find(word))
        MarkField(searchField, QStringLiteral("nicht gefunden"));
}

void GuideWin::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && focusWidget() == searchField)
        findNext();
    else
        LeavableWindow::keyPressEvent(event);
}

/// F1 anywhere in the program; in the guide itself it leads to the beginning.
bool GuideWin::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier)
        return false;
    open(chapterOf(static_cast<QWidget *>(watched)));
    return true;
}

} // namespace hr::ui
