// Records that differ as a table: a row a record with tick box, what happens, old and new picture and name, and the fields
// in words.
#pragma once

#include "jobs/change.h"
#include "ui/widgets/picture_delegate.h"

#include <QAbstractTableModel>
#include <QPixmap>

#include <set>

namespace hr::ui
{

class ChangeTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        RecordColumn,
        ChangeColumn,
        OldPictureColumn,
        NewPictureColumn,
        OldNameColumn,
        NewNameColumn,
        FieldsColumn,
        ColumnCount
    };

    using QAbstractTableModel::QAbstractTableModel;

    /// Shows changes; all that can be written are ticked. `offered`: the records of the side that can be written; what
    /// is not among them stands there to be read only.
    void setChanges(std::vector<RecordChange> changes, const std::set<RecordId> &offered);

    /// Takes over what became of some of the records; ticks stay.
    void update(const std::vector<RecordChange> &changes);

    [[nodiscard]] const RecordChange &change(int row) const { return at(row).change; }
    [[nodiscard]] bool isTicked(int row) const { return at(row).ticked; }

    /// No effect on a row that cannot be written.
    void setTicked(int row, bool ticked);

    /// "geändert", "fehlt in der zweiten Datei", ...
    [[nodiscard]] QString happening(int row) const;

    /// The name of a loco; empty for all other records.
    [[nodiscard]] QString oldName(int row) const;
    [[nodiscard]] QString newName(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        RecordChange change;
        bool offered = false;
        bool ticked = false;
        QString fields;
        QPixmap oldPicture;
        QPixmap newPicture;
    };
    [[nodiscard]] const Row &at(int row) const { return rows.at(static_cast<size_t>(row)); }
    [[nodiscard]] QString text(int row, int column) const;
    [[nodiscard]] QString words(int row, int column) const;

    std::vector<Row> rows;
};

} // namespace hr::ui
