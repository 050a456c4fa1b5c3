#include "ui/editors/assignment_editor.h"

#include "program/run_control.h"
#include "shown/catalogue.h"
#include "shown/tables.h"
#include "ui/common/progress.h"
#include "ui/widgets/build_controls.h"
#include "ui/widgets/grid.h"

#include <algorithm>

namespace hr::ui
{

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
quint8 &EntryOfRow(int row)
{
    return MagZuordDaten.at(static_cast<size_t>(row));
}

} // namespace

AssignmentEditor::AssignmentEditor() : BlockEditor(Look(), MagSymZuordLoaded)
{
    grid->selectRows();
    grid->setCurrentCell(0, RedColumn);
    NamedAction(QStringLiteral("SymbolAction"), QStringLiteral("Symbol für die markierten Zeilen wählen"), {}, grid,
        [this] { Q_EMIT grid->cellActed(grid->currentRow(), grid->currentColumn()); });
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
        showSymbol(row);
    }
}

std::vector<quint8> AssignmentEditor::entries() const
{
    return {MagZuordDaten.begin(), MagZuordDaten.end()};
}

void AssignmentEditor::setEntries(const std::vector<quint8> &entries)
{
    std::ranges::copy(entries, MagZuordDaten.begin());
}

int AssignmentEditor::symbolOf(int row) const
{
    return EntryOfRow(row);
}

void AssignmentEditor::setSymbol(int row, int symbol)
{
    EntryOfRow(row) = static_cast<quint8>(symbol);
}

QString AssignmentEditor::lay(int row, int /*column*/, const QString &text)
{
    return laySymbol(row, text);
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
    const std::vector<int> rows = rowsToPickFor(row);
    const int chosen = pickAccessorySymbol(EntryOfRow(row));
    grid->setCurrentCell(row, RedColumn);
    for (const int marked : rows) { // they stay marked, whatever was clicked meanwhile
        grid->selectionModel()->select(
            grid->model()->index(marked, RedColumn), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        if (chosen == NothingChosen)
            continue;
        setSymbol(marked, chosen);
        showSymbol(marked);
    }
}

std::vector<int> AssignmentEditor::rowsToPickFor(int row) const
{
    std::vector<int> marked = grid->markedRows();
    return std::ranges::find(marked, row) != marked.end() ? marked : std::vector<int>{row};
}

} // namespace hr::ui
