// The three windows in which the user picks a symbol by looking: loco symbols, function symbols, accessory symbols.
#pragma once

#include "handheld/symbol_storage.h"

#include "ui/widgets/leavable_window.h"

class Grid;

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
    void fillRow(int number);
    void fitDescription();
    void choose(int row);

    SymbolKind kind;
    Grid *grid;
};

/// Lets the user pick a symbol: shows the kind's picker and waits for GewaehltesSymbol. Returns the number, or
/// NothingChosen after a cancel, the close box, Escape or the end of the program. The caller holds the busy scope.
int PickSymbol(SymbolKind kind, int presentNumber);

/// Writes a number's row anew after its file changed, with -1 all rows; no effect while the picker has never been opened.
void RefreshPickerRow(SymbolKind kind, int number);

/// Destroys the picker windows.
void ResetPickers();
