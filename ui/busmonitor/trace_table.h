// The messages of a bus trace as a table: those that the filter lets through, at most BusTrace::MostRows.
#pragma once

#include "handheld/bus_trace.h"

#include <QAbstractTableModel>

#include <deque>

namespace hr::ui
{

/// What is shown.
struct TraceFilter {
    enum class Whose { All, Own, Others };
    QString text; // in bytes or words, case ignored
    Whose whose = Whose::All;
    int opcode = 0; // 0 = all
    bool onlyWrong = false;
};

class TraceTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TimeColumn, WhoseColumn, BytesColumn, CheckColumn, WordsColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Adds messages behind the others; the oldest ones go when there are too many.
    void add(const std::vector<TraceRow> &rows);
    void setRows(const std::vector<TraceRow> &rows);
    void setFilter(const TraceFilter &wanted);

    /// All messages, also those that the filter hides.
    [[nodiscard]] const std::deque<TraceRow> &all() const { return rows; }
    [[nodiscard]] const TraceRow &shownRow(int row) const;
    [[nodiscard]] int wrongOnes() const { return wrong; }

private:
    [[nodiscard]] bool passes(const TraceRow &row) const;
    void forgetOldest();

    TraceFilter filter;
    std::deque<TraceRow> rows;
    int wrong = 0;            // rows whose checksum is
    qint64 forgotten = 0;     // number of the first row
    std::deque<qint64> shown; // numbers of the rows that pass
};

} // namespace hr::ui
