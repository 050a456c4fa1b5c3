#include "ui/loco_editor.h"

#include "handheld/discovery.h"
#include "handheld/flash_map.h"
#include "handheld/loco_record.h"
#include "link/open_port.h"
#include "link/text_encoding.h"
#include "platform/run_control.h"
#include "platform/text.h"
#include "platform/world.h"
#include "ui/build_controls.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/grid.h"
#include "ui/pickers.h"
#include "ui/picture_box.h"
#include "ui/picture_cache.h"
#include "ui/progress.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace
{

enum Column { HeadColumn, OnColumn, OffColumn, MomentaryColumn, ColumnCount };
constexpr std::array<int, ColumnCount> ColumnWidths{26, 27, 27, 30}; // with the grid's frame 112 pixels together
constexpr int RowHeight = 20;
constexpr int HeadGap = 4;
constexpr int LeastRowsShown = 8;
constexpr int LocoPictureWidth = 49;
constexpr int LocoPictureHeight = 17;
constexpr int NameFieldCharacters = 24;

QString AccessCode()
{
    return QStringLiteral("Rupo");
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
{
    setObjectName(QStringLiteral("Frame1"));
    multiUniChk->setObjectName(QStringLiteral("MultiUniChk"));
    loknameTxt->setText(LokName);
    loknameTxt->setMaxLength(NameLength);
    loknameTxt->setMinimumWidth(loknameTxt->fontMetrics().averageCharWidth() * NameFieldCharacters);
    buildGrid();
    buildLayout();
    connectControls();
    clearShownRecord();
}

void LocoEditor::buildGrid()
{
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
    funktion->setFixedWidth(side);
    funktion->setAlignment(Qt::AlignRight);
    funktion->setContentsMargins(0, 0, HeadGap, 0);
    symbole->setFixedWidth(ColumnWidths.at(OnColumn) + ColumnWidths.at(OffColumn));
    symbole->setAlignment(Qt::AlignHCenter);
    tastfunktion->setContentsMargins(HeadGap, 0, 0, 0);
    auto *heads = new QHBoxLayout;
    heads->setSpacing(0);
    for (QLabel *label : {funktion, symbole, tastfunktion})
        heads->addWidget(label);
    auto *gridRow = new QHBoxLayout;
    gridRow->addSpacing(side - ColumnWidths.at(HeadColumn));
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
    for (const auto &[name, caption] : {std::pair("LeseLokDatensatzBut", "Lese Lokdatensatz"),
             std::pair("SchreibeLokDatensatzBut", "Schreibe Lokdatensatz"),
             std::pair("ResetLokdatenBut", "Lokdatensatz löschen")})
        row->addWidget(NamedButton(QString::fromUtf8(name), QString::fromUtf8(caption), this));
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
}

void LocoEditor::connectControls()
{
    connect(adrTxt, &QLineEdit::textChanged, this, &LocoEditor::addressChanged);
    connect(loknameTxt, &QLineEdit::textChanged, this, [](const QString &text) { LokName = UpperLatin1(text); });
    connect(multiUniChk, &QCheckBox::toggled, this, [](bool checked) { MultiUni = checked ? 1 : 0; });
    lokSymPic->makeClickable();
    connect(lokSymPic, &PictureBox::clicked, this, &LocoEditor::pickLocoSymbol);
    connect(fktTab, &Grid::cellActed, this, &LocoEditor::actOnFunction);
    const auto connectButton = [this](const char *name, void (LocoEditor::*command)()) {
        connect(findChild<QPushButton *>(QLatin1String(name)), &QPushButton::clicked, this, command);
    };
    connectButton("LeseLokDatensatzBut", &LocoEditor::readRecord);
    connectButton("SchreibeLokDatensatzBut", &LocoEditor::writeRecord);
    connectButton("ResetLokdatenBut", &LocoEditor::deleteRecord);
}

void LocoEditor::addressChanged()
{
    clearShownRecord();
    MultiUni = 0; // what the unticked box shows; the other fields stay for a write under the new address
    if (Val(adrTxt->text()) > LastLoco)
        adrTxt->setText(QStringLiteral("??"));
    if (adrTxt->text() == AccessCode())
        Q_EMIT startImageUnlocked();
}

void LocoEditor::clearShownRecord()
{
    lokSymPic->setPicture(QPixmap());
    for (int row = 0; row < FunctionCount; ++row) {
        fktTab->setText(row, HeadColumn, u'f' + QString::number(row));
        fktTab->setPicture(row, OnColumn, QPixmap());
        fktTab->setPicture(row, OffColumn, QPixmap());
        fktTab->setText(row, MomentaryColumn, QString());
    }
    const QSignalBlocker blocker(multiUniChk);
    multiUniChk->setChecked(false);
}

void LocoEditor::showName()
{
    const QSignalBlocker blocker(loknameTxt);
    // The record's filling blanks would only be in the way of typing.
    const QString shown = IsEmptyName(LokName) ? LeerName() : WithoutTrailingBlanks(LokName);
    loknameTxt->setText(shown);
    loknameTxt->setCursorPosition(0);
}

void LocoEditor::showLocoSymbol()
{
    const bool known = LokSymbol < LokSymbolCount;
    lokSymPic->setPicture(known ? PictureOfFile(PicturePath(SymbolKind::Loco, LokSymbol, 0)) : QPixmap());
}

void LocoEditor::showFunctionSymbols(int row)
{
    const int number = FktSymbol.at(static_cast<size_t>(row));
    const auto picture = [number](int handheldHalf) {
        const int half = CatalogueHalf(SymbolKind::Function, handheldHalf);
        return PictureOfFile(PicturePath(SymbolKind::Function, number, half));
    };
    fktTab->setPicture(row, OnColumn, picture(HalfOn));
    fktTab->setPicture(row, OffColumn, picture(HalfOff));
}

void LocoEditor::showFunctions()
{
    for (int row = 0; row < FunctionCount; ++row) {
        showFunctionSymbols(row);
        fktTab->setText(row, MomentaryColumn, QString::number(FktModus.at(static_cast<size_t>(row))));
    }
}

void LocoEditor::showRecord()
{
    showName();
    clearShownRecord();
    if (IsEmptyName(LokName) || LokName == LeerName())
        return;
    showLocoSymbol();
    showFunctions();
    const QSignalBlocker blocker(multiUniChk);
    multiUniChk->setChecked(MultiUni == 1);
}

void LocoEditor::readRecord()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const QString address = adrTxt->text();
    if (!HandheldConnected())
        return;
    const Progress progress(QStringLiteral("Lese Lokdatensatz"));
    const LocoRecord before = CurrentLocoRecord();
    ReadLocoRecord(Val(address));
    if (!Comm().isOpen() || WaitsMustEnd()) {
        SetCurrentLocoRecord(before); // broken off: half a record must not be shown, nor written later
        showName();
        if (adrTxt->text() != address)
            MultiUni = 0; // as the box was unticked when the address was typed
        return;
    }
    if (IsEmptyName(LokName))
        LokName = LeerName();
    showRecord();
    if (adrTxt->text() != address)
        clearShownRecord(); // the user typed on: the record shown does not belong to that address
    WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::writeRecord()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const int address = Val(adrTxt->text());
    if (!HandheldConnected())
        return;
    if (LokName == LeerName()) {
        TheFrontend().showBox({QStringLiteral("Der Lokdatensatz ist leer!\nEs wird nichts geschrieben!"),
            QStringLiteral("Achtung"), BoxIcon::None});
        return;
    }
    const Progress progress(QStringLiteral("Schreibe Lokdatensatz"));
    LokName = FitLocoName(LokName);
    WriteLocoRecord(address);
    WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::deleteRecord()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    SetCurrentLocoRecord({QString(NameLength + 1, FillerCharacter), {}, {}, 0, 0});
    if (!HandreglerGefunden) {
        showRecord();
        return;
    }
    const Progress progress(QStringLiteral("Lösche Lokdatensatz"));
    WriteLocoRecord(Val(adrTxt->text()));
    showRecord();
    WaitSeconds(StandardDelaySeconds);
}

void LocoEditor::toggleMomentary(int row)
{
    int &mode = FktModus.at(static_cast<size_t>(row));
    mode = mode == 1 ? 0 : 1;
    fktTab->setText(row, MomentaryColumn, QString::number(mode));
}

void LocoEditor::actOnFunction(int row, int column)
{
    const BusyScope busy;
    if (!busy.ok() || column == HeadColumn)
        return;
    if (column == MomentaryColumn) {
        toggleMomentary(row);
        return;
    }
    const int chosen = PickSymbol(SymbolKind::Function, FktSymbol.at(static_cast<size_t>(row)));
    if (chosen == NothingChosen)
        return;
    FktSymbol.at(static_cast<size_t>(row)) = chosen;
    showFunctionSymbols(row);
}

void LocoEditor::pickLocoSymbol()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const int chosen = PickSymbol(SymbolKind::Loco, LokSymbol);
    if (chosen == NothingChosen)
        return;
    LokSymbol = chosen;
    showLocoSymbol();
}
