#include "ui/compare/compare_window.h"

#include "jobs/journal.h"
#include "jobs/listed_step.h"
#include "jobs/report.h"
#include "jobs/restore.h"
#include "jobs/selection.h"
#include "platform/files.h"
#include "platform/text.h"
#include "roster/loco_files.h"
#include "shown/connection.h"
#include "ui/common/careful_job.h"
#include "ui/common/desktop.h"
#include "ui/common/symbol_pictures.h"
#include "ui/compare/change_table.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace hr::ui
{

/// Shows what differs, or all, as far as the text occurs in a row or is the beginning of a word of its symbol.
class ChangeFilter : public QSortFilterProxyModel
{
public:
    ChangeFilter(const ChangeTable *all, QObject *parent) : QSortFilterProxyModel(parent), table(all) { }

    void setWanted(const QString &text, bool differencesOnly)
    {
        wanted = text;
        onlyDifferences = differencesOnly;
        invalidateFilter();
    }

protected:
    /// Records in their own order, texts as in a register, pictures by their number.
    [[nodiscard]] bool lessThan(const QModelIndex &one, const QModelIndex &other) const override
    {
        const auto key = [this](const QModelIndex &index) {
            const bool byText = index.column() == ChangeTable::ChangeColumn
                || index.column() == ChangeTable::OldNameColumn || index.column() == ChangeTable::NewNameColumn
                || index.column() == ChangeTable::FieldsColumn;
            const QString text = byText ? index.data().toString() : QString();
            return std::pair(
                UpperLatin1(text).normalized(QString::NormalizationForm_D), table->change(index.row()).id);
        };
        return key(one) < key(other);
    }

    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        const RecordChange &change = table->change(row);
        if (onlyDifferences && change.change == Change::Unchanged)
            return false;
        for (int column = 0; column < ChangeTable::ColumnCount; ++column) {
            const QString text = table->index(row, column).data().toString();
            if (text.contains(wanted, Qt::CaseInsensitive))
                return true;
        }
        return symbolHasWord(change.present) || symbolHasWord(change.wanted);
    }

private:
    [[nodiscard]] bool symbolHasWord(const std::optional<RecordValue> &value) const
    {
        const auto *loco = value ? std::get_if<LocoRecord>(&*value) : nullptr;
        return loco != nullptr && SymbolHasWord(SymbolKind::Loco, loco->locoSymbol, wanted);
    }

    const ChangeTable *table;
    QString wanted;
    bool onlyDifferences = true;
};

namespace
{

constexpr int RowHeight = 24;
constexpr int RowMargin = 6;
constexpr int PictureWidth = 76;
constexpr QSize StartSize(1100, 620);

/// Space ticks the selected rows, in whatever column the current cell is.
class TickView : public QTableView
{
public:
    using QTableView::QTableView;
    std::function<void()> onSpace;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Space)
            onSpace();
        else
            QTableView::keyPressEvent(event);
    }
};

QString Native(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

BoxText Fault(const QString &text)
{
    return {text, QStringLiteral("Fehler!"), BoxIcon::Critical};
}

QString WriteTitle()
{
    return QStringLiteral("In den Handregler schreiben");
}

bool IsList(const QString &fileName)
{
    return HoldsLocos(fileName) && !fileName.endsWith(u".dds", Qt::CaseInsensitive);
}

std::optional<ComparedFile> BackupIn(const QString &fileName, const QByteArray &file)
{
    const DdsContent content = ReadDds(file);
    if (content.records.empty() && !content.fault) {
        TheAsk().showBox(Fault(QStringLiteral("Die Datei %1 enthält keine Datensätze!").arg(Native(fileName))));
        return {};
    }
    if (content.fault) {
        const QString rest = content.records.empty() ? QStringLiteral("Davor steht nichts, was zu brauchen ist.")
                                                     : QStringLiteral("Verglichen wird, was davor steht.");
        TheAsk().showBox(Fault(QStringLiteral("Die Datei %1 ist beschädigt.\r%2.\r%3")
                                   .arg(Native(fileName), FaultText(*content.fault), rest)));
    }
    ComparedFile compared{fileName, {}, RestorePlan(content.records).steps};
    for (const DdsRecord &record : content.records)
        compared.about += record.bytes;
    return compared.steps.empty() ? std::nullopt : std::optional(compared);
}

std::optional<ComparedFile> ListIn(const QString &fileName, const QByteArray &file)
{
    const LocoList list = LocosOfFile(fileName, file);
    if (!list.faults.empty()) {
        TheAsk().showBox(Fault(QStringLiteral("Die Datei %1 kann so nicht gebraucht werden:\r%2")
                                   .arg(Native(fileName), FaultsText(list.faults).replace(u'\n', u'\r'))));
        return {};
    }
    TellNotes(list);
    if (!NamesAccepted(list.locos))
        return {};
    ComparedFile compared{fileName, file, {}};
    for (const ListedLoco &loco : list.locos)
        compared.steps.push_back(ListedStep(loco));
    return compared;
}

} // namespace

