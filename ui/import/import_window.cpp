#include "ui/import/import_window.h"

#include "handheld/backup/dds_file.h"
#include "handheld/known_locos.h"
#include "handheld/text_encoding.h"
#include "jobs/report.h"
#include "jobs/send.h"
#include "platform/files.h"
#include "platform/text.h"
#include "program/branding.h"
#include "program/recent_files.h"
#include "ui/common/command.h"
#include "ui/common/connection.h"
#include "ui/common/desktop.h"
#include "ui/common/pickers.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/crisp_picture.h"
#include "ui/widgets/grid.h"
#include "ui/widgets/window_keys.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <utility>

namespace hr::ui
{

namespace
{

enum Column { AddressColumn, NameColumn, SymbolColumn, FirstFunctionColumn };
constexpr int ColumnCount = FirstFunctionColumn + FunctionCount;
constexpr int AddressWidth = 76; // with the mark
constexpr int NameWidth = 210;
constexpr int SymbolWidthPixels = 68;
constexpr int FunctionWidth = 36; // with the sort arrow
constexpr int RowHeight = 24;
constexpr int StartHeight = 520;

/// What a column is sorted by: names as in a register, Ä beside A.
std::pair<int, QString> SortKey(const DownloadedLoco &loco, int column)
{
    switch (column) {
    case AddressColumn:
        return {loco.address, {}};
    case NameColumn:
        return {0, UpperLatin1(loco.name).normalized(QString::NormalizationForm_D)};
    case SymbolColumn:
        return {loco.locoSymbol, {}};
    default:
        return {loco.modes.at(static_cast<size_t>(column - FirstFunctionColumn)), {}};
    }
}

std::unique_ptr<ImportWindow> importWindow;

/// A picture in the colour of the text, without its white ground.
QPixmap OnAnyGround(const QPixmap &picture, const QPalette &colours)
{
    QPixmap bare(picture.size());
    bare.fill(Qt::transparent);
    QPainter painter(&bare);
    DrawCrisp(painter, bare.rect(), picture, colours.color(QPalette::Text));
    return bare;
}

} // namespace

ImportWindow::ImportWindow()
    : grid(new Grid(0, ColumnCount, this))
    , filterTxt(NamedField(QStringLiteral("FilterTxt"), QStringLiteral("Filter:"), this))
    , countLbl(NamedLabel(QStringLiteral("AnzahlLbl"), QString(), this))
    , markLbl(NamedLabel(QStringLiteral("LegendeLbl"),
          QStringLiteral("Haken bei der Adresse: diese Lok hat der Handregler schon"), this))
{
    setObjectName(QStringLiteral("LokImportWin"));
    setWindowTitle(TheBranding().importTitle);
    buildGrid();
    buildLayout();
    fitWidth();
    connect(filterTxt, &QLineEdit::textChanged, this, &ImportWindow::filterRows);
    connect(grid, &QTableWidget::itemChanged, this, &ImportWindow::nameEdited);
    connect(grid, &QTableWidget::itemSelectionChanged, this, &ImportWindow::showCount);
    connect(grid, &Grid::cellDoubleActed, this, &ImportWindow::actOn);
    connect(grid, &Grid::inputAsked, this, &ImportWindow::actOn);
    connect(grid->horizontalHeader(), &QHeaderView::sectionClicked, this, &ImportWindow::sortBy);
}

void ImportWindow::buildGrid()
{
    grid->setObjectName(QStringLiteral("LokImportTab"));
    grid->setAccessibleName(TheBranding().importTitle);
    QStringList headings{QStringLiteral("Adr."), QStringLiteral("Name"), QStringLiteral("Symbol")};
    for (int f = 0; f < FunctionCount; ++f)
        headings += u'f' + QString::number(f);
    grid->setHorizontalHeaderLabels(headings);
    grid->selectRows();
    grid->horizontalHeader()->setSectionsClickable(true);
    grid->horizontalHeader()->setSortIndicatorShown(true);
    grid->horizontalHeader()->setToolTip(QStringLiteral("Klick: nach dieser Spalte sortieren"));
    std::vector<int> widths(ColumnCount, FunctionWidth);
    widths.at(AddressColumn) = AddressWidth;
    widths.at(NameColumn) = NameWidth;
    widths.at(SymbolColumn) = SymbolWidthPixels;
    grid->measure(widths, RowHeight);
}

void ImportWindow::buildLayout()
{
    auto *filterLabel = NamedLabel(QStringLiteral("FilterLbl"), QStringLiteral("Filter:"), this);
    filterLabel->setBuddy(filterTxt);
    filterTxt->setPlaceholderText(QStringLiteral("Adresse, Name oder Symbol"));
    filterTxt->setClearButtonEnabled(true);
    auto *filterRow = new QHBoxLayout;
    filterRow->addWidget(filterLabel);
    filterRow->addWidget(filterTxt, 1);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(countLbl);
    buttonRow->addStretch();
    const auto addButton = [&](const char *name, const char *caption, Qt::Key key, auto command) {
        auto *button = NamedButton(QString::fromUtf8(name), QString::fromUtf8(caption), this);
        connect(button, &QPushButton::clicked, this, command);
        AltKey(button, key);
        buttonRow->addWidget(button);
    };
    addButton("SendenBut", "Senden", Qt::Key_S, &ImportWindow::send);
    addButton("SichernBut", "Sichern", Qt::Key_I, &ImportWindow::save);
    addButton("SchliessenBut", "Schließen", Qt::Key_E, &QWidget::hide);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(filterRow);
    layout->addWidget(grid);
    layout->addWidget(markLbl);
    layout->addLayout(buttonRow);
    setTabOrder(filterTxt, grid);
    SearchIn(filterTxt, grid);
    AltKey(filterTxt, Qt::Key_F);
    AltKey(grid, Qt::Key_T);
}

void ImportWindow::load(const Download &download)
{
    grid->setRowCount(0); // before the locos change: every row shows one
    locos = download.locos;
    unusable = download.unusable;
    sortColumn = -1;
    grid->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    filterTxt->clear();
    grid->setRowCount(static_cast<int>(locos.size()));
    for (int row = 0; row < grid->rowCount(); ++row)
        fillRow(row);
    refreshMarks();
    filterRows();
    present();
    grid->setFocus();
}

void ImportWindow::fillName(int row)
{
    const DownloadedLoco &loco = locos.at(static_cast<size_t>(row));
    filling = true;
    grid->setText(row, NameColumn, loco.name);
    QTableWidgetItem *item = grid->item(row, NameColumn);
    item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    item->setToolTip(loco.stationName);
    filling = false;
}

void ImportWindow::fillRow(int row)
{
    const DownloadedLoco &loco = locos.at(static_cast<size_t>(row));
    const QPixmap hook = HookPicture();
    fillName(row);
    fillAddress(row);
    filling = true;
    const bool known = loco.locoSymbol < LokSymbolCount;
    grid->setText(row, SymbolColumn, known ? QString() : QString::number(loco.locoSymbol));
    grid->setPicture(row, SymbolColumn, known ? SymbolPicture(SymbolKind::Loco, loco.locoSymbol, 0) : QPixmap());
    for (size_t f = 0; f < FunctionCount; ++f)
        grid->setPicture(row, FirstFunctionColumn + static_cast<int>(f), loco.modes.at(f) == 1 ? hook : QPixmap());
    filling = false;
}

/// With the mark of a loco that the handheld holds, as far as this run knows.
void ImportWindow::fillAddress(int row)
{
    const int address = locos.at(static_cast<size_t>(row)).address;
    const bool known = IsKnownLoco(address);
    const QString words = known
        ? QStringLiteral(
            "Unter Adresse %1 hat der Handregler schon: %2\n(seit dem Programmstart gelesen, gesucht oder "
            "geschrieben)")
              .arg(QString::number(address),
                  KnownLocoName(address).isEmpty() ? QStringLiteral("eine Lok") : KnownLocoName(address))
        : QString();
    filling = true;
    grid->setText(row, AddressColumn, QString::number(address));
    grid->setWords(
        row, AddressColumn, words, known ? QStringLiteral("%1, schon im Handregler").arg(address) : QString());
    grid->item(row, AddressColumn)->setIcon(known ? QIcon(OnAnyGround(HookPicture(), palette())) : QIcon());
    filling = false;
}

void ImportWindow::refreshMarks()
{
    bool any = false;
    for (int row = 0; row < grid->rowCount(); ++row) {
        fillAddress(row);
        any = any || IsKnownLoco(locos.at(static_cast<size_t>(row)).address);
    }
    markLbl->setVisible(any);
}

/// The marks may have changed while the window was hidden.
void ImportWindow::showEvent(QShowEvent *event)
{
    refreshMarks();
    LeavableWindow::showEvent(event);
}

/// As wide as its columns; present() keeps it on the screen.
void ImportWindow::fitWidth()
{
    const QMargins around = layout()->contentsMargins();
    const int bar = grid->verticalScrollBar()->sizeHint().width();
    resize(grid->horizontalHeader()->length() + bar + 2 * grid->frameWidth() + around.left() + around.right(),
        StartHeight);
}

/// A second click on the same head turns the order round. The selected locos stay selected, and the current one current.
void ImportWindow::sortBy(int column)
{
    const Command command; // rows may not move under a picker that changes one of them
    if (!command.ok()) {
        grid->horizontalHeader()->setSortIndicator(sortColumn, sortOrder);
        return;
    }
    sortOrder = column == sortColumn && sortOrder == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    sortColumn = column;
    struct Row {
        DownloadedLoco loco;
        bool selected;
        bool current;
    };
    std::vector<Row> rows;
    rows.reserve(static_cast<size_t>(grid->rowCount()));
    for (int row = 0; row < grid->rowCount(); ++row)
        rows.push_back({locos.at(static_cast<size_t>(row)), grid->selectionModel()->isRowSelected(row),
            row == grid->currentRow()});
    std::ranges::stable_sort(rows, [this](const Row &one, const Row &other) {
        const Row &first = sortOrder == Qt::AscendingOrder ? one : other;
        const Row &second = sortOrder == Qt::AscendingOrder ? other : one;
        return SortKey(first.loco, sortColumn) < SortKey(second.loco, sortColumn);
    });
    const int currentColumn = grid->currentColumn();
    grid->clearSelection();
    for (int row = 0; row < grid->rowCount(); ++row) {
        const auto &[loco, selected, current] = rows.at(static_cast<size_t>(row));
        locos.at(static_cast<size_t>(row)) = loco;
        fillRow(row);
        if (selected)
            grid->selectionModel()->select(
                grid->model()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        if (current)
            grid->selectionModel()->setCurrentIndex(
                grid->model()->index(row, currentColumn), QItemSelectionModel::NoUpdate);
    }
    grid->horizontalHeader()->setSortIndicator(sortColumn, sortOrder);
    filterRows();
}

void ImportWindow::actOn(int row, int column)
{
    const Command command;
    if (!command.ok())
        return;
    if (column == NameColumn) {
        editName(row);
    } else if (column == SymbolColumn) {
        pickSymbol(row);
    } else if (column >= FirstFunctionColumn) {
        int &mode = locos.at(static_cast<size_t>(row)).modes.at(static_cast<size_t>(column - FirstFunctionColumn));
        mode = mode == 1 ? 0 : 1;
        fillRow(row);
    }
}

void ImportWindow::editName(int row)
{
    grid->setEditTriggers(QAbstractItemView::AllEditTriggers);
    grid->editItem(grid->item(row, NameColumn));
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
}

void ImportWindow::nameEdited(QTableWidgetItem *item)
{
    if (filling || item->column() != NameColumn)
        return;
    locos.at(static_cast<size_t>(item->row())).name = AdaptName(item->text()).left(NameLength);
    fillName(item->row());
}

void ImportWindow::pickSymbol(int row)
{
    const int chosen = PickSymbol(SymbolKind::Loco, locos.at(static_cast<size_t>(row)).locoSymbol);
    if (chosen == NothingChosen)
        return;
    locos.at(static_cast<size_t>(row)).locoSymbol = chosen;
    fillRow(row);
}

void ImportWindow::filterRows()
{
    const QString wanted = filterTxt->text().trimmed();
    for (int row = 0; row < grid->rowCount(); ++row) {
        const DownloadedLoco &loco = locos.at(static_cast<size_t>(row));
        const bool fits = QString::number(loco.address).contains(wanted)
            || loco.name.contains(wanted, Qt::CaseInsensitive)
            || loco.stationName.contains(wanted, Qt::CaseInsensitive)
            || SymbolHasWord(SymbolKind::Loco, loco.locoSymbol, wanted);
        grid->setRowHidden(row, !fits);
    }
    showCount();
}

void ImportWindow::showCount()
{
    QString text = LocoCount(locos.size());
    const size_t chosen = chosenRows().size();
    if (chosen != locos.size())
        text += QStringLiteral(", davon %1 zum Senden und Sichern gewählt").arg(chosen);
    if (unusable > 0)
        text += QStringLiteral("; %1 mit Adressen außerhalb 1 .. 9999 weggelassen").arg(unusable);
    countLbl->setText(text);
}

/// The selected rows; without a selection all that the filter shows.
std::vector<int> ImportWindow::chosenRows() const
{
    std::vector<int> selected;
    std::vector<int> shown;
    for (int row = 0; row < grid->rowCount(); ++row) {
        if (grid->isRowHidden(row))
            continue;
        shown.push_back(row);
        if (grid->selectionModel()->isRowSelected(row))
            selected.push_back(row);
    }
    return selected.empty() ? shown : selected;
}

std::vector<DownloadedLoco> ImportWindow::chosenLocos() const
{
    std::vector<DownloadedLoco> chosen;
    for (const int row : chosenRows())
        chosen.push_back(locos.at(static_cast<size_t>(row)));
    return chosen;
}

void ImportWindow::send()
{
    const CommandOn command([this] { return chosenLocos(); });
    if (command.ok() && !command.shown.empty() && command.mayWrite())
        SendLocos(command.shown, [&command](const BoxText &question) { return command.confirmed(question, false); });
    refreshMarks();
}

void ImportWindow::save()
{
    const CommandOn command([this] { return chosenLocos(); });
    if (!command.ok() || command.shown.empty())
        return;
    const QString name = TheDesktop().saveFileName(
        TheBranding().saveDialogTitle, QStringLiteral("*.dds"), DatedName(QStringLiteral("Lokdaten")));
    if (name.isEmpty())
        return;
    QByteArray file;
    for (const DownloadedLoco &loco : command.shown)
        file += PackRecord({RecordKind::Loco, loco.address}, RecordOfLoco(loco));
    if (!ReplaceFile(name, file))
        ReportFileUnwritable(name);
    else
        NoteRecentFile(name);
}

void FetchStationLocos()
{
    const Command command;
    if (!command.ok() || !PortReady())
        return;
    const Download download = DownloadLocos();
    WaitSeconds(StandardDelaySeconds);
    const bool nothingToShow = download.status != 0 && download.locos.empty();
    if (nothingToShow || WaitsMustEnd())
        return;
    if (!importWindow)
        importWindow = std::make_unique<ImportWindow>();
    importWindow->load(download);
}

void ResetImportWindow()
{
    importWindow.reset();
}

} // namespace hr::ui
