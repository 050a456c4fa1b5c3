#include "ui/loco/loco_editor.h"

#include "handheld/backup/number_list.h"
#include "handheld/flash_map.h"
#include "handheld/known_locos.h"
#include "handheld/text_encoding.h"
#include "jobs/spread.h"
#include "link/open_link.h"
#include "platform/text.h"
#include "ui/common/command.h"
#include "ui/common/deeds.h"
#include "ui/common/pickers.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"
#include "ui/widgets/row_names.h"
#include "ui/widgets/window_keys.h"

#include <QAction>
#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace hr::ui
{

namespace
{

enum Column { HeadColumn, OnColumn, OffColumn, MomentaryColumn, ColumnCount };
constexpr std::array<int, ColumnCount> ColumnWidths{26, 27, 27, 30}; // with the grid's frame 112 pixels together
constexpr int RowHeight = 20;
constexpr int HeadGap = 4;
constexpr int CellMargin = 4;
constexpr int SmallestFont = 7; // pixels
constexpr int LeastRowsShown = 5;
constexpr int LocoPictureWidth = 49;
constexpr int LocoPictureHeight = 17;
constexpr int NameFieldCharacters = 24;
constexpr int NameStep = 1; // typed characters that follow each other are one step

QString NoSymbolOfF0()
{
    return QStringLiteral("f0 hat im Handregler kein Symbol");
}

QString AccessCode()
{
    return QStringLiteral("Rupo");
}

QString AddressRange()
{
    return QStringLiteral("%1 bis %2").arg(FirstLoco).arg(LastLoco);
}

/// The columns and rows have their given sizes: a large font is made to fit them.
QFont FittingFont(QFont font)
{
    const auto fits = [&font] {
        const QFontMetrics metrics(font);
        return metrics.horizontalAdvance(QStringLiteral("f24")) <= ColumnWidths.at(HeadColumn) - CellMargin
            && metrics.height() <= RowHeight;
    };
    for (int size = QFontInfo(font).pixelSize(); size > SmallestFont && !fits(); --size)
        font.setPixelSize(size);
    return font;
}

} // namespace

LocoEditor::LocoEditor(QWidget *parent)
    : QGroupBox(QStringLiteral("Lokdatensatz ändern:"), parent)
    , adrTxt(NamedField(QStringLiteral("AdrTxt"), QStringLiteral("Lokadresse:"), this))
    , loknameTxt(NamedField(QStringLiteral("LoknameTxt"), QStringLiteral("Lokname:"), this))
    , lokSymPic(NamedPicture(
          QStringLiteral("LokSymPic"), QStringLiteral("Symbol:"), LocoPictureWidth, LocoPictureHeight, this))
    , fktTab(new Grid(FunctionCount, ColumnCount, this))
    , multiUniChk(new QCheckBox(QStringLiteral("identische Sym. für alle Funktionen"), this))
    , readBut(NamedButton(QStringLiteral("LeseLokDatensatzBut"), QStringLiteral("Lese Lokdatensatz"), this))
    , writeBut(NamedButton(QStringLiteral("SchreibeLokDatensatzBut"), QStringLiteral("Schreibe Lokdatensatz"), this))
    , deleteBut(NamedButton(QStringLiteral("ResetLokdatenBut"), QStringLiteral("Lokdatensatz löschen"), this))
    , doubtLbl(NamedDoubtLabel(QStringLiteral("UnvollstaendigLbl"), this))
    , changedLbl(NamedChangedLabel(QStringLiteral("GeaendertLbl"), this))
    , whereLbl(NamedRemark(QStringLiteral("WohinLbl"), this))
    , search(fktTab)
    , history([this] { return state(); }, [this](const State &kept) { restore(kept); })
{
    setObjectName(QStringLiteral("Frame1"));
    multiUniChk->setObjectName(QStringLiteral("MultiUniChk"));
    loknameTxt->setText(ShownName(record));
    loknameTxt->setMaxLength(NameLength);
    loknameTxt->setMinimumWidth(loknameTxt->fontMetrics().averageCharWidth() * NameFieldCharacters);
    buildGrid();
    buildLayout();
    connectControls();
    buildContextMenu();
    shownName = ShownName(record);
    clearShownRecord();
    adrTxt->setToolTip(AddressRange()); // a fault only when something was typed, or is to be done with it
}

void LocoEditor::buildGrid()
{
    fktTab->setFont(FittingFont(fktTab->font()));
    fktTab->setObjectName(QStringLiteral("FktTab"));
    fktTab->setAccessibleName(QStringLiteral("Funktionen"));
    fktTab->horizontalHeader()->hide();
    QStringList functions; // for those who hear them
    for (int row = 0; row < FunctionCount; ++row)
        functions += u'f' + QString::number(row);
    fktTab->setVerticalHeaderLabels(functions);
    fktTab->setHorizontalHeaderLabels({QStringLiteral("Funktion"), QStringLiteral("Symbol ON"),
        QStringLiteral("Symbol OFF"), QStringLiteral("Tastfunktion")});
    fktTab->takePlainClicks();
    for (size_t i = 0; i < ColumnWidths.size(); ++i)
        fktTab->setColumnWidth(static_cast<int>(i), ColumnWidths.at(i));
    for (int row = 0; row < FunctionCount; ++row)
        fktTab->setRowHeight(row, RowHeight);
    fktTab->hugColumns();
    fktTab->setMinimumHeight(RowHeight * LeastRowsShown);
    names = new RowNames(fktTab, this);
    names->setObjectName(QStringLiteral("FktNamen"));
}

/// The grid with its column heads: the first ends where its column ends, the last begins where its column begins.
QWidget *LocoEditor::buildGridWithHeads()
{
    auto *area = new QWidget(this);
    auto *funktion = NamedLabel(QStringLiteral("Label4"), QStringLiteral("Funktion"), area);
    auto *symbole = NamedLabel(QStringLiteral("Label5"), QStringLiteral("Symbole"), area);
    auto *tastfunktion = NamedLabel(QStringLiteral("Label6"), QStringLiteral("Tastfunktion"), area);
    const int side = tastfunktion->sizeHint().width() + HeadGap;
    const int columns = ColumnWidths.at(OnColumn) + ColumnWidths.at(OffColumn);
    const int middle = qMax(columns, symbole->sizeHint().width()); // a head is never cut
    funktion->setFixedWidth(side);
    funktion->setAlignment(Qt::AlignRight);
    funktion->setContentsMargins(0, 0, HeadGap, 0);
    symbole->setFixedWidth(middle);
    symbole->setAlignment(Qt::AlignHCenter);
    tastfunktion->setContentsMargins(HeadGap, 0, 0, 0);
    auto *heads = new QHBoxLayout;
    heads->setSpacing(0);
    for (QLabel *label : {funktion, symbole, tastfunktion})
        heads->addWidget(label);
    heads->addStretch();
    auto *gridRow = new QHBoxLayout;
    gridRow->addSpacing(side - ColumnWidths.at(HeadColumn) + (middle - columns) / 2);
    gridRow->addWidget(fktTab);
    gridRow->addSpacing(HeadGap);
    gridRow->addWidget(names, 1);
    auto *layout = new QVBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(heads);
    layout->addLayout(gridRow, 1);
    return area;
}

/// The buttons, and below them what is to be known before one is pressed; its place is kept, so that none moves.
QVBoxLayout *LocoEditor::buildButtons()
{
    auto *row = new QHBoxLayout;
    SameWidth({readBut, writeBut, deleteBut});
    for (QPushButton *button : {readBut, writeBut, deleteBut})
        row->addWidget(button);
    row->addStretch();
    auto *marks = new QHBoxLayout;
    for (QLabel *label : {changedLbl, doubtLbl}) {
        KeepPlace(label);
        marks->addWidget(label);
    }
    marks->addStretch();
    auto *all = new QVBoxLayout;
    all->addLayout(row);
    all->addLayout(marks);
    all->addWidget(whereLbl);
    return all;
}

void LocoEditor::buildLayout()
{
    auto *fields = new QGridLayout;
    auto *label1 = NamedLabel(QStringLiteral("Label1"), QStringLiteral("Lokadresse:"), this);
    auto *label2 = NamedLabel(QStringLiteral("Label2"), QStringLiteral("Lokname:"), this);
    label1->setBuddy(adrTxt);
    label2->setBuddy(loknameTxt);
    adrTxt->setMaximumWidth(adrTxt->fontMetrics().averageCharWidth() * 10);
    fields->addWidget(label1, 0, 0);
    fields->addWidget(adrTxt, 0, 1, Qt::AlignLeft);
    fields->addWidget(label2, 1, 0);
    fields->addWidget(loknameTxt, 1, 1);
    fields->addWidget(NamedLabel(QStringLiteral("Label3"), QStringLiteral("Symbol:"), this), 2, 0);
    fields->addWidget(lokSymPic, 2, 1, Qt::AlignLeft);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(NamedLine(QStringLiteral("Line1"), this));
    auto *gridArea = buildGridWithHeads();
    layout->addWidget(gridArea, 1);
    layout->addWidget(NamedLine(QStringLiteral("Line2"), this));
    layout->addWidget(multiUniChk);
    layout->addLayout(buildButtons());
}

void LocoEditor::connectControls()
{
    connect(adrTxt, &QLineEdit::textChanged, this, &LocoEditor::addressChanged);
    connect(loknameTxt, &QLineEdit::textChanged, this, &LocoEditor::nameChanged);
    loknameTxt->installEventFilter(this);
    connect(multiUniChk, &QCheckBox::toggled, this,
        [this](bool checked) { change([this, checked] { record.multiUni = checked ? 1 : 0; }); });
    lokSymPic->makeClickable();
    connect(lokSymPic, &PictureBox::clicked, this, &LocoEditor::pickLocoSymbol);
    connect(fktTab, &Grid::cellActed, this, &LocoEditor::actOnFunction);
    connect(fktTab, &Grid::inputTyped, this,
        [this](int /*row*/, int /*column*/, const QString &character) { search.type(character); });
    connect(adrTxt, &QLineEdit::returnPressed, readBut, &QPushButton::click);
    connect(readBut, &QPushButton::clicked, this, &LocoEditor::readRecord);
    connect(writeBut, &QPushButton::clicked, this, &LocoEditor::writeRecord);
    connect(deleteBut, &QPushButton::clicked, this, &LocoEditor::deleteRecord);
    // None for the deletion: it does not ask.
    const std::initializer_list<std::pair<QWidget *, Qt::Key>> keys{{adrTxt, Qt::Key_R}, {loknameTxt, Qt::Key_N},
        {lokSymPic, Qt::Key_Y}, {fktTab, Qt::Key_F}, {multiUniChk, Qt::Key_T}, {readBut, Qt::Key_L},
        {writeBut, Qt::Key_S}};
    for (const auto &[control, key] : keys)
        AltKey(control, key);
}

void LocoEditor::focusAddress()
{
    adrTxt->setFocus();
    adrTxt->selectAll();
}

LocoEditor::Shown LocoEditor::shownNow() const
{
    return {adrTxt->text(), CurrentLoco, complete};
}

int LocoEditor::address() const
{
    return Val(adrTxt->text());
}

QString LocoEditor::unwritten() const
{
    if (!held.differsFrom(CurrentLoco, address()))
        return {};
    const int number = address() > 0 ? address() : held.address;
    return number > 0 ? QStringLiteral("Lokdatensatz %1").arg(number) : QStringLiteral("Lokdatensatz");
}

LocoEditor::State LocoEditor::state() const
{
    return {CurrentLoco, complete};
}

void LocoEditor::restore(const State &kept)
{
    CurrentLoco = kept.loco;
    setComplete(kept.complete);
    showRecord();
    explain();
}

/// Changes the record in memory as one step.
void LocoEditor::change(const std::function<void()> &work)
{
    const State before = state();
    work();
    history.note(before);
    explain();
}

/// In the name field first what has been typed there, character by character.
void LocoEditor::undo()
{
    const Command command;
    if (!command.ok())
        return;
    if (loknameTxt->hasFocus() && loknameTxt->isUndoAvailable())
        loknameTxt->undo();
    else
        history.stack().undo();
}

void LocoEditor::redo()
{
    const Command command;
    if (!command.ok())
        return;
    if (loknameTxt->hasFocus() && loknameTxt->isRedoAvailable())
        loknameTxt->redo();
    else
        history.stack().redo();
}

void LocoEditor::nameChanged(const QString &text)
{
    const State before = state();
    const bool wasEmpty = IsEmptyName(record.name);
    // A text that is back at what was shown, for example undone, stands for the record as it was: "-leer-" is no name.
    const bool asShown = text == shownName;
    record.name = asShown ? shownLoco.record.name : UpperLatin1(text);
    CurrentLoco.nothingToWrite = asShown && shownLoco.nothingToWrite;
    if (IsEmptyName(record.name))
        clearShownRecord();
    else if (wasEmpty)
        showMemory(); // the fields behind an empty record are written with the name: nothing may be hidden
    markName();
    history.note(before, NameStep);
    explain();
}

/// A field without an address reads and writes record 0, which is no loco.
void LocoEditor::markAddress()
{
    MarkField(adrTxt, address() >= FirstLoco ? QString() : AddressRange());
}

bool LocoEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != loknameTxt || event->type() != QEvent::KeyPress)
        return QGroupBox::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    if (key->matches(QKeySequence::Undo))
        undo();
    else if (key->matches(QKeySequence::Redo) || key->keyCombination() == (Qt::CTRL | Qt::Key_Y))
        redo();
    else
        return QGroupBox::eventFilter(watched, event);
    return true;
}

