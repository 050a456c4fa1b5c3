// "Mag.Art. Liste ändern": address, designation and symbol of the 32 places of the handheld's accessory list.
//
// Grid MagListeTab, row p - 1 = place p: number, address ("ERR!" = rejected entry), designation, red picture, green
// picture.
#pragma once

#include "ui/editors/block_editor.h"

namespace hr::ui
{

class AccessoryListEditor : public BlockEditor
{
    Q_OBJECT

public:
    AccessoryListEditor();

protected:
    Outcome readTable() override;
    [[nodiscard]] std::function<Outcome()> writeOfTable() const override;
    [[nodiscard]] std::vector<quint8> entries() const override;
    void setEntries(const std::vector<quint8> &entries) override;
    [[nodiscard]] int symbolOf(int row) const override;
    void setSymbol(int row, int symbol) override;
    QString lay(int row, int column, const QString &text) override;
    void actOn(int row, int column) override;
    [[nodiscard]] bool takesInput(int column) const override;

private:
    void showPlace(int row);
    static bool takeAddress(int row, int address);
    void takeDesignation(int row, const QString &text);
    void pickSymbol(int row);
};

} // namespace hr::ui
