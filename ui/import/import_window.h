// The locos that a download brought: corrected here, then sent to the handheld or saved in a backup file. A click on a
// column's head sorts; a check mark beside the address says that the handheld is known to hold this loco already.
#pragma once

#include "station/download.h"
#include "ui/widgets/leavable_window.h"

class QLabel;
class QLineEdit;
class QTableWidgetItem;

namespace hr::ui
{

class Grid;

class ImportWindow : public LeavableWindow
{
    Q_OBJECT

public:
    ImportWindow();

    /// Shows the locos of a download.
    void load(const Download &download);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void buildGrid();
    void buildLayout();
    void fillRow(int row);
    void fillAddress(int row);
    void refreshMarks();
    void sortBy(int column);
    void fitWidth();
    void fillName(int row);
    void actOn(int row, int column);
    void editName(int row);
    void nameEdited(QTableWidgetItem *item);
    void pickSymbol(int row);
    void filterRows();
    void showCount();
    [[nodiscard]] std::vector<int> chosenRows() const;
    [[nodiscard]] std::vector<DownloadedLoco> chosenLocos() const;
    void send();
    void save();

    std::vector<DownloadedLoco> locos; // by row
    int unusable = 0;
    Grid *grid;
    QLineEdit *filterTxt;
    QLabel *countLbl;
    QLabel *markLbl;
    int sortColumn = -1; // none: the station's order
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    bool filling = false; // the program writes cells, not the user
};

/// "Lokdaten aus ... holen": opens the port when it is closed, downloads, shows the import window.
void FetchStationLocos();

/// Destroys the window. To be called while the application lives.
void ResetImportWindow();

} // namespace hr::ui
