#include "ui/editors/assignment_editor.h"

#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/tables.h"
#include "ui/common/progress.h"
#include "ui/widgets/grid.h"

namespace
{

constexpr int RedColumn = 1;
constexpr int ProgressStep = 200; // rows between two progress texts

BlockEditorLook Look()
{
    return {QStringLiteral("MagSymZuordWin"), QStringLiteral("Mag.Art. Symbole zuordnen"),
        QStringLiteral("MagSymZuordTab"), {QStringLiteral("Adr."), QString(), QString()}, {90, 100, 100},
        LastAccessoryAddress, QStringLiteral("LeseSymZuordBut"), QStringLiteral("Lese Zuordnungsdaten"),
        QStringLiteral("SchreibeSymZuordBut"), QStringLiteral("Schreibe Zuordnungsdaten")};
}

/// The assignment's entry that a row shows: row and entry both count from the accessory address 1.
int &EntryOfRow(int row)
{
    return MagZuordDaten.at(static_cast<size_t>(row));
}

} // namespace

AssignmentEditor::AssignmentEditor() : BlockEditor(Look(), MagSymZuordLoaded)
{
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setCurrentCell(0, RedColumn);
}

Outcome AssignmentEditor::readTable()
{
    const Progress progress(QStringLiteral("Lese Zuordnungsdaten"));
    Outcome outcome = ReadMagZuordnung();
    if (outcome.brokenOff())
        return outcome;
    TheAsk().showProgress(QStringLiteral("Schreibe Tabelle"));
    WaitSeconds(ShortPauseSeconds);
    fillTable();
    WaitSeconds(ShortPauseSeconds);
    return outcome;
}

void AssignmentEditor::fillTable()
{
    for (int row = 0; row < LastAccessoryAddress; ++row) {
        const int accessory = row + 1;
        if (accessory % ProgressStep == 0) {
            TheAsk().showProgress(QStringLiteral("Schreibe Tabelle ") + QString::number(accessory));
            LetEventsRun();
        }
        showSymbol(row, RedColumn, EntryOfRow(row));
    }
}

std::vector<int> AssignmentEditor::entries() const
{
    return {MagZuordDaten.begin(), MagZuordDaten.end()};
}

std::function<Outcome()> AssignmentEditor::writeOfTable() const
{
    return [assignment = MagZuordDaten] {
        const Progress progress(QStringLiteral("Schreibe Fahrstraßen")); // the route editor's text, on purpose
        return WriteMagZuordnung(assignment);
    };
}

bool AssignmentEditor::takesInput(int /*column*/) const
{
    return false;
}

void AssignmentEditor::actOn(int row, int /*column*/)
{
    int &symbol = EntryOfRow(row);
    const int chosen = pickAccessorySymbol(symbol);
    grid->setCurrentCell(row, RedColumn);
    if (chosen == NothingChosen)
        return;
    symbol = chosen;
    showSymbol(row, RedColumn, symbol);
}
