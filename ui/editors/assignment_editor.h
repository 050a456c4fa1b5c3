// "Mag.Art. Symbole zuordnen": which symbol the handheld shows for each accessory address.
//
// Grid MagSymZuordTab, row a - 1 = accessory address a: address, red picture, green picture.
#pragma once

#include "ui/editors/block_editor.h"

/// The assignment has been read since the program started. Set by the editor's read.
extern bool MagSymZuordLoaded;

class AssignmentEditor : public BlockEditor
{
    Q_OBJECT

public:
    AssignmentEditor();

protected:
    ReadResult readTable() override;
    void writeTable() override;
    void actOn(int row, int column) override;
    [[nodiscard]] bool takesInput(int column) const override;

private:
    void fillTable();
};