/// Characters that the handheld does not have become blanks when the name is written.
void LocoEditor::markName()
{
    const QString unknown = UnknownCharacters(UpperLatin1(loknameTxt->text()));
    MarkField(loknameTxt,
        unknown.isEmpty() ? QString()
                          : QStringLiteral("Diese Zeichen hat der Handregler nicht: %1\n"
                                           "Sie werden als Leerzeichen geschrieben.")
                                .arg(unknown));
}

/// What a write would do when it is not what was read: which loco goes under which address, and what it overwrites or
/// adds.
QString LocoEditor::whereItGoes() const
{
    if (CurrentLoco.nothingToWrite || address() < FirstLoco)
        return {};
    if (address() == held.address) // after a deletion, or where none has been, the handheld does not have it
        return IsEmptyName(held.loco.record.name) && !IsEmptyName(record.name)
            ? QStringLiteral("Lok %1 fehlt im Handregler").arg(held.address)
            : QString();
    const QString what =
        held.address > 0 ? QStringLiteral("Lok %1").arg(held.address) : QStringLiteral("die neue Lok");
    QString text = QStringLiteral("schreibt %1 unter %2").arg(what).arg(address());
    if (!IsKnownLoco(address()))
        return text;
    const QString name = KnownLocoName(address());
    return text + QStringLiteral(" (dort steht: %1)").arg(name.isEmpty() ? QStringLiteral("eine Lok") : name);
}

