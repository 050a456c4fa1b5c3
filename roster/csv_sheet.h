// A CSV file as lines of named cells: what the readers of loco lists and tables have in common.
//
// Read: UTF-8, with or without byte order mark, or Latin-1 when it is no valid UTF-8; ";", "," or tab as separator (the
// one that the first line has most of); cells in quotes with doubled quotes, also with line breaks in them; lines ended
// by LF or CR LF; empty lines are passed over. The first line names the columns, in any order, upper or lower case.
// Written: UTF-8, ";", cells quoted where they must be.
#pragma once

#include "platform/rooms.h"

#include <QByteArray>
#include <QStringList>

#include <optional>
#include <vector>

namespace hr::roster
{

/// Something wrong in a file that the user wrote.
struct FileFault {
    int line = 0;   // counted from 1; 0 = the file as a whole
    QString column; // its name; empty = the whole line
    QString reason; // German, without a full stop
};

/// "Zeile 7, Spalte f3: 300 ist keine Zahl von 0 bis 255".
QString FaultText(const FileFault &fault);

/// The first 20 faults, a line each, and how many more there are.
QString FaultsText(const std::vector<FileFault> &faults);

struct CsvRow {
    int line = 0; // in the file, counted from 1
    QStringList cells;
};

class CsvSheet
{
public:
    explicit CsvSheet(const QByteArray &file);

    [[nodiscard]] const std::vector<CsvRow> &rows() const { return content; }
    [[nodiscard]] bool has(const QString &column) const { return indexOf(column) >= 0; }

    /// A column may have other headings; the first that is there counts as it where the file has none of its own name.
    void alsoCalled(const QString &column, const QStringList &others);

    /// The cell without blanks around it, empty where the row ends early; nothing where the file has no such column.
    [[nodiscard]] std::optional<QString> cell(const CsvRow &row, const QString &column) const;

    /// The number in a cell. A cell that is empty or holds none of low..high is a fault.
    std::optional<int> number(const CsvRow &row, const QString &column, int low, int high);

    /// Faults: each name of `needed` that no column has, columns that are not among `known`, rows longer than the heading.
    void checkColumns(const QStringList &needed, const QStringList &known);

    std::vector<FileFault> faults;

private:
    [[nodiscard]] qsizetype indexOf(const QString &column) const;

    QStringList headings; // upper case
    std::vector<CsvRow> content;
};

/// A cell as it is written: in quotes when it holds a separator, a quote, a line break or blanks at its ends.
QString CsvCell(const QString &text);

} // namespace hr::roster
