#include "ui/backup/table_print.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

namespace hr::ui
{

namespace
{

// --- Paper, in tenths of a millimetre ---
constexpr std::array<int, BackupTable::FirstFunctionColumn> FrontWidths{140, 480, 180, 170};
constexpr int FunctionWidth = 70;
constexpr int TableWidth = 140 + 480 + 180 + 170 + FunctionCount * FunctionWidth;
constexpr int RowHeight = 56;
constexpr int TitleHeight = 80;
constexpr int TextHeight = 28;
constexpr int CellMargin = 8;
constexpr int MarkWidth = 22;
constexpr int PixelSize = 3; // of a symbol's picture
constexpr int PageMarginMm = 8;
constexpr double TenthsPerInch = 254;

int ColumnWidth(int column)
{
    return column < BackupTable::FirstFunctionColumn ? FrontWidths.at(static_cast<size_t>(column)) : FunctionWidth;
}

/// The table under way onto the paper.
class TablePainter
{
public:
    TablePainter(QPagedPaintDevice &paper, const QString &tableTitle, size_t locoCount)
        : device(paper), painter(&paper), title(tableTitle), count(locoCount)
    {
        const double perTenth = paper.logicalDpiX() / TenthsPerInch;
        const double fit = paper.width() / (perTenth * TableWidth);
        scale = perTenth * qMin(1.0, fit);
        rowsPerPage = qMax(1, (static_cast<int>(paper.height() / scale) - TitleHeight - RowHeight) / RowHeight);
        painter.scale(scale, scale);
        QFont font = painter.font();
        font.setPixelSize(TextHeight);
        painter.setFont(font);
    }

    bool paint(const std::vector<RosterLoco> &locos)
    {
        if (!painter.isActive())
            return false;
        startPage();
        int row = 0;
        for (const RosterLoco &loco : locos) {
            if (row == rowsPerPage) {
                if (!device.newPage())
                    return false;
                startPage();
                row = 0;
            }
            paintRow(TitleHeight + RowHeight * ++row, loco);
        }
        return painter.end();
    }

private:
    void startPage()
    {
        const size_t perPage = static_cast<size_t>(rowsPerPage);
        const size_t pages = qMax<size_t>(1, (count + perPage - 1) / perPage);
        painter.drawText(QRect(0, 0, TableWidth, TitleHeight), Qt::AlignLeft | Qt::AlignTop, title);
        painter.drawText(QRect(0, 0, TableWidth, TitleHeight), Qt::AlignRight | Qt::AlignTop,
            QStringLiteral("Seite %1 von %2").arg(++page).arg(pages));
        int left = 0;
        for (int column = 0; column < BackupTable::FirstFunctionColumn + FunctionCount; ++column) {
            paintText(QRect(left, TitleHeight, ColumnWidth(column), RowHeight), column, ColumnCaption(column));
            left += ColumnWidth(column);
        }
        painter.drawLine(0, TitleHeight + RowHeight, TableWidth, TitleHeight + RowHeight);
    }

    void paintText(const QRect &cell, int column, const QString &text)
    {
        const bool left = column == BackupTable::NameColumn;
        painter.drawText(cell.adjusted(CellMargin, 0, -CellMargin, 0),
            Qt::AlignVCenter | (left ? Qt::AlignLeft : Qt::AlignHCenter), text);
    }

    /// A picture, or the symbol's number where there is none; the mark of a momentary function stands behind it.
    void paintSymbol(const QRect &cell, const QPixmap &picture, int number, const QString &mark)
    {
        const QRect front = mark.isEmpty() ? cell : cell.adjusted(0, 0, -MarkWidth, 0);
        if (picture.isNull()) {
            painter.drawText(front, Qt::AlignCenter, QString::number(number));
        } else {
            QRect area(QPoint(), picture.size() / picture.devicePixelRatio() * PixelSize);
            area.moveCenter(front.center());
            painter.drawPixmap(area, picture);
        }
        painter.drawText(cell.adjusted(0, 0, -CellMargin / 2, 0), Qt::AlignVCenter | Qt::AlignRight, mark);
    }

    void paintRow(int top, const RosterLoco &loco)
    {
        const LocoRecord &record = loco.record;
        int left = 0;
        const auto nextCell = [&](int column) {
            const QRect cell(left, top, ColumnWidth(column), RowHeight);
            left += ColumnWidth(column);
            return cell;
        };
        using Table = BackupTable;
        paintText(nextCell(Table::AddressColumn), Table::AddressColumn, QString::number(loco.address));
        paintText(nextCell(Table::NameColumn), Table::NameColumn, ShownName(record));
        paintSymbol(nextCell(Table::SymbolColumn), LocoPicture(record), record.locoSymbol, QString());
        paintText(nextCell(Table::MultiUniColumn), Table::MultiUniColumn, MultiUniText(record));
        for (int f = 0; f < FunctionCount; ++f)
            paintSymbol(nextCell(Table::FirstFunctionColumn + f), FunctionPicture(record, f),
                record.symbols.at(static_cast<size_t>(f)), MomentaryMark(record, f));
        painter.drawLine(0, top + RowHeight, TableWidth, top + RowHeight);
    }

    QPagedPaintDevice &device;
    QPainter painter;
    QString title;
    size_t count;
    double scale = 1;
    int rowsPerPage = 1;
    int page = 0;
};

} // namespace

bool PrintTable(QPagedPaintDevice &device, const QString &title, const std::vector<RosterLoco> &locos)
{
    return TablePainter(device, title, locos.size()).paint(locos);
}

QByteArray PdfOf(const QString &title, const std::vector<RosterLoco> &locos)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(title);
        const QMarginsF margins(PageMarginMm, PageMarginMm, PageMarginMm, PageMarginMm);
        writer.setPageLayout(
            QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape, margins, QPageLayout::Millimeter));
        if (!PrintTable(writer, title, locos))
            return {};
    }
    return bytes;
}

} // namespace hr::ui
