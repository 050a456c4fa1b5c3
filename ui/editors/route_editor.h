// "Fahrstraßendaten ändern": feedback address and trigger of the handheld's 80 routes.
//
// Grid FSTab, row n - 1 = route n: number, feedback address ("-" = none, "ERR!" = rejected entry), "X" for free, "X"
// for occupied.
#pragma once

#include "ui/editors/block_editor.h"

/// The routes have been read since the program started. Set by the editor's read.
extern bool RoutesLoaded;

class RouteEditor : public BlockEditor
{
    Q_OBJECT

public:
    RouteEditor();

protected:
    ReadResult readTable() override;
    void writeTable() override;
    /// Every act that is not discarded also sets the route's trigger: occupied from the column "bes.", free from all
    /// others. The marks in the grid follow only in the two trigger columns.
    void actOn(int row, int column) override;
    [[nodiscard]] bool takesInput(int column) const override;

private:
    void showRoute(int row);
    void showTrigger(int row, int trigger);
    bool typeAddress(int row);
};
