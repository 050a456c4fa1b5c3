#include "ui/backup/backup_table.h"

#include "platform/text.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/picture_cache.h"

#include <utility>

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

QString CellText(const BackupLoco &loco, int column)
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

QPixmap CellPicture(const BackupLoco &loco, int column)
{
    if (column == BackupTable::SymbolColumn)
        return LocoPicture(loco.record);
    if (column >= BackupTable::FirstFunctionColumn)
        return FunctionPicture(loco.record, column - BackupTable::FirstFunctionColumn);
    return {};
}

QVariant SortValue(const BackupLoco &loco, int column)
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
QString SpokenText(const BackupLoco &loco, int column)
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

QPixmap CataloguePicture(SymbolKind kind, int number)
{
    return PictureOfFile(PicturePath(kind, number, CatalogueHalf(kind, HalfOn)));
}

} // namespace

void BackupTable::setLocos(std::vector<BackupLoco> newLocos)
{
    beginResetModel();
    locos = std::move(newLocos);
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
    const BackupLoco &shown = loco(index.row());
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

std::vector<BackupLoco> LocosIn(const DdsContent &content)
{
    std::vector<BackupLoco> locos;
    for (const DdsRecord &record : content.records) {
        if (record.id.kind == KindLoco)
            locos.push_back({record.id.number, UnpackLoco(record)});
    }
    return locos;
}

QString ShownName(const LocoRecord &record)
{
    return IsEmptyName(record.name) ? LeerName() : WithoutTrailingBlanks(record.name);
}

QPixmap LocoPicture(const LocoRecord &record)
{
    return record.locoSymbol < LokSymbolCount ? CataloguePicture(SymbolKind::Loco, record.locoSymbol) : QPixmap();
}

QPixmap FunctionPicture(const LocoRecord &record, int function)
{
    return CataloguePicture(SymbolKind::Function, SymbolOf(record, function));
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
    static const std::array<QString, BackupTable::FirstFunctionColumn> captions{
        QStringLiteral("Adresse"), QStringLiteral("Name"), QStringLiteral("Symbol"), QStringLiteral("ident. Sym.")};
    if (column < BackupTable::FirstFunctionColumn)
        return captions.at(static_cast<size_t>(column));
    return u'f' + QString::number(column - BackupTable::FirstFunctionColumn);
}
