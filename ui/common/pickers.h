// The three windows in which the user picks a symbol by looking: loco symbols, function symbols, accessory symbols.
//
// Row index and symbol number are the same: search and "nur belegte" hide rows and never move one. What was picked last
// in this run stands above the grid.
#pragma once

#include "handheld/symbol_storage.h"

#include "ui/widgets/leavable_window.h"

#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace hr::ui
{

class Grid;
class PictureBox;

class SymbolPicker : public LeavableWindow
{
    Q_OBJECT

public:
    explicit SymbolPicker(SymbolKind kind);

    /// Writes the row of a symbol number from the catalogue anew.
    void refreshRow(int number);

    /// Shows the window and scrolls to a number.
    void open(int presentNumber);

protected:
    /// Leaving means that nothing was chosen.
    void leave() override;

private:
    void buildGrid();
    void buildSearch();
    void buildRecent();
    void buildLayout();
    void orderTabs();
    void fillRow(int number);
    void fitDescription();
    void showRecent();
    void filterRows();
    [[nodiscard]] bool isWanted(int number) const;
    [[nodiscard]] bool hasPicture(int number) const;
    void chooseOnlyRow();
    void choose(int row);

    SymbolKind kind;
    Grid *grid;
    QLineEdit *searchTxt;
    QCheckBox *usedOnlyChk;
    QLabel *recentLbl;
    std::vector<PictureBox *> recentBoxes;
    std::vector<int> recent; // numbers, the last one first
};

/// Lets the user pick a symbol: shows the kind's picker and waits for GewaehltesSymbol. Returns the number, or
/// NothingChosen after a cancel, the close box, Escape or the end of the program. The caller holds the busy scope.
int PickSymbol(SymbolKind kind, int presentNumber);

/// Writes a number's row anew after its file changed, with -1 all rows; no effect while the picker has never been
/// opened.
void RefreshPickerRow(SymbolKind kind, int number);

/// Destroys the picker windows.
void ResetPickers();

} // namespace hr::ui
