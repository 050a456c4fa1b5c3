#include "ui/common/pickers.h"

#include "platform/text.h"
#include "program/run_control.h"
#include "ui/common/desktop.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/picture_box.h"
#include "ui/widgets/window_keys.h"
#include "ui/widgets/window_place.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <memory>

namespace hr::ui
{

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
constexpr int MostRecent = 8;
constexpr int RecentMargin = 4; // around each picture
constexpr int RecentSpacing = 3;

const PickerLook &LookOf(SymbolKind kind)
{
    static const std::array<PickerLook, 3> looks{
        PickerLook{QStringLiteral("LokSymWin"), QStringLiteral("Loksymbole"), QStringLiteral("LokSymTab"),
            QStringLiteral("Abbruch"), {QStringLiteral("Nr."), QStringLiteral("Symbol"), QStringLiteral("Datei")},
            LokSymbolCount, 1, 68, 24},
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
    , searchTxt(NamedField(QStringLiteral("SuchTxt"), QStringLiteral("Suche"), this))
    , usedOnlyChk(new QCheckBox(QStringLiteral("nur belegte"), this))
    , recentLbl(NamedLabel(QStringLiteral("ZuletztLbl"), QStringLiteral("Zuletzt:"), this))
{
    setObjectName(LookOf(kind).windowName);
    setWindowTitle(LookOf(kind).caption);
    buildGrid();
    buildSearch();
    buildRecent();
    buildLayout();
    resize(sizeHint().width(), WindowHeight);
    connect(grid, &Grid::cellActed, this, &SymbolPicker::choose);
}

void SymbolPicker::buildSearch()
{
    searchTxt->setPlaceholderText(QStringLiteral("Nummer oder Beschreibung"));
    searchTxt->setClearButtonEnabled(true);
    usedOnlyChk->setObjectName(QStringLiteral("NurBelegteChk"));
    connect(searchTxt, &QLineEdit::textChanged, this, &SymbolPicker::filterRows);
    connect(searchTxt, &QLineEdit::returnPressed, this, &SymbolPicker::chooseOnlyRow);
    connect(usedOnlyChk, &QCheckBox::toggled, this, &SymbolPicker::filterRows);
    SearchIn(searchTxt, grid);
    AltKey(searchTxt, Qt::Key_S);
    AltKey(usedOnlyChk, Qt::Key_N);
    AltKey(grid, Qt::Key_T);
}

void SymbolPicker::buildRecent()
{
    const PictureGeometry size = GeometryOf(kind);
    for (int i = 0; i < MostRecent; ++i) {
        auto *box = NamedPicture(QStringLiteral("Zuletzt") + QString::number(i), QStringLiteral("Zuletzt verwendet"),
            size.width + RecentMargin, size.height + RecentMargin, this);
        box->makeClickable();
        connect(box, &PictureBox::clicked, this, [this, i] { choose(recent.at(static_cast<size_t>(i))); });
        recentBoxes.push_back(box);
    }
    showRecent();
}

void SymbolPicker::buildLayout()
{
    auto *searchRow = new QHBoxLayout;
    searchRow->addWidget(searchTxt);
    searchRow->addWidget(usedOnlyChk);
    // Loco pictures are wide: eight in one row would make the window wider than its grid.
    const int perRow = kind == SymbolKind::Loco ? MostRecent / 2 : MostRecent;
    auto *recentRow = new QGridLayout;
    recentRow->setSpacing(RecentSpacing);
    recentRow->addWidget(recentLbl, 0, 0, Qt::AlignLeft | Qt::AlignVCenter);
    for (int i = 0; i < MostRecent; ++i)
        recentRow->addWidget(recentBoxes.at(static_cast<size_t>(i)), i / perRow, 1 + i % perRow);
    recentRow->setColumnStretch(1 + perRow, 1);
    auto *okButton = NamedButton(QStringLiteral("OKButton"), LookOf(kind).cancelCaption, this);
    AltKey(okButton, Qt::Key_A);
    connect(okButton, &QPushButton::clicked, this, &SymbolPicker::leave);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(searchRow);
    layout->addLayout(recentRow);
    layout->addWidget(grid);
    layout->addLayout(buttonRow);
    orderTabs();
    setTabOrder(grid, okButton);
}

/// As the eye reads, from top to bottom.
void SymbolPicker::orderTabs()
{
    setTabOrder(searchTxt, usedOnlyChk);
    QWidget *last = usedOnlyChk;
    for (PictureBox *box : recentBoxes) {
        setTabOrder(last, box);
        last = box;
    }
    setTabOrder(last, grid);
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

/// Makes the last column wide enough for its longest text. It never shrinks: hidden rows are not measured.
void SymbolPicker::fitDescription()
{
    const int column = grid->columnCount() - 1;
    const int before = grid->columnWidth(column);
    grid->resizeColumnToContents(column);
    const int needed = qMax(LeastDescriptionWidth, grid->columnWidth(column) + DescriptionMargin);
    grid->setColumnWidth(column, qMax(before, needed));
    grid->fixWidthToColumns();
}

void SymbolPicker::refreshRow(int number)
{
    for (int row = number < 0 ? 0 : number; row < (number < 0 ? grid->rowCount() : number + 1); ++row)
        fillRow(row);
    fitDescription();
    showRecent();
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

void SymbolPicker::showRecent()
{
    recentLbl->setVisible(!recent.empty());
    for (size_t i = 0; i < recentBoxes.size(); ++i) {
        PictureBox *box = recentBoxes.at(i);
        box->setVisible(i < recent.size());
        if (i >= recent.size())
            continue;
        const int number = recent.at(i);
        const QPixmap on = SymbolPictureOfHalf(kind, number, HalfOn);
        const QPixmap shown = on.isNull() ? SymbolPictureOfHalf(kind, number, HalfOff) : on;
        box->setPicture(shown);
        if (shown.isNull())
            box->setText(QString::number(number));
        box->setToolTip(QString::number(number) + u' ' + SymbolName(kind, number).toHtmlEscaped());
        box->setAccessibleName(
            QStringLiteral("Zuletzt verwendet: ") + QString::number(number) + u' ' + SymbolName(kind, number));
    }
}

bool SymbolPicker::hasPicture(int number) const
{
    return !SymbolPictureOfHalf(kind, number, HalfOff).isNull()
        || !SymbolPictureOfHalf(kind, number, HalfOn).isNull();
}

bool SymbolPicker::isWanted(int number) const
{
    const QString sought = searchTxt->text().trimmed();
    const bool found =
        QString::number(number).startsWith(sought) || SymbolName(kind, number).contains(sought, Qt::CaseInsensitive);
    return found && (!usedOnlyChk->isChecked() || hasPicture(number));
}

/// The current row is always one that is seen, or none: Enter must never choose a hidden one.
void SymbolPicker::filterRows()
{
    int first = -1;
    for (int row = 0; row < grid->rowCount(); ++row) {
        const bool wanted = isWanted(row);
        grid->setRowHidden(row, !wanted);
        if (wanted && first < 0)
            first = row;
    }
    const int current = grid->currentRow();
    if (current < 0 || grid->isRowHidden(current))
        grid->setCurrentCell(first, first < 0 ? -1 : 0);
    if (grid->currentRow() >= 0)
        grid->scrollToItem(grid->item(grid->currentRow(), 0));
}

void SymbolPicker::chooseOnlyRow()
{
    int only = -1;
    for (int row = 0; row < grid->rowCount(); ++row) {
        if (grid->isRowHidden(row))
            continue;
        if (only >= 0)
            return;
        only = row;
    }
    if (only >= 0)
        choose(only);
}

void SymbolPicker::open(int presentNumber)
{
    searchTxt->clear();
    showRecent();
    filterRows();
    presentBeside(ActedPlace());
    grid->setFocus();
    const int row = presentNumber >= 0 && presentNumber < grid->rowCount() ? presentNumber : 0;
    if (grid->isRowHidden(row)) // an empty one with "nur belegte": the first row that is seen stays the current one
        return;
    grid->setCurrentCell(row, 0);
    grid->scrollToItem(grid->item(row, 0), QAbstractItemView::PositionAtCenter);
}

void SymbolPicker::choose(int row)
{
    if (GewaehltesSymbol != -1)
        return;
    GewaehltesSymbol = kind == SymbolKind::Loco ? Val(grid->text(row, 0)) : row;
    std::erase(recent, row);
    recent.insert(recent.begin(), row);
    recent.resize(std::min<size_t>(recent.size(), MostRecent));
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

} // namespace hr::ui
