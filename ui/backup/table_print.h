// The viewer's table on paper.
#pragma once

#include "ui/backup/backup_table.h"

class QPagedPaintDevice;

namespace hr::ui
{

/// Paints the table with a title and page numbers, made smaller where the paper is narrow. False when the device
/// does not take it.
bool PrintTable(QPagedPaintDevice &device, const QString &title, const std::vector<RosterLoco> &locos);

/// The same as a PDF file on A4 landscape paper; empty when it cannot be made.
QByteArray PdfOf(const QString &title, const std::vector<RosterLoco> &locos);

} // namespace hr::ui
