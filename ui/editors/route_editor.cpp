#include "ui/editors/route_editor.h"

#include "platform/text.h"
#include "shown/tables.h"
#include "ui/common/progress.h"
#include "ui/editors/cell_input.h"
#include "ui/widgets/grid.h"

#include <algorithm>

namespace
{

enum Column { NumberColumn, AddressColumn, FreeColumn, OccupiedColumn };
constexpr int FreeTrigger = 0;
constexpr int OccupiedTrigger = 1;

constexpr size_t AddressOffset = 0;
constexpr size_t TriggerOffset = 2;

size_t Index(int row, size_t offset)
{
    return static_cast<size_t>(row * RouteSize) + offset;
}

BlockEditorLook Look()
{
    return {QStringLiteral("FSEdit"), QStringLiteral("Fahrstraßendaten ändern"), QStringLiteral("FSTab"),
        {QStringLiteral("FS"), QStringLiteral("Rm.Adr."), QStringLiteral("frei"), QStringLiteral("bes.")},
        {60, 110, 80, 80}, RouteCount, QStringLiteral("LeseFSDatenBut"), QStringLiteral("Lese Fahrstraßen"),
        QStringLiteral("SchreibeFSDatenBut"), QStringLiteral("Schreibe Fahrstraßen")};
}

QString AddressText(int address)
{
    return address > LastFeedbackAddress ? QStringLiteral("-") : QString::number(address);
}

} // namespace

RouteEditor::RouteEditor() : BlockEditor(Look(), RoutesLoaded) { }

Outcome RouteEditor::readTable()
{
    const Progress progress(QStringLiteral("Lese Fahrstraßen"));
    Outcome outcome = ReadRoutes();
    if (outcome.brokenOff())
        return outcome;
    for (int row = 0; row < RouteCount; ++row)
        showRoute(row);
    return outcome;
}

std::vector<int> RouteEditor::entries() const
{
    return {FsDaten.begin(), FsDaten.end()};
}

void RouteEditor::setEntries(const std::vector<int> &entries)
{
    std::ranges::copy(entries, FsDaten.begin());
}

QString RouteEditor::lay(int row, int column, const QString &text)
{
    if (column != AddressColumn) {
        const QString mark = text.trimmed();
        if (!mark.isEmpty() && mark.compare(u"X", Qt::CaseInsensitive) != 0)
            return QStringLiteral("erlaubt ist nur X oder nichts");
        const int trigger = (column == OccupiedColumn) == !mark.isEmpty() ? OccupiedTrigger : FreeTrigger;
        FsDaten.at(Index(row, TriggerOffset)) = trigger;
        showTrigger(row, trigger);
        return {};
    }
    if (!takeAddress(row, Val(text)))
        return QStringLiteral("erlaubt sind Zahlen von 1 bis %1").arg(LastFeedbackAddress);
    grid->setText(row, AddressColumn, QString::number(Val(text)));
    return {};
}

std::function<Outcome()> RouteEditor::writeOfTable() const
{
    return [routes = FsDaten] {
        const Progress progress(QStringLiteral("Schreibe Fahrstraßen"));
        return WriteRoutes(routes);
    };
}

void RouteEditor::showRoute(int row)
{
    const size_t at = Index(row, AddressOffset);
    grid->setText(row, AddressColumn, AddressText(FsDaten.at(at) * 256 + FsDaten.at(at + 1)));
    showTrigger(row, FsDaten.at(Index(row, TriggerOffset)) & 1);
}

void RouteEditor::showTrigger(int row, int trigger)
{
    grid->setText(row, FreeColumn, trigger == FreeTrigger ? QStringLiteral("X") : QString());
    grid->setText(row, OccupiedColumn, trigger == OccupiedTrigger ? QStringLiteral("X") : QString());
}

bool RouteEditor::takesInput(int column) const
{
    return column == AddressColumn;
}

void RouteEditor::actOn(int row, int column)
{
    if (column == AddressColumn && !typeAddress(row))
        return;
    const int trigger = column == OccupiedColumn ? OccupiedTrigger : FreeTrigger;
    if (column == FreeColumn || column == OccupiedColumn)
        showTrigger(row, trigger);
    FsDaten.at(Index(row, TriggerOffset)) = trigger;
}

bool RouteEditor::typeAddress(int row)
{
    const auto text = input->ask(row, AddressColumn);
    if (!text)
        return false;
    const bool taken = takeAddress(row, Val(*text));
    grid->setText(row, AddressColumn, taken ? *text : QStringLiteral("ERR!"));
    return true;
}

/// False when the address is none; the route keeps its own then.
bool RouteEditor::takeAddress(int row, int address)
{
    if (address < 1 || address > LastFeedbackAddress)
        return false;
    FsDaten.at(Index(row, AddressOffset)) = address / 256;
    FsDaten.at(Index(row, AddressOffset + 1)) = address % 256;
    return true;
}
