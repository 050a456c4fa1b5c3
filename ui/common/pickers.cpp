#include "ui/common/pickers.h"

#include "platform/text.h"
#include "program/run_control.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/common/windows.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>
#include <memory>

namespace
{

struct PickerLook {
    QString windowName;
    QString caption;
    QString gridName;
    QString cancelCaption;
    QStringList headings;
    int rows;
    int pictureColumns;
    int pictureColumnWidth;
    int rowHeight;
};

constexpr int NumberColumnWidth = 44;
constexpr int WindowHeight = 600;
constexpr int LeastDescriptionWidth = 160;
constexpr int DescriptionMargin = 8;

const PickerLook &LookOf(SymbolKind kind)
{
    static const std::array<PickerLook, 3> looks{
        PickerLook{QStringLiteral("LokSymWin"), QStringLiteral("Loksymbole"), QStringLiteral("LokSymTab"),
            QStringLiteral("Abbruch"), {QStringLiteral("Nr."), QStringLiteral("Symbol"), QStringLiteral("Datei")},
            LokSymbolCount, 1, 64, 24},
        PickerLook{QStringLiteral("LokFktWin"), QStringLiteral("Lokfunktionssymbole"), QStringLiteral("LokFktTab"),
            QStringLiteral("Abbruch"),
            {QStringLiteral("Nr."), QStringLiteral("OFF"), QStringLiteral("ON"), QStringLiteral("Beschreibung")},
            PairCount, 2, 40, 22},
        PickerLook{QStringLiteral("MagSymWin"), QStringLiteral("Mag.Art.Symbole"), QStringLiteral("MagSymTab"),
            QStringLiteral("Abbrechen"),
            {QStringLiteral("Nr."), QStringLiteral("Rot"), QStringLiteral("Grün"), QStringLiteral("Beschreibung")},
            PairCount, 2, 40, 22}};
    return looks.at(static_cast<size_t>(kind));
}

std::array<std::unique_ptr<SymbolPicker>, 3> pickers;

SymbolPicker &PickerOf(SymbolKind kind)
{
    auto &picker = pickers.at(static_cast<size_t>(kind));
    if (!picker)
        picker = std::make_unique<SymbolPicker>(kind);
    return *picker;
}

} // namespace

SymbolPicker::SymbolPicker(SymbolKind symbolKind)
    : kind(symbolKind)
    , grid(new Grid(LookOf(symbolKind).rows, static_cast<int>(LookOf(symbolKind).headings.size()), this))
{
    setObjectName(LookOf(kind).windowName);
    setWindowTitle(LookOf(kind).caption);
    buildGrid();
    auto *okButton = NamedButton(QStringLiteral("OKButton"), LookOf(kind).cancelCaption, this);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(grid);
    layout->addLayout(buttonRow);
    resize(sizeHint().width(), WindowHeight);
    connect(okButton, &QPushButton::clicked, this, &SymbolPicker::leave);
    connect(grid, &Grid::cellActed, this, &SymbolPicker::choose);
}

void SymbolPicker::buildGrid()
{
    const PickerLook &look = LookOf(kind);
    grid->setObjectName(look.gridName);
    grid->setAccessibleName(look.caption);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setHorizontalHeaderLabels(look.headings);
    grid->verticalHeader()->setDefaultSectionSize(look.rowHeight);
    grid->setColumnWidth(0, NumberColumnWidth);
    for (int column = 1; column <= look.pictureColumns; ++column)
        grid->setColumnWidth(column, look.pictureColumnWidth);
    for (int row = 0; row < look.rows; ++row)
        fillRow(row);
    fitDescription();
}

/// Makes the last column wide enough for its longest text.
void SymbolPicker::fitDescription()
{
    const int column = grid->columnCount() - 1;
    grid->resizeColumnToContents(column);
    grid->setColumnWidth(column, qMax(LeastDescriptionWidth, grid->columnWidth(column) + DescriptionMargin));
    grid->fixWidthToColumns();
}

void SymbolPicker::refreshRow(int number)
{
    for (int row = number < 0 ? 0 : number; row < (number < 0 ? grid->rowCount() : number + 1); ++row)
        fillRow(row);
    fitDescription();
}

void SymbolPicker::fillRow(int number)
{
    if (number < 0 || number >= grid->rowCount())
        return;
    const PickerLook &look = LookOf(kind);
    grid->setText(number, 0, QString::number(number));
    for (int half = 0; half < look.pictureColumns; ++half)
        ShowSymbol(grid, number, half + 1, kind, number, half == CatalogueHalf(kind, HalfOn) ? HalfOn : HalfOff);
    grid->setText(number, look.pictureColumns + 1, Description(kind, number));
    grid->item(number, look.pictureColumns + 1)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void SymbolPicker::open(int presentNumber)
{
    present();
    grid->setFocus();
    const int row = presentNumber >= 0 && presentNumber < grid->rowCount() ? presentNumber : 0;
    grid->setCurrentCell(row, 0);
    grid->scrollToItem(grid->item(row, 0), QAbstractItemView::PositionAtCenter);
}

void SymbolPicker::choose(int row)
{
    if (GewaehltesSymbol != -1)
        return;
    GewaehltesSymbol = kind == SymbolKind::Loco ? Val(grid->text(row, 0)) : row;
    hide();
}

void SymbolPicker::leave()
{
    if (GewaehltesSymbol == -1)
        GewaehltesSymbol = NothingChosen;
    hide();
}

int PickSymbol(SymbolKind kind, int presentNumber)
{
    SymbolPicker &picker = PickerOf(kind);
    GewaehltesSymbol = -1;
    const WaitingWindow waiting(&picker);
    picker.open(presentNumber);
    if (!PumpUntil([] { return GewaehltesSymbol != -1; }))
        GewaehltesSymbol = NothingChosen;
    picker.hide();
    const int chosen = GewaehltesSymbol;
    if (kind != SymbolKind::Loco)
        WaitSeconds(ShortPauseSeconds);
    return chosen;
}

void RefreshPickerRow(SymbolKind kind, int number)
{
    const auto &picker = pickers.at(static_cast<size_t>(kind));
    if (picker)
        picker->refreshRow(number);
}

void ResetPickers()
{
    for (auto &picker : pickers)
        picker.reset();
}