/// Shows what stands between memory and handheld.
void LocoEditor::explain()
{
    const QString where = whereItGoes();
    whereLbl->setText(where);
    writeBut->setToolTip(held.address > 0 && address() != held.address && !where.isEmpty()
            ? QStringLiteral("Schreibt die gelesene Lok %1 unter die Adresse %2").arg(held.address).arg(address())
            : QString());
    changedLbl->setVisible(held.differsFrom(CurrentLoco, address()));
}

void LocoEditor::addressChanged()
{
    clearShownRecord();
    history.stack().clear();
    record.multiUni = 0; // what the unticked box shows; the other fields stay for a write under the new address
    if (address() > LastLoco) {
        adrTxt->setText(QStringLiteral("??"));
        adrTxt->selectAll(); // the next digit replaces it
    }
    markAddress();
    if (adrTxt->text() == AccessCode())
        Q_EMIT startImageUnlocked();
    explain();
}

void LocoEditor::clearShownRecord()
{
    lokSymPic->setPicture(QPixmap());
    for (int row = 0; row < FunctionCount; ++row) {
        fktTab->setText(row, HeadColumn, u'f' + QString::number(row));
        for (const int column : {OnColumn, OffColumn}) {
            fktTab->setPicture(row, column, QPixmap());
            fktTab->setWords(row, column, row == 0 ? NoSymbolOfF0() : QString(), QString());
        }
        fktTab->setText(row, MomentaryColumn, QString());
        fktTab->setWords(row, MomentaryColumn, QString(), QString());
        names->setName(row, QString());
    }
    const QSignalBlocker blocker(multiUniChk);
    multiUniChk->setChecked(false);
}

