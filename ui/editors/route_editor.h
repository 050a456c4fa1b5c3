// "Fahrstraßendaten ändern": feedback address and trigger of the handheld's 80 routes.
//
// Grid FSTab, row n - 1 = route n: number, feedback address ("-" = none, "ERR!" = rejected entry), "X" for free, "X"
// for occupied.
#pragma once

#include "ui/editors/block_editor.h"

namespace hr::ui
{

class RouteEditor : public BlockEditor
{
    Q_OBJECT

public:
    RouteEditor();

protected:
    Outcome readTable() override;
    [[nodiscard]] std::function<Outcome()> writeOfTable() const override;
    [[nodiscard]] std::vector<quint8> entries() const override;
    void setEntries(const std::vector<quint8> &entries) override;
    [[nodiscard]] int symbolOf(int /*row*/) const override { return 0; }
    void setSymbol(int /*row*/, int /*symbol*/) override { }
    /// An address leaves the trigger as it is. An empty cell of "frei" or "bes." means the other one of the two.
    QString lay(int row, int column, const QString &text) override;
    /// Every act that is not discarded also sets the route's trigger: occupied from the column "bes.", free from all
    /// others. The marks in the grid follow only in the two trigger columns.
    void actOn(int row, int column) override;
    [[nodiscard]] bool takesInput(int column) const override;

private:
    void showRoute(int row);
    void showTrigger(int row, bool occupied);
    bool typeAddress(int row);
    static bool takeAddress(int row, int address);
};

} // namespace hr::ui
