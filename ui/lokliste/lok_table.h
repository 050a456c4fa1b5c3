// The Lokliste as a table that can be edited in place: address, name, symbol, one symbol for all, f0 .. f24, state.
//
// As a text a function's cell is its symbol number with a T behind it when it is momentary ("17T"); that is what is typed,
// copied and pasted.
#pragma once

#include "roster/lokliste.h"
#include "ui/widgets/picture_delegate.h"

#include <QAbstractTableModel>

namespace hr::ui
{

class LokTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { AddressColumn, NameColumn, SymbolColumn, MultiUniColumn, FirstFunctionColumn };
    static constexpr int StateColumn = FirstFunctionColumn + FunctionCount;
    static constexpr int ColumnCount = StateColumn + 1;

    /// Beside the texts: the picture of a cell, and what to sort by.
    static constexpr int PictureRole = PictureDelegate::PictureRole;
    static constexpr int SortRole = Qt::UserRole + 2;

    explicit LokTable(Lokliste &lokliste, QObject *parent);

    /// The function of a column; -1 for the others.
    static int FunctionOf(int column);

    [[nodiscard]] bool isTicked(int row) const { return ticked.contains(list.at(row).id); }
    void setTicked(const std::vector<int> &rows, bool tick);

    /// What a cell takes: false when the text means nothing there. Several rows are one step.
    bool setText(const std::vector<int> &rows, int column, const QString &text);

    /// Lines of cells into rows, from a column on, as one step; for more lines than rows new locos are made. What could not
    /// be taken, a text each.
    QStringList paste(std::vector<int> rows, int column, const QStringList &lines);

    /// All looks different.
    void refresh();

    [[nodiscard]] QString editText(int row, int column) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /// Ticks, texts or states are others.
    void contentChanged();

private:
    Lokliste &list;
    std::set<int> ticked; // by id
};

/// Address or name contain the text, or a word of the loco symbol begins with it.
bool HasText(const Lok &lok, const QString &wanted);

/// Pictures of the PC's catalogues; null where there is none.
QPixmap PictureOfLoco(const LocoRecord &record);
QPixmap PictureOfFunction(const LocoRecord &record, int function);

} // namespace hr::ui
