// The window of the Lokliste: locos of the handheld and of files in one table, edited in place, then sent or saved.
#pragma once

#include "jobs/careful_job.h"
#include "ui/common/command.h"
#include "ui/lokliste/lok_table.h"
#include "ui/widgets/leavable_window.h"

#include <QSortFilterProxyModel>

class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QMenuBar;

namespace hr::ui
{

class FrozenTable;
class LokFilter;

class LokListWindow : public LeavableWindow
{
    Q_OBJECT

public:
    LokListWindow();

    /// Shows the window; an empty list takes what is known of the handheld.
    void open();

    /// Something new is known of this address of the handheld, or nothing of any any more (handheld/known_locos.h).
    void hear(int address);

    /// True when something was edited that is neither in the handheld nor in a file.
    [[nodiscard]] bool isUnsaved() const;

private:
    /// What a click on the send button is about: typing goes on meanwhile.
    struct SentLok {
        int id;
        RosterLoco loco;
        int leftBehind; // see Lokliste
    };
    struct Sending {
        std::vector<SentLok> loks;
        QString refused; // those that cannot be sent, with the reason; empty when all can
    };

    void buildTable();
    void buildMenus();
    void addEdits(QMenu *menu);
    QHBoxLayout *buildFilterRow();
    QHBoxLayout *buildOptionRow();
    QHBoxLayout *buildButtonRow();
    void buildLayout();
    QPushButton *addButton(QHBoxLayout *row, const char *name, const char *caption, Qt::Key key);

    void show();
    void filterChanged();
    [[nodiscard]] int current() const; // row of the list; -1 for none
    [[nodiscard]] std::vector<int> selected() const;
    [[nodiscard]] std::vector<int> sentRows() const;
    [[nodiscard]] bool isToBeSent(int row) const;
    [[nodiscard]] Sending sendingNow() const;
    [[nodiscard]] std::vector<int> targets(qsizetype count) const;
    void goTo(int row, int column);

    // --- Sources ---
    void addFrom(const std::vector<ListedLoco> &locos, const QString &source);
    void addKnown();
    void readFromHandheld();
    void openFile();

    // --- Editing ---
    void editCell(const QModelIndex &index);
    void pickSymbol();
    void toggleMomentary();
    void copyCells();
    void pasteCells();
    void undo();
    void redo();
    void copyFunctions();
    void pasteFunctions();
    void adaptNames();
    void clearCells();
    void addLoco();
    void duplicate();
    void removeRows();

    // --- Away ---
    [[nodiscard]] QString refusedText(const std::vector<int> &rows) const;
    static bool mayLeaveOut(const Sending &sending);
    void send();
    void settleSent(const std::vector<SentLok> &loks, const CarefulReport &report);
    static QByteArray fileFor(const QString &fileName, const std::vector<RosterLoco> &locos);
    void save();
    void showInEditor();
    void compare();

    Lokliste list;
    LokTable *model;
    LokFilter *shown;
    FrozenTable *table;
    QMenuBar *menus;
    QLineEdit *filterTxt;
    QComboBox *stateBox;
    QLabel *countLbl;
    QComboBox *sentBox;
    QCheckBox *verifyChk;
    QCheckBox *saveBeforeChk;
    QPushButton *sendBut = nullptr;
    QPushButton *closeBut = nullptr;
    QAction *undoAction = nullptr;
    QAction *redoAction = nullptr;
    std::optional<LocoRecord> copiedFunctions;
    QString lastRead = QStringLiteral("1-9999"); // addresses that were read last
};

} // namespace hr::ui
