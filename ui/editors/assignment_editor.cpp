#include "ui/editors/assignment_editor.h"

#include "handheld/block_tables.h"
#include "platform/run_control.h"
#include "ui/catalogues/symbol_catalogue.h"
#include "ui/grid.h"
#include "ui/progress.h"

#include <array>
#include <optional>

bool MagSymZuordLoaded = false;

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

size_t AccessoryOfRow(int row)
{
    return static_cast<size_t>(row) + 1;
}

} // namespace

AssignmentEditor::AssignmentEditor() : BlockEditor(Look(), MagSymZuordLoaded)
{
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setCurrentCell(0, RedColumn);
}

BlockEditor::ReadResult AssignmentEditor::readTable()
{
    const Progress progress(QStringLiteral("Lese Zuordnungsdaten"));
    const int status = ReadMagZuordnung();
    if (TransferBrokenOff())
        return ReadResult::BrokenOff;
    TheFrontend().setProgressText(QStringLiteral("Schreibe Tabelle"));
    WaitSeconds(ShortPauseSeconds);
    fillTable();
    WaitSeconds(ShortPauseSeconds);
    return status == 0 ? ReadResult::Complete : ReadResult::TimedOut;
}

void AssignmentEditor::fillTable()
{
    // Each symbol's pictures are looked up once, not once for each of the addresses that show it.
    std::array<std::optional<SymbolPictures>, CatalogueSize> known;
    for (int row = 0; row < LastAccessoryAddress; ++row) {
        const int accessory = row + 1;
        if (accessory % ProgressStep == 0) {
            TheFrontend().setProgressText(QStringLiteral("Schreibe Tabelle ") + QString::number(accessory));
            LetEventsRun();
        }
        const int symbol = MagZuordDaten.at(AccessoryOfRow(row));
        auto &pictures = known.at(static_cast<size_t>(symbol));
        if (!pictures)
            pictures = AccessoryPictures(symbol);
        showPictures(row, RedColumn, *pictures);
    }
}

void AssignmentEditor::writeTable()
{
    // The route editor's text, on purpose.
    const Progress progress(QStringLiteral("Schreibe Fahrstraßen"));
    WriteMagZuordnung();
}

bool AssignmentEditor::takesInput(int /*column*/) const
{
    return false;
}

void AssignmentEditor::actOn(int row, int /*column*/)
{
    int &symbol = MagZuordDaten.at(AccessoryOfRow(row));
    const int chosen = pickAccessorySymbol(symbol);
    grid->setCurrentCell(row, RedColumn);
    if (chosen == NothingChosen)
        return;
    symbol = chosen;
    showPictures(row, RedColumn, AccessoryPictures(symbol));
}
