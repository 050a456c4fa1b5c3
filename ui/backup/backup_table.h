// The loco records of a backup file as a table: address, name, symbol, and per function its ON picture and a mark.
#pragma once

#include "roster/loco_csv.h"
#include "ui/widgets/picture_delegate.h"

#include <QAbstractTableModel>
#include <QPixmap>

namespace hr::ui
{

class BackupTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { AddressColumn, NameColumn, SymbolColumn, MultiUniColumn, FirstFunctionColumn };

    /// Beside the texts: the picture of a cell, what to sort by, and (first column) what the filter looks at.
    static constexpr int PictureRole = PictureDelegate::PictureRole;
    static constexpr int SortRole = Qt::UserRole + 2;
    static constexpr int FilterRole = Qt::UserRole + 3;

    using QAbstractTableModel::QAbstractTableModel;

    void setLocos(std::vector<RosterLoco> locos);
    [[nodiscard]] const RosterLoco &loco(int row) const { return locos.at(static_cast<size_t>(row)); }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<RosterLoco> locos;
};

/// Pictures of the PC's catalogues; null where there is none.
QPixmap LocoPicture(const LocoRecord &record);
QPixmap FunctionPicture(const LocoRecord &record, int function);

/// "ja" when all functions have one symbol.
QString MultiUniText(const LocoRecord &record);

/// The mark of a momentary function, or nothing.
QString MomentaryMark(const LocoRecord &record, int function);

/// Captions of the columns before the functions; the functions are f0 .. f24.
QString ColumnCaption(int column);

} // namespace hr::ui
