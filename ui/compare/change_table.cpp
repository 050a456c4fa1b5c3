#include "ui/compare/change_table.h"

#include "roster/loco_csv.h"
#include "ui/common/symbol_pictures.h"

#include <algorithm>

namespace hr::ui
{

namespace
{

/// A symbol as its bytes say; the loco symbol of a loco from the PC's catalogue.
QPixmap PictureOf(const std::optional<RecordValue> &value)
{
    if (!value)
        return {};
    if (const auto *picture = std::get_if<Picture>(&*value))
        return QPixmap::fromImage(ImageOf(*picture));
    const auto *loco = std::get_if<LocoRecord>(&*value);
    const bool hasPicture = loco != nullptr && !IsEmptyName(loco->name) && loco->locoSymbol < LokSymbolCount;
    return hasPicture ? SymbolPictureOfHalf(SymbolKind::Loco, loco->locoSymbol, HalfOn) : QPixmap();
}

QString NameOf(const std::optional<RecordValue> &value)
{
    const auto *loco = value ? std::get_if<LocoRecord>(&*value) : nullptr;
    return loco != nullptr ? ShownName(*loco) : QString();
}

/// "Funktionssymbol 12 ON: Licht"
QString WithDescription(const RecordId &id)
{
    const auto symbol = RowOf(id.kind).symbol;
    const QString words = symbol && RowOf(id.kind).numbered ? SymbolName(*symbol, id.number) : QString();
    return RecordName(id) + (words.isEmpty() ? QString() : QStringLiteral(": ") + words);
}

bool CanBeWritten(Change change)
{
    return change != Change::Nameless && change != Change::Unknown;
}

} // namespace

void ChangeTable::setChanges(std::vector<RecordChange> changes, const std::set<RecordId> &offered)
{
    beginResetModel();
    rows.clear();
    for (RecordChange &change : changes) {
        Row row{std::move(change), false, false, {}, {}, {}};
        row.offered = offered.contains(row.change.id);
        row.ticked = row.offered && CanBeWritten(row.change.change);
        row.fields = FieldsText(row.change);
        row.oldPicture = PictureOf(row.change.present);
        row.newPicture = PictureOf(row.change.wanted);
        rows.push_back(std::move(row));
    }
    endResetModel();
}

void ChangeTable::update(const std::vector<RecordChange> &changes)
{
    for (const RecordChange &change : changes) {
        const auto row = std::ranges::find(rows, change.id, [](const Row &candidate) { return candidate.change.id; });
        if (row == rows.end())
            continue; // a neighbour that was made good
        row->change = change;
        row->fields = FieldsText(change);
        row->oldPicture = PictureOf(change.present);
        const int number = static_cast<int>(row - rows.begin());
        Q_EMIT dataChanged(index(number, 0), index(number, ColumnCount - 1));
    }
}

void ChangeTable::setTicked(int row, bool ticked)
{
    if ((flags(index(row, RecordColumn)) & Qt::ItemIsUserCheckable) == 0)
        return;
    rows.at(static_cast<size_t>(row)).ticked = ticked;
    Q_EMIT dataChanged(index(row, RecordColumn), index(row, RecordColumn), {Qt::CheckStateRole});
}

QString ChangeTable::happening(int row) const
{
    return at(row).offered ? ChangeText(change(row).change) : QStringLiteral("fehlt in der zweiten Datei");
}

QString ChangeTable::oldName(int row) const
{
    return NameOf(change(row).present);
}

QString ChangeTable::newName(int row) const
{
    return NameOf(change(row).wanted);
}

QString ChangeTable::text(int row, int column) const
{
    switch (column) {
    case RecordColumn:
        return WithDescription(change(row).id);
    case ChangeColumn:
        return happening(row);
    case OldNameColumn:
        return oldName(row);
    case NewNameColumn:
        return newName(row);
    case FieldsColumn:
        return at(row).fields;
    default:
        return {};
    }
}

/// For those who point at a cell, or cannot see its picture.
QString ChangeTable::words(int row, int column) const
{
    if (column != OldPictureColumn && column != NewPictureColumn)
        return text(row, column);
    const auto &value = column == OldPictureColumn ? change(row).present : change(row).wanted;
    const auto *loco = value ? std::get_if<LocoRecord>(&*value) : nullptr;
    if (loco != nullptr && !IsEmptyName(loco->name))
        return SymbolWords(SymbolKind::Loco, loco->locoSymbol, HalfOn);
    return IsTableKind(change(row).id.kind) ? QString() : WithDescription(change(row).id);
}

int ChangeTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
}

int ChangeTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ChangeTable::data(const QModelIndex &index, int role) const
{
    const int row = index.row();
    switch (role) {
    case Qt::DisplayRole:
        return text(row, index.column());
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
        return words(row, index.column());
    case Qt::CheckStateRole:
        if (index.column() == RecordColumn && (flags(index) & Qt::ItemIsUserCheckable) != 0)
            return static_cast<int>(isTicked(row) ? Qt::Checked : Qt::Unchecked);
        return {};
    case PictureDelegate::PictureRole:
        if (index.column() == OldPictureColumn)
            return at(row).oldPicture;
        return index.column() == NewPictureColumn ? at(row).newPicture : QVariant();
    default:
        return {};
    }
}

bool ChangeTable::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || index.column() != RecordColumn)
        return false;
    setTicked(index.row(), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ChangeTable::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool writable =
        index.column() == RecordColumn && at(index.row()).offered && CanBeWritten(change(index.row()).change);
    return writable ? shown | Qt::ItemIsUserCheckable : shown;
}

QVariant ChangeTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList captions{QStringLiteral("Datensatz"), QStringLiteral("Änderung"),
        QStringLiteral("Bild alt"), QStringLiteral("Bild neu"), QStringLiteral("Name alt"),
        QStringLiteral("Name neu"), QStringLiteral("Was anders wird")};
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return captions.at(section);
    const bool left = role == Qt::TextAlignmentRole && section != OldPictureColumn && section != NewPictureColumn;
    return left ? QVariant(static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter)) : QVariant();
}

} // namespace hr::ui
