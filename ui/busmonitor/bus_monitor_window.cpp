#include "ui/busmonitor/bus_monitor_window.h"

#include "link/open_link.h"
#include "platform/files.h"
#include "platform/world.h"
#include "program/ask.h"
#include "program/run_control.h"
#include "ui/common/desktop.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace hr::ui
{

namespace
{

constexpr QSize StartSize(1000, 560);
constexpr int LookMs = 100; // new messages are shown together: a full bus costs no more than a quiet one
constexpr int BytesShown = 31;
constexpr qint64 LargestFile = 64LL * 1024 * 1024;
const auto TraceWildcard = QStringLiteral("*.lntrace");

std::unique_ptr<BusMonitorWindow> &TheMonitor()
{
    static std::unique_ptr<BusMonitorWindow> window;
    return window;
}

} // namespace

BusMonitorWindow::BusMonitorWindow()
    : filterTxt(NamedField(QStringLiteral("FilterTxt"), QStringLiteral("Filter"), this))
    , whoseBox(new QComboBox(this))
    , opcodeTxt(NamedField(QStringLiteral("OpcodeTxt"), QStringLiteral("Opcode"), this))
    , wrongChk(NamedCheck(QStringLiteral("NurFalscheChk"), QStringLiteral("nur falsche"), this))
    , table(new QTableView(this))
    , model(new TraceTable(this))
    , pauseBut(NamedButton(QStringLiteral("PauseBut"), QStringLiteral("Pause"), this))
    , followChk(NamedCheck(QStringLiteral("FolgenChk"), QStringLiteral("den neuen folgen"), this))
    , stateLbl(NamedRemark(QStringLiteral("StandLbl"), this))
{
    setObjectName(QStringLiteral("BusMonitorWin"));
    setWindowTitle(QStringLiteral("Busmonitor"));
    followChk->setChecked(true);
    pauseBut->setCheckable(true);
    buildTable();
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(buildFilters());
    layout->addWidget(table, 1);
    layout->addWidget(stateLbl);
    layout->addWidget(buildButtons());
    resize(StartSize.boundedTo(screen()->availableSize()));
    connect(filterTxt, &QLineEdit::textChanged, this, &BusMonitorWindow::filterChanged);
    connect(opcodeTxt, &QLineEdit::textChanged, this, &BusMonitorWindow::filterChanged);
    connect(whoseBox, &QComboBox::currentIndexChanged, this, &BusMonitorWindow::filterChanged);
    connect(wrongChk, &QCheckBox::toggled, this, &BusMonitorWindow::filterChanged);
    connect(pauseBut, &QPushButton::toggled, this, &BusMonitorWindow::pauseChanged);
}

BusMonitorWindow::~BusMonitorWindow()
{
    stopListening();
}

void BusMonitorWindow::buildTable()
{
    table->setObjectName(QStringLiteral("BusTab"));
    table->setAccessibleName(QStringLiteral("Meldungen"));
    table->setModel(model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    QHeaderView *header = table->horizontalHeader();
    header->setHighlightSections(false);
    header->setStretchLastSection(true);
    const QFontMetrics letters = table->fontMetrics();
    const QFontMetrics fixed(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    table->setColumnWidth(TraceTable::TimeColumn, letters.horizontalAdvance(QStringLiteral("0000000.000  ")));
    table->setColumnWidth(TraceTable::WhoseColumn, letters.horizontalAdvance(QStringLiteral("eigene     ")));
    table->setColumnWidth(
        TraceTable::BytesColumn, fixed.horizontalAdvance(QStringLiteral("00 ").repeated(BytesShown / 2)));
    table->setColumnWidth(TraceTable::CheckColumn, letters.horizontalAdvance(QStringLiteral("Prüfsumme    ")));
}

QWidget *BusMonitorWindow::buildFilters()
{
    whoseBox->setObjectName(QStringLiteral("VonBox"));
    whoseBox->setAccessibleName(QStringLiteral("Von"));
    whoseBox->addItems(
        {QStringLiteral("eigene und fremde"), QStringLiteral("nur eigene"), QStringLiteral("nur fremde")});
    filterTxt->setPlaceholderText(QStringLiteral("Bytes oder Bedeutung"));
    filterTxt->setClearButtonEnabled(true);
    opcodeTxt->setPlaceholderText(QStringLiteral("B2"));
    opcodeTxt->setMaxLength(2);
    opcodeTxt->setFixedWidth(opcodeTxt->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 12);
    auto *row = new QWidget(this);
    auto *filterLabel = NamedLabel(QStringLiteral("FilterLbl"), QStringLiteral("&Filter:"), row);
    filterLabel->setBuddy(filterTxt);
    auto *opcodeLabel = NamedLabel(QStringLiteral("OpcodeLbl"), QStringLiteral("O&pcode:"), row);
    opcodeLabel->setBuddy(opcodeTxt);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *control :
        std::initializer_list<QWidget *>{filterLabel, filterTxt, whoseBox, opcodeLabel, opcodeTxt})
        layout->addWidget(control, control == filterTxt ? 1 : 0);
    layout->addWidget(wrongChk);
    return row;
}

QWidget *BusMonitorWindow::buildButtons()
{
    auto *row = new QWidget(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto button = [this, row](const char *name, const char *caption, const QKeySequence &key, auto work) {
        auto *made = NamedButton(QLatin1String(name), QString::fromUtf8(caption), row);
        made->setShortcut(key);
        connect(made, &QPushButton::clicked, this, work);
        return made;
    };
    layout->addWidget(pauseBut);
    layout->addWidget(followChk);
    layout->addStretch();
    const QList<QPushButton *> buttons{button("KopierenBut", "Kopieren", {}, &BusMonitorWindow::copy),
        button("LeerenBut", "Leeren", {}, &BusMonitorWindow::clear),
        button("SpeichernBut", "Speichern unter…", QKeySequence::Save, &BusMonitorWindow::save),
        button("OeffnenBut", "Öffnen…", QKeySequence::Open, &BusMonitorWindow::openTrace),
        button("SchliessenBut", "Schließen", {}, [this] { close(); })};
    for (QPushButton *each : buttons)
        layout->addWidget(each);
    table->addAction(NamedAction(
        QStringLiteral("KopierenAction"), QStringLiteral("Kopieren"), QKeySequence::Copy, table, [this] { copy(); }));
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
    pauseBut->setToolTip(QStringLiteral("hält die Anzeige an; mitgehört wird weiter"));
    return row;
}

void BusMonitorWindow::listen()
{
    present();
    if (!Comm().isOpen()) {
        const BusyScope busy;
        if (busy.ok() && !TheLink().PortNumber.text.trimmed().isEmpty())
            static_cast<void>(SetUpLink()); // what is wrong was told
    }
    if (!trace) {
        model->setRows({});
        trace = std::make_unique<BusTrace>();
        trace->onRow = [this](const TraceRow &row) { waiting.push_back(row); };
        looks = TheEvents().every(LookMs, [this] { takeNew(); });
    }
    showState();
}

void BusMonitorWindow::stopListening()
{
    if (looks)
        TheEvents().stop(*looks);
    looks.reset();
    trace.reset();
    waiting.clear();
    keptIn.clear();
}

void BusMonitorWindow::leave()
{
    stopListening();
    LeavableWindow::leave();
}

void BusMonitorWindow::takeNew()
{
    if (waiting.size() > BusTrace::MostRows) // a long pause
        waiting.erase(waiting.begin(), waiting.end() - static_cast<std::ptrdiff_t>(BusTrace::MostRows));
    if (!paused && !waiting.empty()) {
        model->add(waiting);
        waiting.clear();
        if (followChk->isChecked())
            table->scrollToBottom();
    }
    showState();
}

void BusMonitorWindow::showState()
{
    QString text = QStringLiteral("%1 von %2 Meldungen").arg(model->rowCount()).arg(model->all().size());
    if (model->wrongOnes() > 0)
        text += QStringLiteral(", %1 mit falscher Prüfsumme").arg(model->wrongOnes());
    if (paused)
        text += QStringLiteral("; Pause, %1 neue warten").arg(waiting.size());
    if (!Comm().isOpen())
        text += QStringLiteral("; der Anschluss ist geschlossen, der nächste Befehl öffnet ihn");
    if (!keptIn.isEmpty())
        text += trace && trace->fileSound() ? QStringLiteral("; wird weitergeschrieben in ") + keptIn
                                            : QStringLiteral("; NICHT MEHR GESCHRIEBEN: ") + keptIn;
    stateLbl->setText(text);
}

void BusMonitorWindow::filterChanged()
{
    bool isHex = false;
    const int opcode = opcodeTxt->text().trimmed().toInt(&isHex, 16);
    const bool wrong = !opcodeTxt->text().trimmed().isEmpty() && (!isHex || opcode < 0x80);
    MarkField(opcodeTxt, wrong ? QStringLiteral("ein Opcode von 80 bis FF") : QString());
    model->setFilter({filterTxt->text().trimmed(), static_cast<TraceFilter::Whose>(whoseBox->currentIndex()),
        wrong ? 0 : opcode, wrongChk->isChecked()});
    showState();
}

void BusMonitorWindow::pauseChanged()
{
    paused = pauseBut->isChecked();
    takeNew();
}

/// The marked rows as lines of a trace; all that are shown when none is marked.
void BusMonitorWindow::copy()
{
    QModelIndexList marked = table->selectionModel()->selectedRows();
    std::ranges::sort(marked, {}, &QModelIndex::row);
    QStringList lines;
    for (const QModelIndex &index : marked)
        lines += TraceLine(model->shownRow(index.row()));
    for (int row = 0; marked.isEmpty() && row < model->rowCount(); ++row)
        lines += TraceLine(model->shownRow(row));
    QApplication::clipboard()->setText(lines.join(u'\n'));
}

/// What was heard so far, and while the window listens, all that comes.
void BusMonitorWindow::save()
{
    QString fileName = TheDesktop().saveFileName(
        QStringLiteral("Mitschnitt speichern"), TraceWildcard, DatedName(QStringLiteral("Mitschnitt")));
    if (fileName.isEmpty())
        return;
    if (!fileName.endsWith(QStringLiteral(".lntrace"), Qt::CaseInsensitive))
        fileName += QStringLiteral(".lntrace");
    takeNew();
    std::vector<TraceRow> rows(model->all().begin(), model->all().end());
    rows.insert(rows.end(), waiting.begin(), waiting.end()); // heard in a pause
    if (trace ? !trace->keepIn(fileName, rows) : !WriteTrace(fileName, rows)) {
        ReportFileUnwritable(fileName);
        return;
    }
    keptIn = trace ? fileName : QString();
    showState();
}

/// An earlier trace instead of the bus; listening ends until the window is opened again.
void BusMonitorWindow::openTrace()
{
    const QString fileName = TheDesktop().openFileName(QStringLiteral("Mitschnitt öffnen"), TraceWildcard);
    if (fileName.isEmpty())
        return;
    const auto refuse = [&fileName](const QString &why) {
        TheAsk().showBox({QStringLiteral("Die Datei %1 kann nicht gezeigt werden:\r%2").arg(fileName, why),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
    };
    const auto file = ReadSmallFile(fileName, LargestFile);
    if (!file)
        return refuse(QStringLiteral("Sie ist nicht lesbar oder zu groß."));
    const TraceFile read = ParseTrace(*file);
    if (!read.fault.isEmpty())
        return refuse(read.fault);
    stopListening();
    model->setRows(read.rows);
    showState();
}

void BusMonitorWindow::clear()
{
    waiting.clear();
    model->setRows({});
    showState();
}

void OpenBusMonitor()
{
    if (!TheMonitor())
        TheMonitor() = std::make_unique<BusMonitorWindow>();
    TheMonitor()->listen();
}

void ResetBusMonitor()
{
    TheMonitor().reset();
}

} // namespace hr::ui
