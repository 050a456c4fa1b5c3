#include "ui/import/import_window.h"

#include "handheld/backup/dds_file.h"
#include "handheld/backup/kept_state.h"
#include "handheld/discovery.h"
#include "link/branding.h"
#include "link/open_port.h"
#include "link/text_encoding.h"
#include "platform/files.h"
#include "platform/run_control.h"
#include "ui/build_controls.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/grid.h"
#include "ui/pickers.h"
#include "ui/picture_cache.h"
#include "ui/progress.h"
#include "ui/shown_record.h"

#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace
{

enum Column { AddressColumn, NameColumn, SymbolColumn, FirstFunctionColumn };
constexpr int ColumnCount = FirstFunctionColumn + FunctionCount;
constexpr int AddressWidth = 52;
constexpr int NameWidth = 210;
constexpr int SymbolWidthPixels = 64;
constexpr int FunctionWidth = 30;
constexpr int RowHeight = 24;
constexpr QSize StartSize(900, 520);

std::unique_ptr<ImportWindow> importWindow;

QString LocoCount(size_t count)
{
    return QString::number(count) + (count == 1 ? QStringLiteral(" Lok") : QStringLiteral(" Loks"));
}

/// Finds the locos whose place in the handheld is taken. False when that was broken off.
bool FindTaken(const std::vector<DownloadedLoco> &locos, std::vector<bool> &taken)
{
    const StoppableJob job;
    const Progress progress(QStringLiteral("Prüfe Lok "));
    for (const DownloadedLoco &loco : locos) {
        TheFrontend().setProgressText(QStringLiteral("Prüfe Lok ") + QString::number(loco.address));
        int status = 0;
        taken.push_back(LocoRecordIsUsed(loco.address, status));
        if (status != 0 || StoppableJob::stopRequested())
            return false;
    }
    return true;
}

bool MayOverwrite(const std::vector<DownloadedLoco> &locos, std::vector<bool> &taken)
{
    if (!FindTaken(locos, taken))
        return false;
    const auto count = std::count(taken.begin(), taken.end(), true);
    if (count == 0)
        return true;
    const QString text = QStringLiteral("Von %1 sind %2 im Handregler schon gespeichert und werden überschrieben\r"
                                        "(ihre Funktionssymbole bleiben). Sollen die Loks gesendet werden?")
                             .arg(LocoCount(locos.size()))
                             .arg(count);
    return TheFrontend().askYesNo({text, QStringLiteral("Lokdaten senden"), BoxIcon::Information}, false);
}

/// Writes one loco. The station knows no function symbols: those of a record that is overwritten are kept.
int WriteLoco(const DownloadedLoco &loco, bool taken)
{
    LocoRecord record = RecordOfLoco(loco);
    if (taken) {
        if (const int status = ReadLocoRecord(loco.address); status != 0)
            return status;
        record.symbols = FktSymbol;
    }
    SetCurrentLocoRecord(record);
    return WriteLocoRecord(loco.address);
}

/// Number of records written; stops at the first failure, at the user's wish, and when port or program end.
size_t WriteLocos(const std::vector<DownloadedLoco> &locos, const std::vector<bool> &taken)
{
    const StoppableJob job;
    const Progress progress(QStringLiteral("Sende Lok "));
    size_t written = 0;
    while (written < locos.size() && !StoppableJob::stopRequested()) {
        const DownloadedLoco &loco = locos.at(written);
        TheFrontend().setProgressText(QStringLiteral("Sende Lok ") + QString::number(loco.address));
        if (WriteLoco(loco, taken.at(written)) != 0)
            break;
        ++written;
    }
    return written;
}

void ReportSent(const std::vector<DownloadedLoco> &locos, size_t written)
{
    QString text = QStringLiteral("%1 in den Handregler geschrieben.").arg(LocoCount(written));
    if (written < locos.size()) {
        text += QStringLiteral("\rNicht oder nicht sicher geschrieben ab Adresse %1: %2.")
                    .arg(locos.at(written).address)
                    .arg(LocoCount(locos.size() - written));
    }
    const BoxIcon icon = written < locos.size() ? BoxIcon::Critical : BoxIcon::Information;
    TheFrontend().showBox({text, QStringLiteral("Lokdaten senden"), icon});
}

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

void ImportWindow::load()
{
    grid->setRowCount(0); // before the locos change: every row shows one
    locos = DownloadedLocos;
    unusable = UnusableLocos;
    filterTxt->clear();
    grid->setRowCount(static_cast<int>(locos.size()));
    for (int row = 0; row < grid->rowCount(); ++row)
        fillRow(row);
    filterRows();
    show();
    raise();
    activateWindow();
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
    const QPixmap hook = PictureOfFile(KonfPath(QStringLiteral("\\konf\\Haken.bmp")));
    fillName(row);
    filling = true;
    grid->setText(row, AddressColumn, QString::number(loco.address));
    const bool known = loco.locoSymbol < LokSymbolCount;
    grid->setText(row, SymbolColumn, known ? QString() : QString::number(loco.locoSymbol));
    grid->setPicture(
        row, SymbolColumn, known ? PictureOfFile(PicturePath(SymbolKind::Loco, loco.locoSymbol, 0)) : QPixmap());
    for (size_t f = 0; f < FunctionCount; ++f)
        grid->setPicture(row, FirstFunctionColumn + static_cast<int>(f), loco.modes.at(f) == 1 ? hook : QPixmap());
    filling = false;
}

void ImportWindow::actOn(int row, int column)
{
    const BusyScope busy;
    if (!busy.ok())
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

void ImportWindow::send()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    std::vector<DownloadedLoco> chosen;
    for (const int row : chosenRows())
        chosen.push_back(locos.at(static_cast<size_t>(row)));
    if (chosen.empty() || !HandheldConnected())
        return;
    const ShownRecord shown;
    const KeptState kept;
    std::vector<bool> taken;
    if (MayOverwrite(chosen, taken))
        ReportSent(chosen, WriteLocos(chosen, taken));
}

void ImportWindow::save()
{
    const BusyScope busy;
    if (!busy.ok())
        return;
    const std::vector<int> rows = chosenRows();
    if (rows.empty())
        return;
    const QString name = TheFrontend().saveFileName(TheBranding().saveDialogTitle, QStringLiteral("*.dds"));
    if (name.isEmpty())
        return;
    QByteArray file;
    for (const int row : rows) {
        const DownloadedLoco &loco = locos.at(static_cast<size_t>(row));
        file += PackLoco(loco.address, RecordOfLoco(loco));
    }
    if (!ReplaceFile(name, file)) {
        TheFrontend().showBox(
            {QStringLiteral("Die Datei %1 kann nicht geschrieben werden!").arg(QDir::toNativeSeparators(name)),
                QStringLiteral("Fehler!"), BoxIcon::Critical});
    }
}

void ImportWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        hide();
    else
        QWidget::keyPressEvent(event);
}

void FetchStationLocos()
{
    const BusyScope busy;
    if (!busy.ok() || !PortReady())
        return;
    const int status = DownloadLocos();
    WaitSeconds(StandardDelaySeconds);
    const bool nothingToShow = status != 0 && DownloadedLocos.empty();
    if (nothingToShow || WaitsMustEnd())
        return;
    if (!importWindow)
        importWindow = std::make_unique<ImportWindow>();
    importWindow->load();
}

void ResetImportWindow()
{
    importWindow.reset();
}