QString ComparedFilter()
{
    return QStringLiteral("*.dds *.csv *.json *.xml");
}

std::optional<ComparedFile> LoadComparedFile(const QString &fileName)
{
    const auto file = LoadDds(fileName);
    if (!file) {
        TheAsk().showBox(Fault(QStringLiteral("Die Datei %1 kann nicht gelesen werden!").arg(Native(fileName))));
        return {};
    }
    return IsList(fileName) ? ListIn(fileName, *file) : BackupIn(fileName, *file);
}

CompareWindow::CompareWindow()
    : model(new ChangeTable(this))
    , shown(new ChangeFilter(model, this))
    , table(new TickView(this))
    , fileLbl(NamedLabel(QStringLiteral("DateiLbl"), QString(), this))
    , filterTxt(NamedField(QStringLiteral("FilterTxt"), QStringLiteral("Filter:"), this))
    , differencesChk(NamedCheck(QStringLiteral("UnterschiedeChk"), QStringLiteral("nur Unterschiede zeigen"), this))
    , countLbl(NamedLabel(QStringLiteral("AnzahlLbl"), QString(), this))
    , sidesLbl(NamedLabel(QStringLiteral("LegendeLbl"), QString(), this))
    , onlyChangesChk(
          NamedCheck(QStringLiteral("NurAenderungenChk"), QStringLiteral("nur Änderungen schreiben"), this))
    , verifyChk(NamedCheck(QStringLiteral("PruefenChk"), QStringLiteral("nach dem Schreiben prüfen"), this))
    , saveBeforeChk(NamedCheck(
          QStringLiteral("VorherSichernChk"), QStringLiteral("vorher sichern, was überschrieben wird"), this))
{
    setObjectName(QStringLiteral("VergleichWin"));
    shown->setSourceModel(model);
    for (QCheckBox *box : {differencesChk, onlyChangesChk, verifyChk, saveBeforeChk})
        box->setChecked(true);
    buildTable();
    buildLayout();
    addKeys();
    resize(StartSize.boundedTo(screen()->availableSize()));
    connect(filterTxt, &QLineEdit::textChanged, this, &CompareWindow::filterChanged);
    connect(differencesChk, &QCheckBox::toggled, this, &CompareWindow::filterChanged);
    connect(onlyChangesChk, &QCheckBox::toggled, this, &CompareWindow::showCount);
    connect(verifyChk, &QCheckBox::toggled, this, &CompareWindow::showCount);
    connect(model, &QAbstractItemModel::dataChanged, this, &CompareWindow::showCount);
}

