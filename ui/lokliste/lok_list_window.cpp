#include "ui/lokliste/lok_list_window.h"

#include "handheld/backup/number_list.h"
#include "handheld/known_locos.h"
#include "handheld/text_encoding.h"
#include "jobs/report.h"
#include "jobs/runner.h"
#include "jobs/selection.h"
#include "link/open_link.h"
#include "platform/files.h"
#include "platform/text.h"
#include "program/recent_files.h"
#include "roster/loco_files.h"
#include "ui/common/careful_job.h"
#include "ui/common/deeds.h"
#include "ui/common/desktop.h"
#include "ui/common/pickers.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/frozen_table.h"
#include "ui/widgets/window_keys.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>

namespace hr::ui
{

/// Shows the rows in which the text occurs ("Symbol 17": which use this symbol), of one state or of all.
class LokFilter : public QSortFilterProxyModel
{
public:
    LokFilter(const Lokliste &lokliste, QObject *parent) : QSortFilterProxyModel(parent), list(lokliste)
    {
        setSortRole(LokTable::SortRole);
        setDynamicSortFilter(false); // a row stays where it is while it is edited
    }

    void setWanted(const QString &text, std::optional<LokState> state)
    {
        wanted = text;
        wantedState = state;
        const QString word = QStringLiteral("Symbol ");
        bool isNumber = false;
        const int number = text.startsWith(word, Qt::CaseInsensitive) ? text.mid(word.size()).toInt(&isNumber) : 0;
        symbol = isNumber ? std::optional(number) : std::nullopt;
        invalidateFilter();
    }

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        const Lok &lok = list.at(row);
        if (wantedState && list.state(row) != *wantedState)
            return false;
        if (symbol) {
            return lok.record.locoSymbol == *symbol
                || (*symbol != 0 && std::ranges::find(lok.record.symbols, *symbol) != lok.record.symbols.end());
        }
        return HasText(lok, wanted);
    }

private:
    const Lokliste &list;
    QString wanted;
    std::optional<LokState> wantedState;
    std::optional<int> symbol;
};

namespace
{

constexpr int RowHeight = 24;
constexpr int RowMargin = 6;
constexpr int NameLetters = 24;
constexpr int CaptionRoom = 28; // for the sort arrow
constexpr int FunctionWidth = 40;
constexpr int PictureWidth = 76;
constexpr QSize StartSize(1240, 640);
constexpr qsizetype MostNamed = 12; // locos in a question

enum Sent { UnlikeHandheld, TickedLocos, AllLocos }; // choices of what is sent

size_t Size(int number)
{
    return static_cast<size_t>(number);
}

QString FileFilter()
{
    return QStringLiteral("*.dds *.csv *.json *.xml");
}

QString SaveTitle()
{
    return QStringLiteral("Lokliste speichern");
}

QString Native(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

QString SendTitle()
{
    return QStringLiteral("Loks senden");
}

BoxText Fault(const QString &text)
{
    return {text, QStringLiteral("Fehler!"), BoxIcon::Critical};
}

QComboBox *NamedChoice(const char *name, const QString &label, const QStringList &choices, QWidget *parent)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(label);
    box->addItems(choices);
    return box;
}

/// "3 (BR 24)"; the first of many.
QString Named(const QStringList &names)
{
    const QString rest =
        names.size() > MostNamed ? QStringLiteral(" und %1 weitere").arg(names.size() - MostNamed) : QString();
    return names.mid(0, MostNamed).join(QStringLiteral(", ")) + rest;
}

QString NameWith(int address, const LocoRecord &record)
{
    return QStringLiteral("%1 (%2)").arg(address).arg(WithoutTrailingBlanks(record.name));
}

/// What the user wants for an address that the list has already; after "für alle" without a question.
class DoubledQuestion
{
public:
    Lokliste::Doubled operator()(const Lok &present, const RosterLoco &incoming)
    {
        if (forAll)
            return *forAll;
        const QString text =
            QStringLiteral("Die Adresse %1 steht schon in der Liste: %2.\rNeu ist: %3.\r")
                .arg(incoming.address)
                .arg(WithoutTrailingBlanks(present.record.name), WithoutTrailingBlanks(incoming.record.name));
        const auto asks = [](const QString &question) {
            return TheAsk().askYesNo({question, QStringLiteral("Lokliste"), BoxIcon::None}, false);
        };
        const bool replaces = asks(text + QStringLiteral("Soll sie ersetzt werden?"));
        const auto answer = replaces ? Lokliste::Doubled::Replace : Lokliste::Doubled::Keep;
        if (asked++ % AskedForAllEvery == 0
            && asks(replaces ? QStringLiteral("Sollen alle übrigen auch ersetzt werden, ohne Frage?")
                             : QStringLiteral("Sollen alle übrigen auch bleiben, wie sie sind, ohne Frage?")))
            forAll = answer;
        return answer;
    }

private:
    static constexpr int AskedForAllEvery = 10; // hundreds of questions can be left
    int asked = 0;
    std::optional<Lokliste::Doubled> forAll;
};

/// The known locos first: they are there at once.
Plan ReadingPlanOf(const std::vector<int> &addresses)
{
    Plan plan;
    for (const bool known : {true, false}) {
        for (const int address : addresses) {
            if (IsKnownLoco(address) == known)
                plan.steps.push_back(
                    {known ? StepKind::Read : StepKind::Search, {RecordKind::Loco, address}, {}, {}});
        }
    }
    plan.progress = [](const Step &step) { return QString(QStringLiteral("Lese ") + RecordName(step.id)); };
    plan.ownerTellsPortLoss = true;
    return plan;
}

std::vector<ListedLoco> ListedOf(const std::vector<RosterLoco> &locos)
{
    std::vector<ListedLoco> listed;
    listed.reserve(locos.size());
    for (const RosterLoco &loco : locos)
        listed.push_back(Listed(loco));
    return listed;
}

} // namespace