void LocoEditor::showName()
{
    const QSignalBlocker blocker(loknameTxt);
    // The record's filling blanks would only be in the way of typing.
    shownName = ShownName(record);
    shownLoco = CurrentLoco;
    loknameTxt->setText(shownName);
    loknameTxt->setCursorPosition(0);
    markName();
}

void LocoEditor::showLocoSymbol()
{
    const int symbol = record.locoSymbol;
    const bool known = symbol < LokSymbolCount;
    lokSymPic->setToolTip(known ? SymbolToolTip(SymbolKind::Loco, symbol, 0) : QString());
    lokSymPic->setAccessibleDescription(SymbolWords(SymbolKind::Loco, symbol, 0));
    lokSymPic->setPicture(known ? SymbolPicture(SymbolKind::Loco, symbol, 0) : QPixmap());
}

void LocoEditor::showFunctionSymbols(int row)
{
    const int number = record.symbols.at(static_cast<size_t>(row));
    ShowSymbol(fktTab, row, OnColumn, SymbolKind::Function, number, HalfOn);
    ShowSymbol(fktTab, row, OffColumn, SymbolKind::Function, number, HalfOff);
    names->setName(row, SymbolName(SymbolKind::Function, number));
    if (row == 0) { // shown when it was picked, but the handheld keeps none
        for (const int column : {OnColumn, OffColumn})
            fktTab->setWords(row, column, NoSymbolOfF0(), NoSymbolOfF0());
        names->setName(row, QString());
    }
}

