// "Daten sichern": the user chooses what a backup is to contain.
//
// Every control carries the name of its key in konf\Sicherung.txt: LokDatenChk, LokDatenTxt, AlleLokSymChk, ...
#pragma once

#include "jobs/selection.h"
#include "ui/widgets/leavable_window.h"

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace hr::ui
{

class SelectionWindow : public LeavableWindow
{
    Q_OBJECT

public:
    SelectionWindow();

    /// Shows the window with a selection.
    void open(const BackupSelection &selection);

    /// Chooses the locos by a list, and no search.
    void layLocoList(const QString &list);

    /// What the controls say. An address field that holds no address gives 0.
    [[nodiscard]] BackupSelection selection() const;

    /// False while the user still chooses; accepted() tells what he chose.
    [[nodiscard]] bool answered() const { return isAnswered; }
    [[nodiscard]] bool accepted() const { return isAccepted; }

protected:
    /// Leaving means cancel.
    void leave() override;

private:
    void buildNumberedRow(QGridLayout *grid, NumberedKind kind);
    void buildSearchRow(QGridLayout *grid);
    void buildBlockRows(QGridLayout *grid);
    void buildLayout();
    void setTabOrders();
    void connectControls();
    void check();
    void addKeys();
    void lay(const BackupSelection &selection);
    QStringList markFaults(const BackupSelection &chosen);
    void answer(bool ok);

    /// The controls of a numbered kind.
    struct NumberedRow {
        QCheckBox *wanted = nullptr;
        QCheckBox *all = nullptr; // none for loco records
        QLineEdit *list = nullptr;
    };
    std::array<NumberedRow, NumberedKindCount> rows;
    QCheckBox *lokSucheChk;
    QLineEdit *startTxt;
    QLineEdit *stopTxt;
    QCheckBox *fsDatenChk;
    QCheckBox *magSymZuordChk;
    QCheckBox *magListeChk;
    QLabel *hintLbl;
    QPushButton *allButton;
    QPushButton *okButton;
    QPushButton *cancelButton;
    bool isAnswered = false;
    bool isAccepted = false;
};

/// Makes a number list the choice of the locos, without a search: in the open window, else, when that is allowed, in
/// the saved selection. False when neither was done.
bool LayLocoList(const QString &list, bool maySave);

/// Lets the user change the selection. False after a cancel or when the program ends; the selection is as it was
/// then. The caller holds the busy scope.
bool AskForBackupSelection(BackupSelection &selection);

} // namespace hr::ui