LokListWindow::LokListWindow()
    : model(new LokTable(list, this))
    , shown(new LokFilter(list, this))
    , table(new FrozenTable(LokTable::SymbolColumn, this))
    , menus(new QMenuBar(this))
    , filterTxt(NamedField(QStringLiteral("FilterTxt"), QStringLiteral("Filter:"), this))
    , stateBox(NamedChoice("ZustandBox", QStringLiteral("Zustand:"),
          {QStringLiteral("jeder Zustand"), StateText(LokState::InHandheld), StateText(LokState::FromFile),
              StateText(LokState::Changed), StateText(LokState::Invalid), StateText(LokState::Unknown)},
          this))
    , countLbl(NamedLabel(QStringLiteral("AnzahlLbl"), QString(), this))
    , sentBox(NamedChoice("AuswahlBox", QStringLiteral("Gesendet werden:"),
          {QStringLiteral("was der Handregler nicht so hat"), QStringLiteral("angekreuzte"), QStringLiteral("alle")},
          this))
    , verifyChk(NamedCheck(QStringLiteral("PruefenChk"), QStringLiteral("nach dem Schreiben prüfen"), this))
    , saveBeforeChk(NamedCheck(
          QStringLiteral("VorherSichernChk"), QStringLiteral("vorher sichern, was überschrieben wird"), this))
{
    setObjectName(QStringLiteral("LokListeWin"));
    setWindowTitle(QStringLiteral("Lokliste"));
    shown->setSourceModel(model);
    for (QCheckBox *box : {verifyChk, saveBeforeChk})
        box->setChecked(true);
    buildTable();
    buildMenus();
    buildLayout();
    resize(StartSize.boundedTo(screen()->availableSize()));
    connect(filterTxt, &QLineEdit::textChanged, this, &LokListWindow::filterChanged);
    connect(stateBox, &QComboBox::currentIndexChanged, this, &LokListWindow::filterChanged);
    connect(sentBox, &QComboBox::currentIndexChanged, this, &LokListWindow::show);
    connect(model, &LokTable::contentChanged, this, &LokListWindow::show);
}

void LokListWindow::buildTable()
{
    table->setObjectName(QStringLiteral("LokListeTab"));
    table->setAccessibleName(QStringLiteral("Loks"));
    table->setItemDelegate(new PictureDelegate(table));
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(qMax(RowHeight, table->fontMetrics().height() + RowMargin));
    table->setSortingEnabled(true);
    table->setModel(shown);
    table->sortByColumn(LokTable::AddressColumn, Qt::AscendingOrder);
    QHeaderView *header = table->horizontalHeader();
    header->setHighlightSections(false);
    const QFontMetrics metrics = header->fontMetrics();
    for (int column = 0; column < LokTable::ColumnCount; ++column) {
        const QString caption = model->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        table->setColumnWidth(column, metrics.horizontalAdvance(caption) + CaptionRoom);
    }
    const int letter = table->fontMetrics().averageCharWidth();
    table->setColumnWidth(LokTable::AddressColumn, letter * 10 + CaptionRoom);
    table->setColumnWidth(LokTable::NameColumn, letter * NameLetters);
    table->setColumnWidth(LokTable::SymbolColumn, qMax(PictureWidth, table->columnWidth(LokTable::SymbolColumn)));
    for (int f = 0; f < FunctionCount; ++f)
        table->setColumnWidth(LokTable::FirstFunctionColumn + f, qMax(FunctionWidth, letter * 6));
    table->setColumnWidth(
        LokTable::StateColumn, table->fontMetrics().horizontalAdvance(StateText(LokState::InHandheld)) + CaptionRoom);
    connect(table, &FrozenTable::spacePressed, this, &LokListWindow::toggleMomentary);
    connect(table, &QTableView::doubleClicked, this, &LokListWindow::editCell);
}