void LocoEditor::showFunctions()
{
    for (int row = 0; row < FunctionCount; ++row) {
        showFunctionSymbols(row);
        showMode(row);
    }
}

void LocoEditor::showMode(int row)
{
    const int mode = record.modes.at(static_cast<size_t>(row));
    fktTab->setText(row, MomentaryColumn, QString::number(mode));
    const QString word = mode == 1 ? QStringLiteral("Tastfunktion") : QStringLiteral("Dauerfunktion");
    fktTab->setWords(row, MomentaryColumn, word, word);
}

/// Everything but the name, as it stands in memory.
void LocoEditor::showMemory()
{
    showLocoSymbol();
    showFunctions();
    const QSignalBlocker blocker(multiUniChk);
    multiUniChk->setChecked(record.multiUni == 1);
}

void LocoEditor::showRecord()
{
    showName();
    clearShownRecord();
    if (!IsEmptyName(record.name))
        showMemory();
}

void LocoEditor::setComplete(bool isComplete)
{
    complete = isComplete;
    doubtLbl->setVisible(!complete);
}

void LocoEditor::readRecord()
{
    const CommandOn command([this] { return adrTxt->text(); });
    markAddress();
    if (!command.connected())
        return;
    const Progress progress(QStringLiteral("Lese Lokdatensatz"));
    const Outcome read = ReadLocoRecord(Val(command.shown));
    if (read.brokenOff())
        return; // half a record must not be shown, nor written later
    history.stack().clear();
    setComplete(read.ok());
    held = {Val(command.shown), CurrentLoco, true};
    showRecord();
    if (adrTxt->text() != command.shown) {
        clearShownRecord();  // the user typed on: the record shown does not belong to that address
        record.multiUni = 0; // what the unticked box shows
    }
    explain();
    if (read.ok())
        NoteDeed(QStringLiteral("Lok %1 gelesen").arg(held.address));
    WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::writeRecord()
{
    const CommandOn command([this] { return shownNow(); });
    markAddress();
    if (!command.mayWrite())
        return;
    LocoRecord written = command.shown.loco.record;
    if (command.shown.loco.nothingToWrite) {
        TheAsk().showBox({QStringLiteral("Der Lokdatensatz ist leer!\nEs wird nichts geschrieben!"),
            QStringLiteral("Achtung"), BoxIcon::None});
        return;
    }
    if (!command.shown.complete && !command.mayWriteDoubtful(QStringLiteral("der Lokdatensatz")))
        return;
    const Progress progress(QStringLiteral("Schreibe Lokdatensatz"));
    written.name = FitLocoName(written.name);
    if (record.name == command.shown.loco.record.name) // otherwise the user has typed on
        record.name = written.name;
    const Outcome outcome = WriteLocoRecord(Val(command.shown.address), written);
    showWritten(written, Val(command.shown.address), outcome);
    if (outcome.ok())
        NoteDeed(QStringLiteral("Lok %1 geschrieben").arg(held.address));
    if (!outcome.brokenOff())
        WaitSeconds(StandardDelaySeconds);
}

/// After a write the window shows what the handheld holds, unless the user has typed on.
void LocoEditor::showWritten(const LocoRecord &written, int writtenAddress, const Outcome &outcome)
{
    const bool same = record.name == written.name;
    held = {writtenAddress, {written, false}, outcome.ok()};
    if (!IsEmptyName(written.name))
        held.loco.record.name = AsStored(written.name, NameLength);
    if (!outcome.brokenOff() && same && !IsEmptyName(written.name)) {
        record.name = held.loco.record.name;
        if (CurrentLoco == held.loco && address() == writtenAddress)
            showRecord();
        else
            showName();
    }
    explain();
}

void LocoEditor::deleteRecord()
{
    const CommandOn command([this] { return adrTxt->text(); });
    if (!command.ok())
        return;
    markAddress();
    const LocoRecord erased{EmptyName(NameLength + 1), {}, {}, 0, 0};
    change([this, &erased] {
        CurrentLoco = {erased, false};
        setComplete(true); // all of it is known now
    });
    // On purpose without a search: only what is shown is cleared.
    if (!TheLink().HandreglerGefunden || !command.mayWrite()) {
        showRecord();
        return;
    }
    const Progress progress(QStringLiteral("Lösche Lokdatensatz"));
    const Outcome written = WriteLocoRecord(Val(command.shown), erased);
    held = {Val(command.shown), {erased, false}, written.ok()};
    showRecord();
    explain();
    if (written.ok()) // it was not asked about: here is the way back
        NoteDeed(QStringLiteral("Lok %1 gelöscht, Strg+Z zeigt sie wieder").arg(held.address));
    if (!written.brokenOff())
        WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::buildContextMenu()
{
    setContextMenuPolicy(Qt::ActionsContextMenu);
    AddUndoActions(
        this, history.stack(), [this] { undo(); }, [this] { redo(); });
    auto *line = new QAction(this);
    line->setSeparator(true);
    addAction(line);
    const auto add = [this](const char *name, const QString &caption, const std::function<void()> &work) {
        return NamedAction(QLatin1String(name), caption, {}, this, work);
    };
    const auto copy = [this] {
        copied = CurrentLoco;
        copiedComplete = complete;
        hasCopy = true;
        for (QAction *action : pastes)
            action->setEnabled(true);
    };
    add("LokKopieren", QStringLiteral("Lokdatensatz kopieren"), copy);
    pastes += add("LokEinfuegen", QStringLiteral("Lokdatensatz einfügen"), [this] { paste(false); });
    add("FunktionenKopieren", QStringLiteral("Funktionen kopieren"), copy);
    pastes += add("FunktionenEinfuegen", QStringLiteral("Funktionen einfügen"), [this] { paste(true); });
    for (QAction *action : pastes)
        action->setEnabled(false);
    add("FunktionenUebertragen", QStringLiteral("Funktionen auf andere Adressen übertragen…"),
        [this] { spreadFunctions(); });
}

/// Into memory and window; nothing is written.
void LocoEditor::paste(bool functionsOnly)
{
    const Command command;
    if (!command.ok() || !hasCopy)
        return;
    change([this, functionsOnly] {
        if (!functionsOnly)
            CurrentLoco = copied;
        record.symbols = copied.record.symbols;
        record.modes = copied.record.modes;
        record.multiUni = copied.record.multiUni;
        setComplete(copiedComplete && (complete || !functionsOnly)); // a doubt goes with what is copied
    });
    if (functionsOnly)
        showMemory();
    else
        showRecord();
}

void LocoEditor::readLoco(int address)
{
    if (Busy())
        return;
    adrTxt->setText(QString::number(address));
    readRecord();
}

void LocoEditor::showLoco(int address, const LocoRecord &loco)
{
    adrTxt->setText(QString::number(address));
    change([this, &loco] {
        CurrentLoco = {loco, false};
        setComplete(true);
    });
    showRecord();
    explain();
}

void LocoEditor::spreadFunctions()
{
    const CommandOn command([this] { return shownNow(); });
    if (!command.mayWrite()
        || (!command.shown.complete && !command.mayWriteDoubtful(QStringLiteral("der Lokdatensatz"))))
        return;
    const QString list =
        TheAsk().askText(QStringLiteral("Adressen (zum Beispiel 1-5,8):"), QStringLiteral("Funktionen übertragen"));
    if (list.isEmpty())
        return;
    if (const QString fault = NumberListFault(list, FirstLoco, LastLoco); !fault.isEmpty()) {
        TheAsk().showBox({fault, QStringLiteral("Fehler!"), BoxIcon::Critical});
        return;
    }
    SpreadFunctions(command.shown.loco.record, list,
        [&command](const BoxText &question) { return command.confirmed(question, false); });
}

void LocoEditor::toggleMomentary(int row)
{
    int &mode = record.modes.at(static_cast<size_t>(row));
    change([&mode] { mode = mode == 1 ? 0 : 1; });
    showMode(row);
}

void LocoEditor::actOnFunction(int row, int column)
{
    const Command command;
    if (!command.ok() || column == HeadColumn)
        return;
    if (column == MomentaryColumn) {
        toggleMomentary(row);
        return;
    }
    const int chosen = PickSymbol(
        SymbolKind::Function, record.symbols.at(static_cast<size_t>(row)), QStringLiteral("Symbol für f%1").arg(row));
    if (chosen == NothingChosen)
        return;
    change([this, row, chosen] { record.symbols.at(static_cast<size_t>(row)) = chosen; });
    showFunctionSymbols(row);
    fktTab->setCurrentCell(qMin(row + 1, FunctionCount - 1), column); // on with the next one
}

void LocoEditor::pickLocoSymbol()
{
    const Command command;
    if (!command.ok())
        return;
    const QString purpose = address() > 0 ? QStringLiteral("Symbol für Lok %1").arg(address()) : QString();
    const int chosen = PickSymbol(SymbolKind::Loco, record.locoSymbol, purpose);
    if (chosen == NothingChosen)
        return;
    change([this, chosen] { record.locoSymbol = chosen; });
    showLocoSymbol();
}

} // namespace hr::ui
