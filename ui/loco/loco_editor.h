// "Lokdatensatz ändern:": shows, reads, writes and deletes one loco record.
//
// What is changed can be undone, a deletion too (in the window; nothing is written by it), until another record is read
// or another address is typed. Typing a name is one step.
#pragma once

#include "shown/record.h"
#include "ui/common/type_search.h"
#include "ui/loco/held_loco.h"
#include "ui/widgets/snapshot_history.h"

#include <QGroupBox>

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace hr::ui
{

class Grid;
class PictureBox;
class RowNames;

class LocoEditor : public QGroupBox
{
    Q_OBJECT

public:
    explicit LocoEditor(QWidget *parent);

    /// Shows the current loco record.
    void showRecord();

    /// Puts an address into the field and reads it.
    void readLoco(int address);

    /// Shows a loco of a list, as changed and not written; it can be taken back.
    void showLoco(int address, const LocoRecord &loco);

    /// Gives the address field the focus, with its text selected.
    void focusAddress();

    /// The record's name for a question when it was changed and not written; empty when it was not.
    [[nodiscard]] QString unwritten() const;

protected:
    /// Ctrl+Z and Ctrl+Y in the name field go on to the steps of the record.
    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// The access code was typed into the address field.
    void startImageUnlocked();

private:
    void buildGrid();
    QWidget *buildGridWithHeads();
    QVBoxLayout *buildButtons();
    void buildLayout();
    void connectControls();
    /// What the write button writes: the address and the record in memory.
    struct Shown {
        QString address;
        ShownLoco loco;
        bool complete;
    };
    [[nodiscard]] Shown shownNow() const;
    [[nodiscard]] int address() const;
    void showWritten(const LocoRecord &written, int writtenAddress, const Outcome &outcome);

    /// What can be undone.
    struct State {
        ShownLoco loco;
        bool complete;
        bool operator==(const State &) const = default;
    };
    [[nodiscard]] State state() const;
    void restore(const State &kept);
    void change(const std::function<void()> &work);
    void undo();
    void redo();

    void setComplete(bool isComplete);
    void addressChanged();
    void nameChanged(const QString &text);
    void markAddress();
    void markName();
    void explain();
    [[nodiscard]] QString whereItGoes() const;
    void clearShownRecord();
    void showName();
    void showLocoSymbol();
    void showFunctionSymbols(int row);
    void showFunctions();
    void showMode(int row);
    void showMemory();
    void readRecord();
    void writeRecord();
    void deleteRecord();
    void buildContextMenu();
    void paste(bool functionsOnly);
    void spreadFunctions();
    void toggleMomentary(int row);
    void actOnFunction(int row, int column);
    void pickLocoSymbol();

    LocoRecord &record = CurrentLoco.record;
    QLineEdit *adrTxt;
    QLineEdit *loknameTxt;
    PictureBox *lokSymPic;
    Grid *fktTab;
    RowNames *names = nullptr; // of the functions' symbols, beside the grid
    QCheckBox *multiUniChk;
    QPushButton *readBut;
    QPushButton *writeBut;
    QPushButton *deleteBut;
    QLabel *doubtLbl;
    QLabel *changedLbl;
    QLabel *whereLbl;  // which loco a write puts under which address, when it is not what was read
    QString shownName; // of the record as it was shown last, and what the record said then
    ShownLoco shownLoco;
    bool complete = true; // false after a read with a time-out or a damaged answer
    ShownLoco copied;     // by the context menu; valid when something was copied
    bool copiedComplete = true;
    bool hasCopy = false;
    QList<QAction *> pastes; // grey until something was copied
    TypeSearch search;       // in the grid
    SnapshotHistory<State> history;
    HeldLoco held;
};

} // namespace hr::ui
