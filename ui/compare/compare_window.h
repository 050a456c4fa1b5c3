// The window that compares a backup file with the handheld, or with a second file, and writes what differs.
//
// "Alt" is what stands in the handheld (or in the first file), "neu" what the file (or the second one) holds and what would
// be written. Written is what is ticked and to be seen.
#pragma once

#include "handheld/backup/dds_file.h"
#include "jobs/careful_job.h"
#include "ui/widgets/leavable_window.h"

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace hr::ui
{

class ChangeFilter;
class ChangeTable;
class Command;

/// A backup file with its sound records.
struct BackupFile {
    QString name;
    std::vector<DdsRecord> records;
};

class CompareWindow : public LeavableWindow
{
    Q_OBJECT

public:
    CompareWindow();

    /// Shows the window on a file that is not compared yet.
    void open(const BackupFile &file);

    /// Reads the records of the file from the handheld and shows what differs. A reading that ended early is told; what it
    /// did not reach is shown as not read.
    void compareWithHandheld(const Command &command);
    void compareWithFile(const BackupFile &other);

private:
    void buildTable();
    void buildLayout();
    QHBoxLayout *buildFileRow();
    QHBoxLayout *buildFilterRow();
    QHBoxLayout *buildTickRow();
    QHBoxLayout *buildButtonRow();
    QPushButton *addButton(QHBoxLayout *row, const char *name, const char *caption, Qt::Key key);
    void addKeys();
    void askForSecondFile();
    void showChanges(std::vector<RecordChange> changes);
    void filterChanged();
    void showCount();
    void tickShown(bool ticked);
    void tickSelected();
    [[nodiscard]] std::vector<int> shownRows() const;
    [[nodiscard]] std::vector<RecordChange> chosen() const;
    [[nodiscard]] WriteOptions options() const;
    void write();
    void exportCsv();
    [[nodiscard]] QByteArray csv() const;

    /// What would be written: the file, or the second one.
    [[nodiscard]] const BackupFile &offered() const { return second ? *second : first; }

    BackupFile first;
    std::optional<BackupFile> second; // nothing: compared with the handheld
    ChangeTable *model;
    ChangeFilter *shown;
    QTableView *table;
    QLabel *fileLbl;
    QLineEdit *filterTxt;
    QCheckBox *differencesChk;
    QLabel *countLbl;
    QLabel *sidesLbl;
    QCheckBox *onlyChangesChk;
    QCheckBox *verifyChk;
    QCheckBox *saveBeforeChk;
    QPushButton *handheldBut = nullptr;
    QPushButton *secondFileBut = nullptr;
    QPushButton *allBut = nullptr;
    QPushButton *noneBut = nullptr;
    QPushButton *closeBut = nullptr;
    QPushButton *writeBut = nullptr;
    QPushButton *csvBut = nullptr;
};

/// The records of a backup file. A file that cannot be read or holds nothing is told; of a damaged one what stands before
/// the damage is used after a box that names it.
std::optional<BackupFile> LoadBackupFile(const QString &fileName);

} // namespace hr::ui
