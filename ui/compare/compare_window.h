// The window that compares a backup file or a list of locos with the handheld, or with a second file, and writes what
// differs. What a list does not say counts as equal and stays.
//
// "Alt" is what stands in the handheld (or in the first file), "neu" what the file (or the second one) holds and what would
// be written. Written is what is ticked and to be seen.
#pragma once

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

/// A file with what it would write: the sound records of a backup, or the locos of a list.
struct ComparedFile {
    QString name;
    QByteArray about; // what it holds: another content is another job
    std::vector<Step> steps;
};

class CompareWindow : public LeavableWindow
{
    Q_OBJECT

public:
    CompareWindow();

    /// Shows the window on a file that is not compared yet.
    void open(const ComparedFile &file);

    /// Reads the records of the file from the handheld and shows what differs. A reading that ended early is told; what it
    /// did not reach is shown as not read.
    void compareWithHandheld(const Command &command);
    void compareWithFile(const ComparedFile &other);

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
    [[nodiscard]] std::vector<Step> chosenSteps() const;
    [[nodiscard]] WriteOptions options() const;
    void write();
    void exportCsv();
    [[nodiscard]] QByteArray csv() const;

    /// What would be written: the file, or the second one.
    [[nodiscard]] const ComparedFile &offered() const { return second ? *second : first; }

    ComparedFile first;
    std::optional<ComparedFile> second; // nothing: compared with the handheld
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

/// The file dialogs' filter.
QString ComparedFilter();

/// What a file holds, by its ending. A file that cannot be read or holds nothing is told; of a damaged backup what stands
/// before the damage is used after a box that names it, of a list with faults nothing. Names with characters that the
/// handheld does not have are asked about.
std::optional<ComparedFile> LoadComparedFile(const QString &fileName);

} // namespace hr::ui