void LokListWindow::buildMenus()
{
    QMenu *file = menus->addMenu(QStringLiteral("Datei"));
    AltKey(file, Qt::Key_D);
    file->addAction(NamedAction(QStringLiteral("OeffnenAction"), QStringLiteral("Datei hinzufügen…"),
        QKeySequence::Open, this, [this] { openFile(); }));
    file->addAction(NamedAction(QStringLiteral("LesenAction"), QStringLiteral("Aus dem Handregler lesen…"),
        Qt::Key_F5, this, [this] { readFromHandheld(); }));
    file->addAction(NamedAction(QStringLiteral("SichernAction"), QStringLiteral("Speichern unter…"),
        QKeySequence::Save, this, [this] { save(); }));
    QMenu *edit = menus->addMenu(QStringLiteral("Bearbeiten"));
    AltKey(edit, Qt::Key_B);
    addEdits(edit);
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
    table->addActions(edit->actions());
}

void LokListWindow::addEdits(QMenu *menu)
{
    const auto add = [this, menu](const char *name, const char *caption, const QKeySequence &key, auto work) {
        QAction *action = NamedAction(QLatin1String(name), QString::fromUtf8(caption), key, this, [this, work] {
            const Command command;
            if (command.ok())
                (this->*work)();
        });
        menu->addAction(action);
        return action;
    };
    undoAction = add("UndoAction", "Rückgängig (nur in der Liste)", QKeySequence::Undo, &LokListWindow::undo);
    redoAction = add("RedoAction", "Wiederholen", QKeySequence::Redo, &LokListWindow::redo);
    menu->addSeparator();
    add("KopierenAction", "Kopieren", QKeySequence::Copy, &LokListWindow::copyCells);
    FollowClipboard(add("EinfuegenAction", "Einfügen", QKeySequence::Paste, &LokListWindow::pasteCells));
    add("LeerenAction", "Zellen leeren", QKeySequence::Delete, &LokListWindow::clearCells);
    add("FunktionenKopierenAction", "Funktionen kopieren", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C),
        &LokListWindow::copyFunctions);
    add("FunktionenEinfuegenAction", "Funktionen einfügen", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V),
        &LokListWindow::pasteFunctions);
    menu->addSeparator();
    add("NeuAction", "Neue Lok", QKeySequence(Qt::CTRL | Qt::Key_N), &LokListWindow::addLoco);
    add("DoppelnAction", "Lok duplizieren", QKeySequence(Qt::CTRL | Qt::Key_D), &LokListWindow::duplicate);
    add("LoeschenAction", "Aus der Liste nehmen", QKeySequence(Qt::CTRL | Qt::Key_Delete),
        &LokListWindow::removeRows);
    add("NamenAction", "Namen an den Handregler anpassen", {}, &LokListWindow::adaptNames);
    menu->addSeparator();
    add("SymbolAction", "Symbol wählen…", Qt::Key_F4, &LokListWindow::pickSymbol);
    menu->addSeparator();
    add("EditorAction", "In den Editor übernehmen", QKeySequence(Qt::CTRL | Qt::Key_E), &LokListWindow::showInEditor);
    menu->addAction(
        NamedAction(QStringLiteral("VergleichenAction"), QStringLiteral("Mit dem Handregler vergleichen…"),
            QKeySequence(Qt::CTRL | Qt::Key_H), this, [this] { compare(); })); // a command of its own
}

QPushButton *LokListWindow::addButton(QHBoxLayout *row, const char *name, const char *caption, Qt::Key key)
{
    auto *button = NamedButton(QLatin1String(name), QString::fromUtf8(caption), this);
    AltKey(button, key);
    row->addWidget(button);
    return button;
}

