#include "ui/import/import_window.h"

#include "handheld/backup/dds_file.h"
#include "jobs/report.h"
#include "jobs/send.h"
#include "link/text_encoding.h"
#include "platform/files.h"
#include "program/branding.h"
#include "ui/common/command.h"
#include "ui/common/connection.h"
#include "ui/common/pickers.h"
#include "ui/common/progress.h"
#include "ui/common/symbol_pictures.h"
#include "ui/common/windows.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

namespace
{

enum Column { AddressColumn, NameColumn, SymbolColumn, FirstFunctionColumn };
constexpr int ColumnCount = FirstFunctionColumn + FunctionCount;
constexpr int AddressWidth = 52;
constexpr int NameWidth = 210;
constexpr int SymbolWidthPixels = 68;
constexpr int FunctionWidth = 30;
constexpr int RowHeight = 24;
constexpr QSize StartSize(900, 520);

std::unique_ptr<ImportWindow> importWindow;

} // namespace

ImportWindow::ImportWindow()
    : grid(new Grid(0, ColumnCount, this))
    , filterTxt(NamedField(QStringLiteral("FilterTxt"), QStringLiteral("Filter:"), this))
    , countLbl(NamedLabel(QStringLiteral("AnzahlLbl"), QString(), this))
{
    setObjectName(QStringLiteral("LokImportWin"));
    setWindowTitle(TheBranding().importTitle);
    buildGrid();
    buildLayout();
    resize(StartSize);
    connect(filterTxt, &QLineEdit::textChanged, this, &ImportWindow::filterRows);
    connect(grid, &QTableWidget::itemChanged, this, &ImportWindow::nameEdited);
    connect(grid, &QTableWidget::itemSelectionChanged, this, &ImportWindow::showCount);
    connect(grid, &Grid::cellDoubleActed, this, &ImportWindow::actOn);
    connect(grid, &Grid::inputAsked, this, &ImportWindow::actOn);
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
    grid->verticalHeader()->setDefaultSectionSize(RowHeight);
    for (int column = FirstFunctionColumn; column < ColumnCount; ++column)
        grid->setColumnWidth(column, FunctionWidth);
    grid->setColumnWidth(AddressColumn, AddressWidth);
    grid->setColumnWidth(NameColumn, NameWidth);
    grid->setColumnWidth(SymbolColumn, SymbolWidthPixels);
}

void ImportWindow::buildLayout()
{
    auto *filterLabel = NamedLabel(QStringLiteral("FilterLbl"), QStringLiteral("Filter:"), this);
    filterLabel->setBuddy(filterTxt);
    filterTxt->setPlaceholderText(QStringLiteral("Adresse oder Name"));
    filterTxt->setClearButtonEnabled(true);
    auto *filterRow = new QHBoxLayout;
    filterRow->addWidget(filterLabel);
    filterRow->addWidget(filterTxt, 1);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(countLbl);
    buttonRow->addStretch();
    const auto addButton = [&](const char *name, const char *caption, auto command) {
        auto *button = NamedButton(QString::fromUtf8(name), QString::fromUtf8(caption), this);
        connect(button, &QPushButton::clicked, this, command);
        buttonRow->addWidget(button);
    };
    addButton("SendenBut", "Senden", &ImportWindow::send);
    addButton("SichernBut", "Sichern", &ImportWindow::save);
    addButton("SchliessenBut", "Schließen", &QWidget::hide);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(filterRow);
    layout->addWidget(grid);
    layout->addLayout(buttonRow);
    setTabOrder(filterTxt, grid);
}

void ImportWindow::load(const Download &download)
{
    grid->setRowCount(0); // before the locos change: every row shows one
    locos = download.locos;
    unusable = download.unusable;
    filterTxt->clear();
    grid->setRowCount(static_cast<int>(locos.size()));
    for (int row = 0; row < grid->rowCount(); ++row)
        fillRow(row);
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
    filling = true;
    grid->setText(row, AddressColumn, QString::number(loco.address));
    const bool known = loco.locoSymbol < LokSymbolCount;
    grid->setText(row, SymbolColumn, known ? QString() : QString::number(loco.locoSymbol));
    grid->setPicture(row, SymbolColumn, known ? SymbolPicture(SymbolKind::Loco, loco.locoSymbol, 0) : QPixmap());
    for (size_t f = 0; f < FunctionCount; ++f)
        grid->setPicture(row, FirstFunctionColumn + static_cast<int>(f), loco.modes.at(f) == 1 ? hook : QPixmap());
    filling = false;
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
            || loco.stationName.contains(wanted, Qt::CaseInsensitive);
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
    if (command.ok() && !command.shown.empty() && command.connected())
        SendLocos(command.shown, [&command](const BoxText &question) { return command.confirmed(question, false); });
}

void ImportWindow::save()
{
    const CommandOn command([this] { return chosenLocos(); });
    if (!command.ok() || command.shown.empty())
        return;
    const QString name = TheWindows().saveFileName(
        TheBranding().saveDialogTitle, QStringLiteral("*.dds"), DatedName(QStringLiteral("Lokdaten")));
    if (name.isEmpty())
        return;
    QByteArray file;
    for (const DownloadedLoco &loco : command.shown)
        file += PackRecord({KindLoco, loco.address}, RecordOfLoco(loco));
    if (!ReplaceFile(name, file))
        ReportFileUnwritable(name);
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
