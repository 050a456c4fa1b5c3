#include "ui/busmonitor/trace_table.h"

#include "handheld/message_words.h"

#include <QColor>
#include <QFontDatabase>

#include <algorithm>

namespace hr::ui
{

namespace
{

const QColor WrongColour(Qt::red);

QString WhoseWord(const TraceRow &row)
{
    return row.own ? QStringLiteral("eigene") : QStringLiteral("fremd");
}

QString TextOf(const TraceRow &row, int column)
{
    switch (column) {
    case TraceTable::TimeColumn:
        return QString::number(static_cast<double>(row.us) / 1e6, 'f', 3);
    case TraceTable::WhoseColumn:
        return WhoseWord(row);
    case TraceTable::BytesColumn:
        return TraceBytes(row);
    case TraceTable::CheckColumn:
        return row.sound() ? QString() : QStringLiteral("falsch");
    default:
        return MessageWords(row.message());
    }
}

} // namespace

int TraceTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(shown.size());
}

int TraceTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

const TraceRow &TraceTable::shownRow(int row) const
{
    return rows.at(static_cast<size_t>(shown.at(static_cast<size_t>(row)) - forgotten));
}

QVariant TraceTable::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const TraceRow &row = shownRow(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return TextOf(row, index.column());
    case Qt::ForegroundRole:
        return row.sound() ? QVariant() : QVariant(WrongColour);
    case Qt::FontRole:
        return index.column() == BytesColumn ? QVariant(QFontDatabase::systemFont(QFontDatabase::FixedFont))
                                             : QVariant();
    case Qt::TextAlignmentRole:
        return index.column() == TimeColumn ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    default:
        return {};
    }
}

QVariant TraceTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList heads{QStringLiteral("Sekunden"), QStringLiteral("Von"), QStringLiteral("Bytes"),
        QStringLiteral("Prüfsumme"), QStringLiteral("Bedeutung")};
    return heads.at(section);
}

bool TraceTable::passes(const TraceRow &row) const
{
    if (filter.whose != TraceFilter::Whose::All && row.own != (filter.whose == TraceFilter::Whose::Own))
        return false;
    if (filter.opcode != 0 && (row.bytes.isEmpty() || static_cast<quint8>(row.bytes.at(0)) != filter.opcode))
        return false;
    if (filter.onlyWrong && row.sound())
        return false;
    return filter.text.isEmpty() || TraceBytes(row).contains(filter.text, Qt::CaseInsensitive)
        || MessageWords(row.message()).contains(filter.text, Qt::CaseInsensitive);
}

void TraceTable::add(const std::vector<TraceRow> &added)
{
    std::vector<qint64> passing;
    for (const TraceRow &row : added) {
        rows.push_back(row);
        wrong += row.sound() ? 0 : 1;
        if (passes(row))
            passing.push_back(forgotten + static_cast<qint64>(rows.size()) - 1);
    }
    if (!passing.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(passing.size()) - 1);
        shown.insert(shown.end(), passing.begin(), passing.end());
        endInsertRows();
    }
    forgetOldest();
}

void TraceTable::forgetOldest()
{
    if (rows.size() <= BusTrace::MostRows)
        return;
    const size_t count = rows.size() - BusTrace::MostRows;
    const qint64 first = forgotten + static_cast<qint64>(count);
    int gone = 0;
    while (gone < rowCount() && shown.at(static_cast<size_t>(gone)) < first)
        ++gone;
    if (gone > 0) {
        beginRemoveRows({}, 0, gone - 1);
        shown.erase(shown.begin(), shown.begin() + gone);
    }
    wrong -= static_cast<int>(std::count_if(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(count),
        [](const TraceRow &row) { return !row.sound(); }));
    rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(count));
    forgotten = first;
    if (gone > 0)
        endRemoveRows();
}

void TraceTable::setRows(const std::vector<TraceRow> &wanted)
{
    beginResetModel();
    rows.clear();
    shown.clear();
    forgotten = 0;
    wrong = 0;
    endResetModel();
    add(wanted);
}

void TraceTable::setFilter(const TraceFilter &wanted)
{
    beginResetModel();
    filter = wanted;
    shown.clear();
    for (size_t i = 0; i < rows.size(); ++i) {
        if (passes(rows.at(i)))
            shown.push_back(forgotten + static_cast<qint64>(i));
    }
    endResetModel();
}

} // namespace hr::ui