QHBoxLayout *LokListWindow::buildFilterRow()
{
    auto *row = new QHBoxLayout;
    auto *label = NamedLabel(QStringLiteral("FilterLbl"), QStringLiteral("Filter:"), this);
    label->setBuddy(filterTxt);
    filterTxt->setPlaceholderText(QStringLiteral("Adresse, Name oder Symbol; \"Symbol 17\": wo es verwendet wird"));
    filterTxt->setClearButtonEnabled(true);
    row->addWidget(label);
    row->addWidget(filterTxt, 1);
    row->addWidget(stateBox);
    row->addWidget(countLbl);
    return row;
}

QHBoxLayout *LokListWindow::buildOptionRow()
{
    auto *row = new QHBoxLayout;
    auto *label = NamedLabel(QStringLiteral("AuswahlLbl"), QStringLiteral("Gesendet werden:"), this);
    label->setBuddy(sentBox);
    row->addWidget(label);
    row->addWidget(sentBox);
    row->addWidget(verifyChk);
    row->addWidget(saveBeforeChk);
    row->addStretch();
    return row;
}

QHBoxLayout *LokListWindow::buildButtonRow()
{
    auto *row = new QHBoxLayout;
    QPushButton *readBut = addButton(row, "LesenBut", "Aus dem Handregler lesen…", Qt::Key_L);
    QPushButton *openBut = addButton(row, "OeffnenBut", "Datei hinzufügen…", Qt::Key_H);
    QPushButton *saveBut = addButton(row, "SpeichernBut", "Speichern unter…", Qt::Key_P);
    row->addStretch();
    sendBut = addButton(row, "SendenBut", "Loks senden", Qt::Key_S);
    closeBut = addButton(row, "SchliessenBut", "Schließen", Qt::Key_E);
    connect(readBut, &QPushButton::clicked, this, &LokListWindow::readFromHandheld);
    connect(openBut, &QPushButton::clicked, this, &LokListWindow::openFile);
    connect(saveBut, &QPushButton::clicked, this, &LokListWindow::save);
    connect(sendBut, &QPushButton::clicked, this, &LokListWindow::send);
    connect(closeBut, &QPushButton::clicked, this, &QWidget::hide);
    return row;
}

void LokListWindow::buildLayout()
{
    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(menus);
    layout->addLayout(buildFilterRow());
    layout->addWidget(table, 1);
    layout->addLayout(buildOptionRow());
    layout->addLayout(buildButtonRow());
    // Ctrl+F leads to the filter; what is typed on the table goes into its cells.
    NamedAction(QStringLiteral("SuchenAction"), QStringLiteral("Suchen"), QKeySequence::Find, this,
        [this] { filterTxt->setFocus(Qt::ShortcutFocusReason); });
    AltKey(filterTxt, Qt::Key_F);
    AltKey(table, Qt::Key_T);
    AltKey(sentBox, Qt::Key_G);
}

void LokListWindow::open()
{
    if (list.size() == 0)
        addKnown();
    show();
    present();
    table->setFocus();
}

// --- What is shown ---

void LokListWindow::filterChanged()
{
    const int state = stateBox->currentIndex() - 1; // the first choice is all of them
    shown->setWanted(
        filterTxt->text().trimmed(), state >= 0 ? std::optional(static_cast<LokState>(state)) : std::nullopt);
    show();
}

void LokListWindow::show()
{
    countLbl->setText(QStringLiteral("%1 von %2").arg(shown->rowCount()).arg(LocoCount(Size(list.size()))));
    const size_t sent = sentRows().size();
    sendBut->setText(LocoCount(sent) + QStringLiteral(" senden"));
    sendBut->setEnabled(sent > 0);
    sendBut->setMinimumWidth(sendBut->sizeHint().width());
    undoAction->setEnabled(list.canUndo());
    redoAction->setEnabled(list.canRedo());
}

int LokListWindow::current() const
{
    const QModelIndex index = table->currentIndex();
    return index.isValid() ? shown->mapToSource(index).row() : -1;
}

/// The rows of the selected cells, from above.
std::vector<int> LokListWindow::selected() const
{
    std::set<int> seen;
    for (const QModelIndex &index : table->selectionModel()->selectedIndexes())
        seen.insert(index.row());
    std::vector<int> rows;
    rows.reserve(seen.size());
    for (const int row : seen)
        rows.push_back(shown->mapToSource(shown->index(row, 0)).row());
    return rows;
}

