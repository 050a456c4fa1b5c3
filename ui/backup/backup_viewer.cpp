#include "ui/backup/backup_viewer.h"

#include "jobs/report.h"
#include "platform/files.h"
#include "program/recent_files.h"
#include "ui/backup/table_print.h"
#include "ui/common/command.h"
#include "ui/common/desktop.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/picture_delegate.h"
#include "ui/widgets/window_keys.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

#include <memory>

namespace hr::ui
{

/// Address or name contain the filter's text, or a word of the loco symbol begins with it.
class LocoFilter : public QSortFilterProxyModel
{
public:
    LocoFilter(const BackupTable *all, QObject *parent) : QSortFilterProxyModel(parent), table(all) { }

    void setWanted(const QString &text)
    {
        wanted = text;
        setFilterFixedString(text);
    }

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override
    {
        return QSortFilterProxyModel::filterAcceptsRow(row, parent)
            || SymbolHasWord(SymbolKind::Loco, table->loco(row).record.locoSymbol, wanted);
    }

private:
    const BackupTable *table;
    QString wanted;
};

namespace
{

constexpr int RowHeight = 24;
constexpr int RowMargin = 6;
constexpr int FunctionWidth = 32;
constexpr int HeadMargin = 12;
constexpr int PictureColumnWidth = 68;
constexpr int NameCharacters = 24;
constexpr int CaptionMargin = 28;     // room for the sort arrow
constexpr QSize StartSize(1240, 620); // all columns

/// The text after the last backslash; all of it where there is none.
QString WithoutFolder(const QString &fileName)
{
    const QString native = QDir::toNativeSeparators(fileName);
    return native.mid(native.lastIndexOf(u'\\') + 1);
}

QString WindowTitle(const QString &fileName)
{
    return QStringLiteral("Lokdaten aus dem File: ") + WithoutFolder(fileName);
}

/// A kind's name and count, only its name for the three tables.
QString KindSummary(RecordKind kind, size_t count)
{
    const QString &name = RowOf(kind).plural;
    return IsTableKind(kind) && count == 1 ? name : QStringLiteral("%1: %2").arg(name).arg(count);
}

std::unique_ptr<BackupViewer> viewer;

} // namespace

QString SummaryText(const DdsContent &content)
{
    std::map<RecordKind, size_t> counts;
    for (const DdsRecord &record : content.records)
        ++counts[record.id.kind];
    QStringList others;
    for (const auto &[kind, count] : counts) {
        if (kind != RecordKind::Loco)
            others += KindSummary(kind, count);
    }
    const QString rest = others.isEmpty() ? QStringLiteral("nichts") : others.join(QStringLiteral(", "));
    const QString structure = content.fault
        ? QStringLiteral("beschädigt, gelesen wurde bis dahin. ") + FaultText(*content.fault)
        : QStringLiteral("in Ordnung");
    return QStringLiteral("Außerdem enthalten: ") + rest + QStringLiteral("\nAufbau der Datei: ") + structure;
}

BackupViewer::BackupViewer()
    : model(new BackupTable(this))
    , shown(new LocoFilter(model, this))
    , table(new QTableView(this))
    , filterTxt(NamedField(QStringLiteral("FilterTxt"), QStringLiteral("Filter:"), this))
    , countLbl(NamedLabel(QStringLiteral("AnzahlLbl"), QString(), this))
    , summaryLbl(NamedLabel(QStringLiteral("ZusammenfassungLbl"), QString(), this))
{
    setObjectName(QStringLiteral("DatenAnzeigeWin"));
    shown->setSourceModel(model);
    shown->setSortRole(BackupTable::SortRole);
    shown->setFilterRole(BackupTable::FilterRole);
    shown->setFilterKeyColumn(BackupTable::AddressColumn);
    shown->setFilterCaseSensitivity(Qt::CaseInsensitive);
    buildTable();
    buildLayout();
    addRecentFiles();
    resize(StartSize.boundedTo(screen()->availableSize()));
    connect(filterTxt, &QLineEdit::textChanged, this, &BackupViewer::filterChanged);
}

void BackupViewer::buildTable()
{
    table->setObjectName(QStringLiteral("LokDatenTab"));
    table->setAccessibleName(QStringLiteral("Lokdatensätze"));
    table->setModel(shown);
    table->setItemDelegate(new PictureDelegate(table));
    table->setSortingEnabled(true);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(qMax(RowHeight, table->fontMetrics().height() + RowMargin));
    QHeaderView *header = table->horizontalHeader();
    header->setHighlightSections(false);
    const QFontMetrics metrics = header->fontMetrics();
    const int functionWidth = qMax(FunctionWidth, metrics.horizontalAdvance(QStringLiteral("f24")) + HeadMargin);
    header->setMinimumSectionSize(functionWidth);
    const auto captionWidth = [&](int column) {
        return metrics.horizontalAdvance(ColumnCaption(column)) + CaptionMargin;
    };
    table->setColumnWidth(BackupTable::AddressColumn, captionWidth(BackupTable::AddressColumn));
    table->setColumnWidth(BackupTable::NameColumn, table->fontMetrics().averageCharWidth() * NameCharacters);
    table->setColumnWidth(
        BackupTable::SymbolColumn, qMax(PictureColumnWidth, captionWidth(BackupTable::SymbolColumn)));
    table->setColumnWidth(BackupTable::MultiUniColumn, captionWidth(BackupTable::MultiUniColumn));
    for (int f = 0; f < FunctionCount; ++f)
        table->setColumnWidth(BackupTable::FirstFunctionColumn + f, functionWidth);
}

QWidget *BackupViewer::buildFilterRow()
{
    auto *area = new QWidget(this);
    auto *label =
        NamedLabel(QStringLiteral("FilterLbl"), QStringLiteral("Filter (Adresse, Name oder Symbol):"), area);
    label->setBuddy(filterTxt);
    filterTxt->setClearButtonEnabled(true);
    auto *layout = new QHBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(filterTxt, 1);
    layout->addWidget(countLbl);
    return area;
}

void BackupViewer::buildLayout()
{
    auto *csvBut = NamedButton(QStringLiteral("CsvBut"), QStringLiteral("Als CSV speichern"), this);
    auto *pdfBut = NamedButton(QStringLiteral("PdfBut"), QStringLiteral("Als PDF speichern"), this);
    auto *printBut = NamedButton(QStringLiteral("DruckenBut"), QStringLiteral("Drucken"), this);
    auto *compareBut =
        NamedButton(QStringLiteral("VergleichenBut"), QStringLiteral("Mit dem Handregler vergleichen…"), this);
    auto *okButton = NamedButton(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    auto *buttonRow = new QHBoxLayout;
    for (QPushButton *button : {csvBut, pdfBut, printBut})
        buttonRow->addWidget(button);
    buttonRow->addStretch();
    buttonRow->addWidget(compareBut);
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    summaryLbl->setWordWrap(true);
    summaryLbl->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(buildFilterRow());
    layout->addWidget(table, 1);
    auto *legend = NamedLabel(QStringLiteral("LegendeLbl"),
        QStringLiteral("f0 .. f24: Symbol der eingeschalteten Funktion, T = Tastfunktion; "
                       "ident. Sym. = identisches Symbol für alle Funktionen"),
        this);
    legend->setWordWrap(true); // or the window could not be made narrower than this line
    layout->addWidget(legend);
    layout->addWidget(summaryLbl);
    layout->addLayout(buttonRow);
    setTabOrder(filterTxt, table);
    setTabOrder(table, csvBut);
    SearchIn(filterTxt, table);
    AltKey(filterTxt, Qt::Key_F);
    AltKey(table, Qt::Key_T);
    AltKey(csvBut, Qt::Key_C);
    AltKey(pdfBut, Qt::Key_P);
    AltKey(printBut, Qt::Key_D);
    AltKey(compareBut, Qt::Key_H);
    AltKey(okButton, Qt::Key_O);
    connect(csvBut, &QPushButton::clicked, this, &BackupViewer::exportCsv);
    connect(pdfBut, &QPushButton::clicked, this, &BackupViewer::exportPdf);
    connect(printBut, &QPushButton::clicked, this, &BackupViewer::print);
    connect(compareBut, &QPushButton::clicked, this, &BackupViewer::compare);
    connect(okButton, &QPushButton::clicked, this, &QWidget::hide);
    setDefaultButton(okButton);
}

void BackupViewer::load(const QString &fileName, const DdsContent &content)
{
    shownFile = fileName;
    setWindowTitle(WindowTitle(fileName));
    documentName = QFileInfo(fileName).completeBaseName(); // a printer to a file makes a file name of it
    model->setLocos(LocosIn(content));
    summaryLbl->setText(SummaryText(content));
    filterTxt->clear();
    table->sortByColumn(BackupTable::AddressColumn, Qt::AscendingOrder);
    filterChanged();
    present();
    filterTxt->setFocus();
}

void BackupViewer::addRecentFiles()
{
    setContextMenuPolicy(Qt::ActionsContextMenu);
    NamedAction(QStringLiteral("ZuletztAction"), QStringLiteral("Zuletzt geöffnet oder gesichert:"), {}, this, [] {
    })->setEnabled(false);
    for (qsizetype i = 0; i < MostRecentFiles; ++i) {
        const QString name = QStringLiteral("Zuletzt%1Action").arg(i);
        recentFiles.push_back(NamedAction(name, {}, {}, this, [i] {
            const Command command;
            const QStringList files = RecentFiles();
            if (command.ok() && i < files.size())
                OpenBackupViewer(files.at(i));
        }));
    }
}

void BackupViewer::showRecentFiles()
{
    const QStringList files = RecentFiles();
    for (size_t i = 0; i < recentFiles.size(); ++i) {
        const QString file = files.value(static_cast<qsizetype>(i));
        recentFiles.at(i)->setVisible(!file.isEmpty());
        recentFiles.at(i)->setText(QDir::toNativeSeparators(file).replace(u'&', QStringLiteral("&&")));
    }
}

void BackupViewer::filterChanged()
{
    shown->setWanted(filterTxt->text().trimmed());
    if (model->rowCount() == 0)
        countLbl->setText(QStringLiteral("enthält keine Lokdatensätze"));
    else
        countLbl->setText(QStringLiteral("%1 von %2 Lokdatensätzen").arg(shown->rowCount()).arg(model->rowCount()));
}

std::vector<RosterLoco> BackupViewer::shownLocos() const
{
    std::vector<RosterLoco> locos;
    for (int row = 0; row < shown->rowCount(); ++row)
        locos.push_back(model->loco(shown->mapToSource(shown->index(row, 0)).row()));
    return locos;
}

void BackupViewer::saveFile(const QString &filter, const QByteArray &bytes)
{
    const QString fileName =
        TheDesktop().saveFileName(QStringLiteral("Tabelle speichern"), filter, documentName + filter.mid(1));
    if (fileName.isEmpty())
        return;
    if (bytes.isEmpty() || !ReplaceFile(fileName, bytes)) {
        ReportFileUnwritable(fileName);
        return;
    }
    TheAsk().showBox({QStringLiteral("%1 gespeichert in %2.")
                          .arg(LocoCount(shownLocos().size()), QDir::toNativeSeparators(fileName)),
        QStringLiteral("Tabelle speichern"), BoxIcon::Information});
}

void BackupViewer::exportCsv()
{
    const Command command;
    if (command.ok())
        saveFile(QStringLiteral("*.csv"), CsvOf(shownLocos(), CsvFor::Spreadsheets));
}

void BackupViewer::exportPdf()
{
    const Command command;
    if (command.ok())
        saveFile(QStringLiteral("*.pdf"), PdfOf(windowTitle(), shownLocos()));
}

void BackupViewer::print()
{
    const Command command;
    if (!command.ok())
        return;
    QPrinter printer;
    printer.setPageOrientation(QPageLayout::Landscape);
    printer.setDocName(documentName);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowModality(Qt::ApplicationModal);
    WaitForDialog(dialog);
    if (dialog.result() == QDialog::Accepted && !PrintTable(printer, windowTitle(), shownLocos()))
        TheAsk().showBox({QStringLiteral("Die Tabelle kann nicht gedruckt werden!"), QStringLiteral("Fehler!"),
            BoxIcon::Critical});
}

void BackupViewer::compare()
{
    TheDesktop().compareWithHandheld(shownFile);
}

void OpenBackupViewer(const QString &fileName)
{
    if (!QFileInfo::exists(fileName)) {
        ForgetRecentFile(fileName);
        if (viewer)
            viewer->showRecentFiles();
        TheAsk().showBox({QStringLiteral("Die Datei %1 gibt es nicht!").arg(QDir::toNativeSeparators(fileName)),
            QStringLiteral("Fehler!"), BoxIcon::Critical});
        return;
    }
    const auto file = LoadDds(fileName);
    if (!file) {
        TheAsk().showBox(
            {QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(QDir::toNativeSeparators(fileName)),
                QStringLiteral("Fehler!"), BoxIcon::Critical});
        return;
    }
    if (!viewer)
        viewer = std::make_unique<BackupViewer>();
    NoteRecentFile(fileName);
    viewer->load(fileName, ReadDds(*file));
    viewer->showRecentFiles();
}

void ResetBackupViewer()
{
    viewer.reset();
}

} // namespace hr::ui
