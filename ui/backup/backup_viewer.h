// The window that shows the loco records of a backup file. Its context menu offers the files that were opened or saved
// last.
#pragma once

#include "handheld/backup/dds_file.h"
#include "ui/widgets/leavable_window.h"

class QAction;
class QLabel;
class QLineEdit;
class QTableView;

namespace hr::roster
{
struct RosterLoco;
}

namespace hr::ui
{

class BackupTable;
class LocoFilter;

class BackupViewer : public LeavableWindow
{
    Q_OBJECT

public:
    BackupViewer();

    /// Shows a file's content. A damaged file is shown up to the damage, which the line under the table names.
    void load(const QString &fileName, const DdsContent &content);

    /// Lays the recent files into the context menu.
    void showRecentFiles();

private:
    void buildTable();
    QWidget *buildFilterRow();
    void buildLayout();
    void addRecentFiles();
    void filterChanged();
    [[nodiscard]] std::vector<RosterLoco> shownLocos() const;
    void saveFile(const QString &filter, const QByteArray &bytes);
    void exportCsv();
    void exportPdf();
    void print();
    void compare();

    QString shownFile;
    BackupTable *model;
    LocoFilter *shown;
    QTableView *table;
    QLineEdit *filterTxt;
    QLabel *countLbl;
    QLabel *summaryLbl;
    std::vector<QAction *> recentFiles; // as many as there may be
    QString documentName;               // of a print job
};

/// What a file holds beside its loco records, and whether its structure is sound: two lines of German text.
QString SummaryText(const DdsContent &content);

/// Shows a file in the viewer; a file that cannot be read is reported by a "Fehler!" box, one that is gone leaves the
/// list of recent files. Nobody waits for the
/// window.
void OpenBackupViewer(const QString &fileName);

/// Destroys the window. To be called while the application lives.
void ResetBackupViewer();

} // namespace hr::ui