std::vector<int> LokListWindow::sentRows() const
{
    std::vector<int> rows;
    for (int row = 0; row < list.size(); ++row) {
        const bool wanted = sentBox->currentIndex() == AllLocos
            || (sentBox->currentIndex() == TickedLocos ? model->isTicked(row) : isToBeSent(row));
        if (wanted)
            rows.push_back(row);
    }
    return rows;
}

/// Also what waits to be deleted under its old address.
bool LokListWindow::isToBeSent(int row) const
{
    return list.state(row) != LokState::InHandheld || list.leftBehind(row) != 0;
}

void LokListWindow::goTo(int row, int column)
{
    const QModelIndex index = shown->mapFromSource(model->index(row, column));
    table->setCurrentIndex(index);
    table->scrollTo(index);
}

/// What came from a file is still there; what was edited is not, until it is sent or saved.
bool LokListWindow::isUnsaved() const
{
    bool edited = false;
    for (int row = 0; row < list.size(); ++row) {
        const LokState state = list.state(row);
        edited = edited || state == LokState::Changed || state == LokState::Invalid;
    }
    return list.isChanged() && edited;
}

void LokListWindow::hear(int address)
{
    if (address == AllAddresses) {
        list.forgetHeld();
        model->refresh();
    } else if (const auto record = KnownRecord(address)) {
        list.noteHeld(address, *record);
    } else if (!IsKnownLoco(address)) {
        list.noteHeld(address, LocoRecord{EmptyName(NameLength), {}, {}, 0, 0});
    }
}

// --- Sources ---

void LokListWindow::addFrom(const std::vector<ListedLoco> &locos, const QString &source)
{
    const int before = list.size();
    list.add(locos, source, DoubledQuestion());
    if (list.size() > before)
        goTo(before, LokTable::NameColumn);
}

void LokListWindow::addKnown()
{
    std::vector<RosterLoco> known;
    for (const int address : KnownAddresses()) {
        const auto record = KnownRecord(address);
        if (!record)
            continue;
        known.push_back({address, *record});
        list.noteHeld(address, *record);
    }
    if (known.empty())
        return;
    list.add(ListedOf(known), HandheldSource(), DoubledQuestion());
    list.setSaved();
}

void LokListWindow::readFromHandheld()
{
    const Command command;
    if (!command.ok())
        return;
    const QString title = QStringLiteral("Aus dem Handregler lesen");
    const QString wanted = TheAsk().askText(QStringLiteral("Adressen (zum Beispiel 1-5,8):"), title, lastRead);
    if (wanted.isEmpty())
        return;
    if (const QString fault = NumberListFault(wanted, FirstLoco, LastLoco); !fault.isEmpty()) {
        TheAsk().showBox(Fault(fault));
        return;
    }
    if (!command.connected())
        return;
    lastRead = wanted;
    const StoppableJob stoppable;
    const TellsPortLoss teller;
    const Report report = RunJob(ReadingPlanOf(EachNumberOnce(wanted)));
    std::vector<RosterLoco> locos;
    for (const JobEntry &entry : report.entries) {
        if (entry.state == RecordState::Done && entry.value)
            locos.push_back({entry.step.id.number, std::get<LocoRecord>(*entry.value)});
    }
    std::ranges::sort(locos, {}, &RosterLoco::address);
    addFrom(ListedOf(locos), HandheldSource());
    const std::vector<RecordId> doubtful = IdsOf(report, RecordState::Doubtful);
    if (EndedEarly(report.end))
        ShowEndBox(report.end,
            EndText(report.end, QStringLiteral("Das Lesen wurde angehalten.")) + QStringLiteral("\r\rGelesen: ")
                + LocoCount(locos.size()));
    else if (!doubtful.empty())
        TheAsk().showBox({QStringLiteral("Nicht sicher gelesen und nicht in der Liste:\r") + RecordsText(doubtful),
            QStringLiteral("Achtung!"), BoxIcon::Critical});
    else
        NoteDeed(QStringLiteral("%1 in die Lokliste gelesen").arg(LocoCount(locos.size())));
}

void LokListWindow::openFile()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName = TheDesktop().openFileName(QStringLiteral("Datei zur Lokliste hinzufügen"), FileFilter());
    if (fileName.isEmpty())
        return;
    const auto file = LoadDds(fileName);
    if (!file) {
        TheAsk().showBox(Fault(QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(Native(fileName))));
        return;
    }
    const LocoList locos = LocosOfFile(fileName, *file);
    if (!locos.faults.empty()) {
        TheAsk().showBox(Fault(QStringLiteral("Die Datei %1 kann so nicht gebraucht werden:\r%2")
                                   .arg(Native(fileName), FaultsText(locos.faults).replace(u'\n', u'\r'))));
        return;
    }
    TellNotes(locos);
    addFrom(locos.locos, QFileInfo(fileName).fileName());
}

