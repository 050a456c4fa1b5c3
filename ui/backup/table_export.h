// The viewer's table as a spreadsheet file and on paper.
#pragma once

#include "ui/backup/backup_table.h"

class QPagedPaintDevice;

/// CSV: UTF-8 with a byte order mark (spreadsheet programs would guess another character set without it), separator
/// ";", lines ended by CR LF. Columns: address, name, loco symbol number, one symbol for all functions (0/1), then
/// for each function its symbol number and 1 for momentary.
QByteArray CsvOf(const std::vector<BackupLoco> &locos);

/// Paints the table with a title and page numbers, made smaller where the paper is narrow. False when the device
/// does not take it.
bool PrintTable(QPagedPaintDevice &device, const QString &title, const std::vector<BackupLoco> &locos);

/// The same as a PDF file on A4 landscape paper; empty when it cannot be made.
QByteArray PdfOf(const QString &title, const std::vector<BackupLoco> &locos);
