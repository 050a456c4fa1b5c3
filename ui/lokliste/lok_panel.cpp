#include "ui/lokliste/lok_panel.h"

#include "handheld/known_locos.h"
#include "handheld/text_encoding.h"
#include "jobs/journal.h"
#include "jobs/report.h"
#include "link/open_link.h"
#include "platform/port_name.h"
#include "platform/world.h"
#include "roster/kept_locos.h"
#include "shown/connection.h"
#include "ui/common/symbol_pictures.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/window_keys.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace hr::ui
{

/// Address or name contain the text, or a word of the symbol begins with it.
class LokPanelFilter : public QSortFilterProxyModel
{
public:
    LokPanelFilter(const Lokliste &lokliste, QObject *parent) : QSortFilterProxyModel(parent), list(lokliste)
    {
        setSortRole(LokTable::SortRole);
    }

    void setWanted(const QString &text)
    {
        wanted = text;
        invalidateFilter();
    }

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        return HasText(list.at(row), wanted);
    }

    /// The state as a mark; in words for those who point at it.
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::CheckStateRole)
            return {};
        if (index.column() != LokTable::StateColumn || role != Qt::DisplayRole)
            return QSortFilterProxyModel::data(index, role);
        return list.state(mapToSource(index).row()) == LokState::InHandheld ? QStringLiteral("✓")
                                                                            : QStringLiteral("?");
    }

    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (section == LokTable::StateColumn && role == Qt::DisplayRole)
            return QString();
        return QSortFilterProxyModel::headerData(section, orientation, role);
    }

private:
    const Lokliste &list;
    QString wanted;
};

namespace
{

constexpr int RowHeight = 24;
constexpr int RowMargin = 6;
constexpr int PictureWidth = 60;
constexpr int NameLetters = 22;
constexpr int CellRoom = 12;

/// Enter chooses, as a double-click does.
class ChoosingView : public QTableView
{
public:
    using QTableView::QTableView;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            Q_EMIT doubleClicked(currentIndex());
        else
            QTableView::keyPressEvent(event);
    }
};

/// The simulated handheld is never the real one, whatever it says of itself.
QString PresentHandheld()
{
    const QString name = HandheldName(ShownHandheld()).trimmed();
    return IsDemoPort(TheLink().PortNumber.text) && !name.isEmpty() ? QStringLiteral("Demo ") + name : name;
}

} // namespace

LokPanel::LokPanel(QWidget *parent)
    : QWidget(parent)
    , model(new LokTable(list, this))
    , shown(new LokPanelFilter(list, this))
    , table(new ChoosingView(this))
    , filterTxt(NamedField(QStringLiteral("LoksFilterTxt"), QStringLiteral("Loks filtern:"), this))
    , standLbl(NamedLabel(QStringLiteral("StandLbl"), QString(), this))
{
    setObjectName(QStringLiteral("LoksPanel"));
    shown->setSourceModel(model);
    buildTable();
    filterTxt->setPlaceholderText(QStringLiteral("Adresse, Name oder Symbol"));
    filterTxt->setClearButtonEnabled(true);
    standLbl->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(filterTxt);
    layout->addWidget(table, 1);
    layout->addWidget(standLbl);
    connect(filterTxt, &QLineEdit::textChanged, this, [this](const QString &text) {
        static_cast<LokPanelFilter *>(shown)->setWanted(text.trimmed());
        showCount();
    });
    connect(filterTxt, &QLineEdit::returnPressed, this, [this] {
        if (shown->rowCount() > 0)
            choose(shown->index(0, 0));
    });
    connect(table, &QTableView::doubleClicked, this, &LokPanel::choose);
    connect(model, &LokTable::contentChanged, this, &LokPanel::showCount);
    showCount();
}

LokPanel::~LokPanel()
{
    keep();
}

void LokPanel::buildTable()
{
    table->setObjectName(QStringLiteral("LoksTab"));
    table->setAccessibleName(QStringLiteral("Loks im Handregler"));
    table->setModel(shown);
    table->setItemDelegate(new PictureDelegate(table));
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setShowGrid(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(qMax(RowHeight, table->fontMetrics().height() + RowMargin));
    for (int column = LokTable::MultiUniColumn; column < LokTable::StateColumn; ++column)
        table->setColumnHidden(column, true);
    QHeaderView *header = table->horizontalHeader();
    header->setHighlightSections(false);
    header->moveSection(header->visualIndex(LokTable::SymbolColumn), 1); // the picture before the name
    const QFontMetrics metrics = table->fontMetrics();
    table->setColumnWidth(LokTable::AddressColumn, metrics.horizontalAdvance(QStringLiteral("9999")) + 2 * CellRoom);
    table->setColumnWidth(
        LokTable::SymbolColumn, qMax(PictureWidth, header->sectionSizeHint(LokTable::SymbolColumn)));
    table->setColumnWidth(LokTable::NameColumn, metrics.averageCharWidth() * NameLetters);
    table->setColumnWidth(LokTable::StateColumn, metrics.horizontalAdvance(u'✓') + 2 * CellRoom);
    header->setSectionResizeMode(LokTable::NameColumn, QHeaderView::Stretch);
    table->sortByColumn(LokTable::AddressColumn, Qt::AscendingOrder);
    int width = 2 * table->frameWidth() + table->verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < LokTable::ColumnCount; ++column)
        width += table->columnWidth(column); // a hidden one has none
    table->setMinimumWidth(width);
}

void LokPanel::showConnection()
{
    const QString now = PresentHandheld();
    if (now.isEmpty() || now == handheld)
        return;
    keep();
    handheld = now;
    const KeptLocos kept = ReadKeptLocos(handheld);
    list.load(kept.locos, {});
    stand = kept.time;
    for (const int address : KnownAddresses())
        hear(address);
    changed = false;
    showCount();
}

void LokPanel::hear(int address)
{
    const auto record = KnownRecord(address);
    if (address == AllAddresses) {
        list.forgetHeld();
        model->refresh();
    } else if (record) {
        list.takeHeld(address, *record);
    } else if (!IsKnownLoco(address)) {
        list.takeHeld(address, LocoRecord{EmptyName(NameLength), {}, {}, 0, 0});
    }
    if (address == AllAddresses || handheld.isEmpty())
        return;
    changed = true;
    stand = TheEvents().now();
    showCount();
}

void LokPanel::keep()
{
    if (changed && !handheld.isEmpty())
        KeepLocos(handheld, LocosOf(list));
    changed = false;
}

void LokPanel::showCount()
{
    if (list.size() == 0) {
        standLbl->setText(
            QStringLiteral("Noch keine Loks gelesen. Die \"Lokliste…\" unter \"Werkzeuge\" liest alle."));
        return;
    }
    const QString count = shown->rowCount() == list.size()
        ? LocoCount(static_cast<size_t>(list.size()))
        : QStringLiteral("%1 von %2").arg(shown->rowCount()).arg(LocoCount(static_cast<size_t>(list.size())));
    standLbl->setText(count
        + (stand.isValid() ? QStringLiteral(", Stand: ") + stand.toString(QStringLiteral("dd.MM., HH:mm"))
                           : QString()));
}

void LokPanel::choose(const QModelIndex &index)
{
    if (index.isValid())
        Q_EMIT locoChosen(list.at(shown->mapToSource(index).row()).address);
}

} // namespace hr::ui