// --- Editing ---

/// A double-click chooses where there is something to choose, else the text is typed.
void LokListWindow::editCell(const QModelIndex &index)
{
    const int column = index.column();
    if (column == LokTable::SymbolColumn || LokTable::FunctionOf(column) > 0)
        pickSymbol();
    else if (LokTable::FunctionOf(column) == 0)
        toggleMomentary();
    else if (column != LokTable::StateColumn)
        table->edit(index);
}

void LokListWindow::pickSymbol()
{
    const int row = current();
    const int column = table->currentIndex().column();
    const int function = LokTable::FunctionOf(column);
    if (row < 0 || (column != LokTable::SymbolColumn && function < 1))
        return;
    const LocoRecord &record = list.at(row).record;
    const std::vector<int> rows = selected();
    const int id = list.at(row).id;
    const int chosen = function < 1 ? PickSymbol(SymbolKind::Loco, record.locoSymbol)
                                    : PickSymbol(SymbolKind::Function, record.symbols.at(Size(function)),
                                        QStringLiteral("Symbol für f%1").arg(function));
    if (chosen == NothingChosen || list.rowOf(id) != row)
        return;
    list.change(rows,
        [=](Lok &lok) { (function < 1 ? lok.record.locoSymbol : lok.record.symbols.at(Size(function))) = chosen; });
}

/// Space: all selected rows get what the current one does not have; in the first column they are ticked.
void LokListWindow::toggleMomentary()
{
    const int row = current();
    const int column = table->currentIndex().column();
    const int function = LokTable::FunctionOf(column);
    if (row < 0)
        return;
    if (column == LokTable::MultiUniColumn) {
        list.change(
            selected(), [on = list.at(row).record.multiUni != 1](Lok &lok) { lok.record.multiUni = on ? 1 : 0; });
    } else if (function >= 0) {
        const bool on = list.at(row).record.modes.at(Size(function)) != 1;
        list.change(selected(), [=](Lok &lok) { lok.record.modes.at(Size(function)) = on ? 1 : 0; });
    } else {
        model->setTicked(selected(), !model->isTicked(row));
    }
}

