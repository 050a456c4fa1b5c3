// "Mag.Art. Symbole zuordnen": which symbol the handheld shows for each accessory address.
//
// Grid MagSymZuordTab, row a - 1 = accessory address a: address, red picture, green picture.
#pragma once

#include "ui/editors/block_editor.h"

namespace hr::ui
{

class AssignmentEditor : public BlockEditor
{
    Q_OBJECT

public:
    AssignmentEditor();

protected:
    Outcome readTable() override;
    [[nodiscard]] std::function<Outcome()> writeOfTable() const override;
    [[nodiscard]] std::vector<quint8> entries() const override;
    void setEntries(const std::vector<quint8> &entries) override;
    [[nodiscard]] int symbolOf(int row) const override;
    void setSymbol(int row, int symbol) override;
    QString lay(int row, int column, const QString &text) override;
    /// One pick for all marked rows when the current one is among them.
    void actOn(int row, int column) override;
    [[nodiscard]] bool takesInput(int column) const override;

private:
    void fillTable();
    [[nodiscard]] std::vector<int> rowsToPickFor(int row) const;
};

} // namespace hr::ui