void CompareWindow::buildTable()
{
    table->setObjectName(QStringLiteral("VergleichTab"));
    table->setAccessibleName(QStringLiteral("Unterschiede"));
    table->setModel(shown);
    table->setItemDelegate(new PictureDelegate(table));
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(qMax(RowHeight, table->fontMetrics().height() + RowMargin));
    QHeaderView *header = table->horizontalHeader();
    header->setHighlightSections(false);
    header->setStretchLastSection(true);
    header->setToolTip(QStringLiteral("Klick: nach dieser Spalte sortieren"));
    table->setSortingEnabled(true);
    table->sortByColumn(ChangeTable::RecordColumn, Qt::AscendingOrder);
    const int letter = table->fontMetrics().averageCharWidth();
    for (const auto &[column, letters] : {std::pair(ChangeTable::RecordColumn, 26), {ChangeTable::ChangeColumn, 31},
             {ChangeTable::OldNameColumn, 22}, {ChangeTable::NewNameColumn, 22}})
        table->setColumnWidth(column, letter * letters);
    for (const int column : {ChangeTable::OldPictureColumn, ChangeTable::NewPictureColumn})
        table->setColumnWidth(column, qMax(PictureWidth, header->sectionSizeHint(column)));
    static_cast<TickView *>(table)->onSpace = [this] { tickSelected(); };
}

QPushButton *CompareWindow::addButton(QHBoxLayout *row, const char *name, const char *caption, Qt::Key key)
{
    auto *button = NamedButton(QLatin1String(name), QString::fromUtf8(caption), this);
    AltKey(button, key);
    row->addWidget(button);
    return button;
}

QHBoxLayout *CompareWindow::buildFileRow()
{
    auto *row = new QHBoxLayout;
    fileLbl->setWordWrap(true);
    fileLbl->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(fileLbl, 1);
    handheldBut = addButton(row, "HandreglerBut", "Mit dem Handregler vergleichen", Qt::Key_H);
    secondFileBut = addButton(row, "ZweiteDateiBut", "Mit zweiter Datei vergleichen…", Qt::Key_Z);
    connect(handheldBut, &QPushButton::clicked, this, [this] {
        const Command command;
        if (command.ok())
            compareWithHandheld(command);
    });
    connect(secondFileBut, &QPushButton::clicked, this, &CompareWindow::askForSecondFile);
    return row;
}

QHBoxLayout *CompareWindow::buildFilterRow()
{
    auto *row = new QHBoxLayout;
    auto *label = NamedLabel(QStringLiteral("FilterLbl"), QStringLiteral("Filter:"), this);
    label->setBuddy(filterTxt);
    filterTxt->setPlaceholderText(QStringLiteral("Nummer, Name, Symbol oder Änderung"));
    filterTxt->setClearButtonEnabled(true);
    row->addWidget(label);
    row->addWidget(filterTxt, 1);
    row->addWidget(differencesChk);
    return row;
}

QHBoxLayout *CompareWindow::buildTickRow()
{
    auto *row = new QHBoxLayout;
    row->addWidget(countLbl, 1);
    countLbl->setWordWrap(true);
    allBut = addButton(row, "AlleBut", "Alle ankreuzen", Qt::Key_A);
    noneBut = addButton(row, "KeineBut", "Keine ankreuzen", Qt::Key_K);
    connect(allBut, &QPushButton::clicked, this, [this] { tickShown(true); });
    connect(noneBut, &QPushButton::clicked, this, [this] { tickShown(false); });
    return row;
}

QHBoxLayout *CompareWindow::buildButtonRow()
{
    auto *row = new QHBoxLayout;
    writeBut = addButton(row, "SchreibenBut", "In den Handregler schreiben", Qt::Key_S);
    csvBut = addButton(row, "CsvBut", "Als CSV speichern", Qt::Key_C);
    row->addStretch();
    closeBut = addButton(row, "SchliessenBut", "Schließen", Qt::Key_E);
    connect(writeBut, &QPushButton::clicked, this, &CompareWindow::write);
    connect(csvBut, &QPushButton::clicked, this, &CompareWindow::exportCsv);
    connect(closeBut, &QPushButton::clicked, this, &QWidget::hide);
    setDefaultButton(closeBut);
    return row;
}

void CompareWindow::buildLayout()
{
    sidesLbl->setWordWrap(true);
    auto *optionRow = new QHBoxLayout;
    for (QCheckBox *box : {onlyChangesChk, verifyChk, saveBeforeChk})
        optionRow->addWidget(box);
    optionRow->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(buildFileRow());
    layout->addLayout(buildFilterRow());
    layout->addWidget(table, 1);
    layout->addWidget(sidesLbl);
    layout->addLayout(buildTickRow());
    layout->addLayout(optionRow);
    layout->addLayout(buildButtonRow());
}

