#include "ui/loco/loco_editor.h"

#include "handheld/backup/number_list.h"
#include "handheld/flash_map.h"
#include "handheld/text_encoding.h"
#include "jobs/spread.h"
#include "link/open_link.h"
#include "platform/text.h"
#include "ui/common/command.h"
#include "ui/common/pickers.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"
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
constexpr int LeastRowsShown = 8;
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
    markAddress();
}

void LocoEditor::buildGrid()
{
    fktTab->setFont(FittingFont(fktTab->font()));
    fktTab->setObjectName(QStringLiteral("FktTab"));
    fktTab->setAccessibleName(QStringLiteral("Funktionen"));
    fktTab->horizontalHeader()->hide();
    for (size_t i = 0; i < ColumnWidths.size(); ++i)
        fktTab->setColumnWidth(static_cast<int>(i), ColumnWidths.at(i));
    for (int row = 0; row < FunctionCount; ++row)
        fktTab->setRowHeight(row, RowHeight);
    fktTab->hugColumns();
    fktTab->setMinimumHeight(RowHeight * LeastRowsShown);
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
    auto *gridRow = new QHBoxLayout;
    gridRow->addSpacing(side - ColumnWidths.at(HeadColumn) + (middle - columns) / 2);
    gridRow->addWidget(fktTab);
    gridRow->addStretch();
    auto *layout = new QVBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(heads);
    layout->addLayout(gridRow, 1);
    return area;
}

QHBoxLayout *LocoEditor::buildButtons()
{
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {readBut, writeBut, deleteBut})
        row->addWidget(button);
    row->addStretch();
    return row;
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
    layout->addWidget(gridArea, 1, Qt::AlignHCenter);
    layout->addWidget(NamedLine(QStringLiteral("Line2"), this));
    layout->addWidget(multiUniChk);
    layout->addLayout(buildButtons());
    layout->addWidget(doubtLbl);
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

LocoEditor::State LocoEditor::state() const
{
    return {CurrentLoco, complete};
}

void LocoEditor::restore(const State &kept)
{
    CurrentLoco = kept.loco;
    setComplete(kept.complete);
    showRecord();
    explainWrite();
}

/// Changes the record in memory as one step.
void LocoEditor::change(const std::function<void()> &work)
{
    const State before = state();
    work();
    history.note(before);
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
}

/// A field without an address reads and writes record 0, which is no loco.
void LocoEditor::markAddress()
{
    const bool isAddress = Val(adrTxt->text()) >= FirstLoco;
    MarkField(adrTxt, isAddress ? QString() : QStringLiteral("%1 bis %2").arg(FirstLoco).arg(LastLoco));
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

/// Says which loco goes under which address when that is not what was read.
void LocoEditor::explainWrite()
{
    const int address = Val(adrTxt->text());
    const bool copies = readAddress > 0 && address != readAddress && !CurrentLoco.nothingToWrite;
    writeBut->setToolTip(copies
            ? QStringLiteral("Schreibt die gelesene Lok %1 unter die Adresse %2").arg(readAddress).arg(address)
            : QString());
}

void LocoEditor::addressChanged()
{
    clearShownRecord();
    history.stack().clear();
    record.multiUni = 0; // what the unticked box shows; the other fields stay for a write under the new address
    if (Val(adrTxt->text()) > LastLoco) {
        adrTxt->setText(QStringLiteral("??"));
        adrTxt->selectAll(); // the next digit replaces it
    }
    markAddress();
    if (adrTxt->text() == AccessCode())
        Q_EMIT startImageUnlocked();
    explainWrite();
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
    if (row == 0) { // shown when it was picked, but the handheld keeps none
        for (const int column : {OnColumn, OffColumn})
            fktTab->setWords(row, column, NoSymbolOfF0(), NoSymbolOfF0());
    }
}

void LocoEditor::showFunctions()
{
    for (int row = 0; row < FunctionCount; ++row) {
        showFunctionSymbols(row);
        fktTab->setText(row, MomentaryColumn, QString::number(record.modes.at(static_cast<size_t>(row))));
    }
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
    if (!command.connected())
        return;
    const Progress progress(QStringLiteral("Lese Lokdatensatz"));
    const Outcome read = ReadLocoRecord(Val(command.shown));
    if (read.brokenOff())
        return; // half a record must not be shown, nor written later
    history.stack().clear();
    setComplete(read.ok());
    readAddress = Val(command.shown);
    showRecord();
    if (adrTxt->text() != command.shown) {
        clearShownRecord();  // the user typed on: the record shown does not belong to that address
        record.multiUni = 0; // what the unticked box shows
    }
    explainWrite();
    WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::writeRecord()
{
    const CommandOn command([this] { return shownNow(); });
    if (!command.connected())
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
    if (WriteLocoRecord(Val(command.shown.address), written).brokenOff())
        return;
    if (record.name == written.name && !IsEmptyName(written.name)) {
        record.name = AsStored(written.name, NameLength);
        showName();
    }
    WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::deleteRecord()
{
    const CommandOn command([this] { return adrTxt->text(); });
    if (!command.ok())
        return;
    const LocoRecord erased{EmptyName(NameLength + 1), {}, {}, 0, 0};
    change([this, &erased] {
        CurrentLoco = {erased, false};
        setComplete(true); // all of it is known now
    });
    if (!HandreglerGefunden) { // on purpose without a search: only what is shown is cleared
        showRecord();
        return;
    }
    const Progress progress(QStringLiteral("Lösche Lokdatensatz"));
    const Outcome written = WriteLocoRecord(Val(command.shown), erased);
    showRecord();
    if (!written.brokenOff())
        WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::buildContextMenu()
{
    setContextMenuPolicy(Qt::ActionsContextMenu);
    AddUndoActions(
        this, [this] { undo(); }, [this] { redo(); });
    auto *line = new QAction(this);
    line->setSeparator(true);
    addAction(line);
    const auto add = [this](const char *name, const QString &caption, const std::function<void()> &work) {
        NamedAction(QLatin1String(name), caption, {}, this, work);
    };
    const auto copy = [this] {
        copied = CurrentLoco;
        copiedComplete = complete;
        hasCopy = true;
    };
    add("LokKopieren", QStringLiteral("Lokdatensatz kopieren"), copy);
    add("LokEinfuegen", QStringLiteral("Lokdatensatz einfügen"), [this] { paste(false); });
    add("FunktionenKopieren", QStringLiteral("Funktionen kopieren"), copy);
    add("FunktionenEinfuegen", QStringLiteral("Funktionen einfügen"), [this] { paste(true); });
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

void LocoEditor::spreadFunctions()
{
    const CommandOn command([this] { return shownNow(); });
    if (!command.connected()
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
    fktTab->setText(row, MomentaryColumn, QString::number(mode));
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
    const int chosen = PickSymbol(SymbolKind::Function, record.symbols.at(static_cast<size_t>(row)));
    if (chosen == NothingChosen)
        return;
    change([this, row, chosen] { record.symbols.at(static_cast<size_t>(row)) = chosen; });
    showFunctionSymbols(row);
}

void LocoEditor::pickLocoSymbol()
{
    const Command command;
    if (!command.ok())
        return;
    const int chosen = PickSymbol(SymbolKind::Loco, record.locoSymbol);
    if (chosen == NothingChosen)
        return;
    change([this, chosen] { record.locoSymbol = chosen; });
    showLocoSymbol();
}

} // namespace hr::ui
