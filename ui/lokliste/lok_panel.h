// The locos of the handheld beside the editor: whatever is read, written, found or deleted anywhere is there at once. It is
// kept for the next start; another handheld, and the simulated one, have lists of their own.
#pragma once

#include "ui/lokliste/lok_table.h"

#include <QDateTime>
#include <QWidget>

class QLabel;
class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

namespace hr::ui
{

class LokPanelFilter;

class LokPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LokPanel(QWidget *parent);
    ~LokPanel() override;

    /// Port, interface or service may be others now: another handheld has another list.
    void showConnection();

    /// Something new is known of this address, or nothing of any any more (handheld/known_locos.h).
    void hear(int address);

Q_SIGNALS:
    /// The user wants to see and edit this loco.
    void locoChosen(int address);

private:
    void buildTable();
    void choose(const QModelIndex &index);
    void keep();
    void showCount();

    Lokliste list;
    LokTable *model;
    QSortFilterProxyModel *shown;
    QTableView *table;
    QLineEdit *filterTxt;
    QLabel *standLbl;
    QString handheld; // whose list this is; empty until one was found
    QDateTime stand;  // of what is shown
    bool changed = false;
};

} // namespace hr::ui