void CompareWindow::addKeys()
{
    TabInOrder({handheldBut, secondFileBut, filterTxt, differencesChk, table, allBut, noneBut, onlyChangesChk,
        verifyChk, saveBeforeChk, writeBut, csvBut, closeBut});
    SearchIn(filterTxt, table);
    AltKey(filterTxt, Qt::Key_F);
    AltKey(table, Qt::Key_T);
    AltKey(differencesChk, Qt::Key_U);
    AltKey(onlyChangesChk, Qt::Key_N);
    AltKey(verifyChk, Qt::Key_P);
    AltKey(saveBeforeChk, Qt::Key_V);
}

void CompareWindow::open(const ComparedFile &file)
{
    first = file;
    second.reset();
    setWindowTitle(QStringLiteral("Vergleich: ") + QFileInfo(file.name).fileName());
    filterTxt->clear();
    showChanges({});
    present();
    handheldBut->setFocus();
}

void CompareWindow::compareWithHandheld(const Command &command)
{
    if (!command.connected())
        return;
    const Look look = LookAt(first.steps);
    second.reset();
    sidesLbl->setText(QStringLiteral("alt: im Handregler; neu: in der Datei"));
    showChanges(look.changes);
    if (EndedEarly(look.end))
        ShowEndBox(look.end, EndText(look.end, QStringLiteral("Der Vergleich wurde angehalten.")));
    table->setFocus();
}

void CompareWindow::compareWithFile(const ComparedFile &other)
{
    second = other;
    sidesLbl->setText(QStringLiteral("alt: in der Datei oben; neu: in %1").arg(Native(other.name)));
    showChanges(Differences(first.steps, other.steps));
    table->setFocus();
}

void CompareWindow::askForSecondFile()
{
    const Command command;
    if (!command.ok())
        return;
    const QString fileName = TheDesktop().openFileName(QStringLiteral("Zweite Datensicherung"), ComparedFilter());
    const auto other = fileName.isEmpty() ? std::nullopt : LoadComparedFile(fileName);
    if (other)
        compareWithFile(*other);
}

void CompareWindow::showChanges(std::vector<RecordChange> changes)
{
    std::set<RecordId> ids;
    for (const Step &step : offered().steps)
        ids.insert(step.id);
    const bool any = !changes.empty();
    fileLbl->setText(QStringLiteral("%1\n%2.").arg(Native(first.name), RecordCount(first.steps.size()))
        + (any ? QString() : QStringLiteral(" Womit vergleichen?")));
    model->setChanges(std::move(changes), ids);
    csvBut->setEnabled(any);
    sidesLbl->setVisible(any);
    filterChanged();
}

void CompareWindow::filterChanged()
{
    shown->setWanted(filterTxt->text().trimmed(), differencesChk->isChecked());
    showCount();
}

/// How many records are shown and chosen, and what writing them costs.
void CompareWindow::showCount()
{
    if (model->rowCount() == 0) {
        countLbl->clear();
        writeBut->setEnabled(false);
        return;
    }
    QString text = QStringLiteral("Gezeigt: %1 von %2").arg(shown->rowCount()).arg(model->rowCount());
    const std::vector<RecordChange> written =
        ToBeWritten(chosen(), onlyChangesChk->isChecked() && !second ? Written::Changes : Written::All);
    // A page that an earlier job left half written is made good by the same button.
    writeBut->setEnabled(!written.empty() || PagesWait(HandheldName(ShownHandheld())));
    if (written.empty())
        text += shown->rowCount() == 0 && filterTxt->text().isEmpty() ? QStringLiteral(". Kein Unterschied.")
                                                                      : QStringLiteral(". Zu schreiben: nichts.");
    else
        text += QStringLiteral(". Zu schreiben: %1 auf %2. %3.")
                    .arg(RecordCount(written.size()), PageCount(PagesOf(written)),
                        DurationText(SecondsOf(written, verifyChk->isChecked())));
    countLbl->setText(text);
}