/// The block around the selected cells, as a spreadsheet takes it.
void LokListWindow::copyCells()
{
    const QModelIndexList cells = table->selectionModel()->selectedIndexes();
    if (cells.isEmpty())
        return;
    const auto [first, last] = std::ranges::minmax(cells, {}, &QModelIndex::column);
    QStringList lines;
    for (const int row : selected()) {
        QStringList texts;
        for (int column = first.column(); column <= last.column(); ++column)
            texts += model->editText(row, column);
        lines += texts.join(u'\t');
    }
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

void LokListWindow::pasteCells()
{
    QStringList lines = QGuiApplication::clipboard()->text().split(u'\n');
    for (QString &line : lines)
        line.remove(u'\r');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    if (lines.isEmpty())
        return;
    const std::vector<int> rows = selected();
    const int column = std::max(0, table->currentIndex().column());
    if (lines.size() == 1 && rows.size() > 1) // one line for all selected rows
        lines = QStringList(static_cast<qsizetype>(rows.size()), lines.constFirst());
    const QStringList refused = model->paste(targets(lines.size()), column, lines);
    if (!refused.isEmpty())
        TheAsk().showBox({QStringLiteral("Das passt hier nicht und wurde nicht eingefügt:\r") + Named(refused),
            QStringLiteral("Einfügen"), BoxIcon::Critical});
}

/// The rows that so many pasted lines go to: the selected ones, and those shown below them.
std::vector<int> LokListWindow::targets(qsizetype count) const
{
    std::vector<int> rows = selected();
    int next = rows.empty() ? 0 : shown->mapFromSource(model->index(rows.back(), 0)).row() + 1;
    while (static_cast<qsizetype>(rows.size()) < count && next < shown->rowCount())
        rows.push_back(shown->mapToSource(shown->index(next++, 0)).row());
    rows.resize(std::min(rows.size(), static_cast<size_t>(count)));
    return rows;
}

void LokListWindow::clearCells()
{
    std::map<int, std::vector<int>> rowsOfColumn;
    for (const QModelIndex &index : table->selectionModel()->selectedIndexes())
        rowsOfColumn[index.column()].push_back(shown->mapToSource(index).row());
    const Lokliste::OneStep one(list);
    for (const auto &[column, rows] : rowsOfColumn) {
        if (column == LokTable::SymbolColumn)
            model->setText(rows, column, QStringLiteral("0"));
        else if (column != LokTable::AddressColumn)
            model->setText(rows, column, QString());
    }
}

void LokListWindow::undo()
{
    list.undo();
}

void LokListWindow::redo()
{
    list.redo();
}

void LokListWindow::copyFunctions()
{
    if (current() >= 0)
        copiedFunctions = list.at(current()).record;
}

void LokListWindow::pasteFunctions()
{
    if (!copiedFunctions)
        return;
    list.change(selected(), [this](Lok &lok) {
        lok.record.symbols = copiedFunctions->symbols;
        lok.record.modes = copiedFunctions->modes;
        lok.record.multiUni = copiedFunctions->multiUni;
    });
}

void LokListWindow::adaptNames()
{
    list.change(selected(), [](Lok &lok) { lok.record.name = TypedName(AsStored(lok.record.name, NameLength)); });
}

void LokListWindow::addLoco()
{
    filterTxt->clear();
    stateBox->setCurrentIndex(0);
    goTo(list.addNew(), LokTable::NameColumn);
}

void LokListWindow::duplicate()
{
    const std::vector<int> rows = selected();
    if (!rows.empty())
        goTo(list.duplicate(rows), LokTable::AddressColumn);
}

void LokListWindow::removeRows()
{
    const int row = current();
    list.remove(selected());
    if (list.size() > 0)
        goTo(std::clamp(row, 0, list.size() - 1), LokTable::NameColumn);
}

// --- Away ---

QString LokListWindow::refusedText(const std::vector<int> &rows) const
{
    QStringList lines;
    for (const int row : rows) {
        for (const QString &fault : list.faults(row))
            lines += QStringLiteral("%1: %2").arg(NameWith(list.at(row).address, list.at(row).record), fault);
    }
    return lines.mid(0, MostNamed).join(u'\r') + (lines.size() > MostNamed ? QStringLiteral("\r…") : QString());
}

LokListWindow::Sending LokListWindow::sendingNow() const
{
    Sending sending;
    std::vector<int> refused;
    for (const int row : sentRows()) {
        const Lok &lok = list.at(row);
        if (list.faults(row).isEmpty())
            sending.loks.push_back({lok.id, {lok.address, lok.record}, list.leftBehind(row)});
        else
            refused.push_back(row);
    }
    sending.refused = refusedText(refused);
    return sending;
}

/// Rows that cannot be sent are named; false when nothing is to be sent then.
bool LokListWindow::mayLeaveOut(const Sending &sending)
{
    if (sending.refused.isEmpty())
        return true;
    const QString text = QStringLiteral("So können diese Loks nicht gesendet werden:\r") + sending.refused;
    if (sending.loks.empty()) {
        TheAsk().showBox({text, SendTitle(), BoxIcon::Critical});
        return false;
    }
    const QString question =
        QStringLiteral("\r\rSollen die übrigen gesendet werden (%1)?").arg(LocoCount(sending.loks.size()));
    return TheAsk().askYesNo({text + question, SendTitle(), BoxIcon::Critical}, false);
}

void LokListWindow::send()
{
    const CommandOn command([this] { return sendingNow(); });
    if (!command.ok() || !mayLeaveOut(command.shown) || !command.connected())
        return;
    CarefulJob job;
    job.command = QStringLiteral("Lokliste");
    job.fileName = KonfPath(QStringLiteral("\\konf\\Lokliste"));
    job.title = SendTitle();
    job.options = {false, verifyChk->isChecked(), saveBeforeChk->isChecked()};
    job.namesPresent = true;
    CarefulJob old = job; // deletes what has moved
    old.command = QStringLiteral("Lokliste: alte Adressen");
    old.fileName.clear();
    QStringList moved;
    for (const SentLok &lok : command.shown.loks) {
        const RecordId id{RecordKind::Loco, lok.loco.address};
        job.steps.push_back({StepKind::Write, id, lok.loco.record, {}});
        job.about += PackRecord(id, lok.loco.record);
        if (lok.leftBehind == 0)
            continue;
        old.steps.push_back({StepKind::Delete, {RecordKind::Loco, lok.leftBehind}, {}, {}});
        moved += QStringLiteral("%1 → %2").arg(lok.leftBehind).arg(lok.loco.address);
    }
    if (!moved.isEmpty())
        job.lead = QStringLiteral("Umgezogen, unter der alten Adresse danach gelöscht: %1\r").arg(Named(moved));
    old.lead = job.lead;
    const CarefulEnd end = RunFromWindow(command, job);
    if (end.is != CarefulEnd::Is::Written)
        return;
    // Only when the loco is proved under its new address. Where nothing was to be written nothing has been asked yet.
    if (IsSettled(end.report) && !old.steps.empty() && command.connected()) {
        old.asks = IdsOf(end.report.job, RecordState::Done).empty();
        static_cast<void>(RunFromWindow(command, old)); // what became of it is shown
    }
    settleSent(command.shown.loks, end.report);
    show();
}

/// What has been edited since, and what is still to be deleted under its old address, goes the next time.
void LokListWindow::settleSent(const std::vector<SentLok> &loks, const CarefulReport &report)
{
    std::set<int> sent;
    for (const JobEntry &entry : report.job.entries) {
        if (entry.state == RecordState::Done || entry.state == RecordState::Unchanged)
            sent.insert(entry.step.id.number);
    }
    std::vector<int> settled;
    for (const SentLok &lok : loks) {
        const int row = list.rowOf(lok.id);
        const bool same =
            row >= 0 && list.at(row).address == lok.loco.address && list.at(row).record == lok.loco.record;
        if (same && sent.contains(lok.loco.address) && list.leftBehind(row) == 0)
            settled.push_back(row);
    }
    list.settle(settled, HandheldSource());
}

/// What of an existing backup is not in the list stays in it on demand.
QByteArray LokListWindow::fileFor(const QString &fileName, const std::vector<RosterLoco> &locos)
{
    const bool isBackup = fileName.endsWith(u".dds", Qt::CaseInsensitive) && FileExists(fileName);
    const auto present = isBackup ? LoadDds(fileName) : std::nullopt;
    const DdsContent content = present ? ReadDds(*present) : DdsContent();
    const bool keeps = !content.records.empty() && !content.fault
        && TheAsk().askYesNo({QStringLiteral("Die Datensicherung %1 enthält schon %2.\rSollen die Datensätze darin "
                                             "bleiben, die nicht in der Lokliste sind?")
                                     .arg(Native(fileName), RecordCount(content.records.size())),
                                 SaveTitle(), BoxIcon::None},
            true);
    if (keeps)
        return MergedDds(content, locos);
    return fileName.endsWith(u".csv", Qt::CaseInsensitive) ? CsvOf(locos, CsvFor::Spreadsheets)
                                                           : FileOfLocos(fileName, locos);
}

void LokListWindow::save()
{
    const CommandOn command([this] { return LocosOf(list); });
    if (!command.ok())
        return;
    std::vector<int> rows(Size(list.size()));
    std::iota(rows.begin(), rows.end(), 0);
    if (const QString text = refusedText(rows); !text.isEmpty()) {
        TheAsk().showBox(
            {QStringLiteral("So kann die Liste nicht gespeichert werden:\r") + text, SaveTitle(), BoxIcon::Critical});
        return;
    }
    const QString fileName =
        TheDesktop().saveFileName(SaveTitle(), FileFilter(), DatedName(QStringLiteral("Lokliste")));
    if (fileName.isEmpty())
        return;
    if (!HoldsLocos(fileName)) {
        TheAsk().showBox(
            Fault(QStringLiteral("Die Endung der Datei sagt, was sie wird: .dds, .csv, .json oder .xml (JMRI).")));
        return;
    }
    if (!ReplaceFile(fileName, fileFor(fileName, command.shown))) {
        ReportFileUnwritable(fileName);
        return;
    }
    list.setSaved();
    if (fileName.endsWith(u".dds", Qt::CaseInsensitive))
        NoteRecentFile(fileName);
    TheAsk().showBox({QStringLiteral("%1 gespeichert in %2.").arg(LocoCount(command.shown.size()), Native(fileName)),
        SaveTitle(), BoxIcon::Information});
}

void LokListWindow::showInEditor()
{
    if (current() >= 0)
        TheDesktop().showInEditor(list.at(current()).address, list.at(current()).record);
}

void LokListWindow::compare()
{
    std::vector<RosterLoco> locos;
    for (const int row : selected())
        locos.push_back({list.at(row).address, list.at(row).record});
    if (!locos.empty())
        TheDesktop().compareLocos(locos);
}

} // namespace hr::ui
