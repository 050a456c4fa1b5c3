#include "ui/backup/backup_table.h"

#include "platform/text.h"
#include "ui/common/symbol_pictures.h"

#include <utility>

namespace hr::ui
{

namespace
{

int SymbolOf(const LocoRecord &record, int function)
{
    return record.symbols.at(static_cast<size_t>(function));
}

bool IsMomentary(const LocoRecord &record, int function)
{
    return record.modes.at(static_cast<size_t>(function)) == 1;
}

/// The number stands where there is no picture of it.
QString NumberWithoutPicture(const QPixmap &picture, int number)
{
    return picture.isNull() ? QString::number(number) : QString();
}

QString CellText(const RosterLoco &loco, int column)
{
    const LocoRecord &record = loco.record;
    switch (column) {
    case BackupTable::AddressColumn:
        return QString::number(loco.address);
    case BackupTable::NameColumn:
        return ShownName(record);
    case BackupTable::SymbolColumn:
        return NumberWithoutPicture(LocoPicture(record), record.locoSymbol);
    case BackupTable::MultiUniColumn:
        return MultiUniText(record);
    default:
        const int function = column - BackupTable::FirstFunctionColumn;
        return NumberWithoutPicture(FunctionPicture(record, function), SymbolOf(record, function))
            + MomentaryMark(record, function);
    }
}

QPixmap CellPicture(const RosterLoco &loco, int column)
{
    if (column == BackupTable::SymbolColumn)
        return LocoPicture(loco.record);
    if (column >= BackupTable::FirstFunctionColumn)
        return FunctionPicture(loco.record, column - BackupTable::FirstFunctionColumn);
    return {};
}

QVariant SortValue(const RosterLoco &loco, int column)
{
    const LocoRecord &record = loco.record;
    switch (column) {
    case BackupTable::AddressColumn:
        return loco.address;
    case BackupTable::NameColumn:
        return UpperLatin1(ShownName(record)).normalized(QString::NormalizationForm_D); // Ä beside A
    case BackupTable::SymbolColumn:
        return record.locoSymbol;
    case BackupTable::MultiUniColumn:
        return record.multiUni;
    default:
        const int function = column - BackupTable::FirstFunctionColumn;
        return SymbolOf(record, function) * 2 + (IsMomentary(record, function) ? 1 : 0);
    }
}

/// For those who point at a picture, or cannot see it.
QString SpokenText(const RosterLoco &loco, int column)
{
    if (column == BackupTable::SymbolColumn)
        return QStringLiteral("Loksymbol %1").arg(loco.record.locoSymbol);
    if (column < BackupTable::FirstFunctionColumn)
        return CellText(loco, column);
    const int function = column - BackupTable::FirstFunctionColumn;
    return QStringLiteral("f%1: Symbol %2, %3")
        .arg(function)
        .arg(SymbolOf(loco.record, function))
        .arg(IsMomentary(loco.record, function) ? QStringLiteral("Tastfunktion") : QStringLiteral("Schaltfunktion"));
}

} // namespace

void BackupTable::setLocos(std::vector<RosterLoco> newLocos)
{
    beginResetModel();
    locos = std::move(newLocos);
    for (const RosterLoco &loco : locos) { // now: painting must not touch the disk
        LocoPicture(loco.record);
        for (int f = 0; f < FunctionCount; ++f)
            FunctionPicture(loco.record, f);
    }
    endResetModel();
}

int BackupTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(locos.size());
}

int BackupTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : FirstFunctionColumn + FunctionCount;
}

QVariant BackupTable::data(const QModelIndex &index, int role) const
{
    const RosterLoco &shown = loco(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return CellText(shown, index.column());
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
        return SpokenText(shown, index.column());
    case Qt::TextAlignmentRole:
        return static_cast<int>(index.column() == NameColumn ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignCenter);
    case PictureRole:
        return CellPicture(shown, index.column());
    case SortRole:
        return SortValue(shown, index.column());
    case FilterRole:
        return QString(QString::number(shown.address) + u' ' + ShownName(shown.record));
    default:
        return {};
    }
}

QVariant BackupTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(ColumnCaption(section)) : QVariant();
}

QPixmap LocoPicture(const LocoRecord &record)
{
    return record.locoSymbol < LokSymbolCount ? SymbolPictureOfHalf(SymbolKind::Loco, record.locoSymbol, HalfOn)
                                              : QPixmap();
}

QPixmap FunctionPicture(const LocoRecord &record, int function)
{
    return SymbolPictureOfHalf(SymbolKind::Function, SymbolOf(record, function), HalfOn);
}

QString MultiUniText(const LocoRecord &record)
{
    return record.multiUni == 1 ? QStringLiteral("ja") : QString();
}

QString MomentaryMark(const LocoRecord &record, int function)
{
    return IsMomentary(record, function) ? QStringLiteral("T") : QString();
}

QString ColumnCaption(int column)
{
    if (column < BackupTable::FirstFunctionColumn)
        return FrontCaption(column);
    return u'f' + QString::number(column - BackupTable::FirstFunctionColumn);
}

} // namespace hr::ui