std::vector<int> CompareWindow::shownRows() const
{
    std::vector<int> rows;
    for (int row = 0; row < shown->rowCount(); ++row)
        rows.push_back(shown->mapToSource(shown->index(row, 0)).row());
    return rows;
}

void CompareWindow::tickShown(bool ticked)
{
    for (const int row : shownRows())
        model->setTicked(row, ticked);
}

/// Ticks all selected rows when one of them is not ticked, else unticks them.
void CompareWindow::tickSelected()
{
    std::vector<int> rows;
    bool all = true;
    for (const QModelIndex &index : table->selectionModel()->selectedRows()) {
        rows.push_back(shown->mapToSource(index).row());
        const bool can = (index.flags() & Qt::ItemIsUserCheckable) != 0;
        all = all && (!can || model->isTicked(rows.back()));
    }
    for (const int row : rows)
        model->setTicked(row, !all);
}

std::vector<RecordChange> CompareWindow::chosen() const
{
    std::vector<RecordChange> changes;
    for (const int row : shownRows()) {
        if (model->isTicked(row))
            changes.push_back(model->change(row));
    }
    return changes;
}

std::vector<Step> CompareWindow::chosenSteps() const
{
    std::set<RecordId> ids;
    for (const RecordChange &change : chosen())
        ids.insert(change.id);
    std::vector<Step> steps = offered().steps;
    std::erase_if(steps, [&ids](const Step &step) { return !ids.contains(step.id); });
    return steps;
}

WriteOptions CompareWindow::options() const
{
    return {!onlyChangesChk->isChecked(), verifyChk->isChecked(), saveBeforeChk->isChecked()};
}

/// What was ticked and shown at the click. The list then says what the handheld holds.
void CompareWindow::write()
{
    const CommandOn command([this] {
        CarefulJob job;
        job.command = QStringLiteral("Vergleich mit ") + Native(offered().name);
        job.fileName = offered().name;
        job.options = options();
        job.title = WriteTitle();
        job.about = QByteArrayLiteral("fenster") + offered().about;
        job.steps = chosenSteps();
        return job;
    });
    if (!command.ok() || !command.connected())
        return;
    const CarefulJob &job = command.shown;
    if (job.steps.empty() && !PagesWait(HandheldName(ShownHandheld()))) {
        TheAsk().showBox(
            {QStringLiteral("Es ist nichts zum Schreiben angekreuzt."), WriteTitle(), BoxIcon::Information});
        return;
    }
    const bool withHandheld = !second;
    const CarefulEnd end = RunFromWindow(command, job);
    if (!withHandheld)
        return; // the files are as they were
    model->update(AfterWriting(end.changes, end.report));
    filterChanged();
}

QByteArray CompareWindow::csv() const
{
    QString text(QChar::ByteOrderMark);
    text += QStringLiteral("Datensatz;Änderung;Name alt;Name neu;Was anders wird\r\n");
    for (const int row : shownRows()) {
        QStringList cells;
        for (const int column : {ChangeTable::RecordColumn, ChangeTable::ChangeColumn, ChangeTable::OldNameColumn,
                 ChangeTable::NewNameColumn, ChangeTable::FieldsColumn})
            cells += CsvCell(model->index(row, column).data().toString());
        text += cells.join(u';') + QStringLiteral("\r\n");
    }
    return text.toUtf8();
}

void CompareWindow::exportCsv()
{
    const CommandOn command([this] { return csv(); });
    if (!command.ok())
        return;
    const QString title = QStringLiteral("Vergleich speichern");
    const QString fileName = TheDesktop().saveFileName(
        title, QStringLiteral("*.csv"), QFileInfo(first.name).completeBaseName() + QStringLiteral(" Vergleich.csv"));
    if (fileName.isEmpty())
        return;
    if (ReplaceFile(fileName, command.shown))
        TheAsk().showBox({QStringLiteral("Gespeichert in %1.").arg(Native(fileName)), title, BoxIcon::Information});
    else
        ReportFileUnwritable(fileName);
}

} // namespace hr::ui
