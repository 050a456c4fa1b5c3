#include "ui/editors/route_editor.h"

#include "handheld/table_entries.h"
#include "platform/text.h"
#include "shown/tables.h"
#include "ui/common/progress.h"
#include "ui/editors/cell_input.h"
#include "ui/widgets/grid.h"

#include <algorithm>

namespace hr::ui
{

namespace
{

enum Column { NumberColumn, AddressColumn, FreeColumn, OccupiedColumn };
constexpr quint8 FreeTrigger = 0;
constexpr quint8 OccupiedTrigger = 1;

Route RouteOfRow(int row)
{
    return RouteAt(FsDaten, static_cast<size_t>(row));
}

void SetFeedback(int row, int address)
{
    Route route = RouteOfRow(row);
    route.feedback = address;
    LayRoute(FsDaten, static_cast<size_t>(row), route);
}

void SetTrigger(int row, quint8 trigger)
{
    Route route = RouteOfRow(row);
    route.trigger = trigger;
    LayRoute(FsDaten, static_cast<size_t>(row), route);
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

std::vector<quint8> RouteEditor::entries() const
{
    return {FsDaten.begin(), FsDaten.end()};
}

void RouteEditor::setEntries(const std::vector<quint8> &entries)
{
    std::ranges::copy(entries, FsDaten.begin());
}

QString RouteEditor::lay(int row, int column, const QString &text)
{
    if (column != AddressColumn) {
        const QString mark = text.trimmed();
        if (!mark.isEmpty() && mark.compare(u"X", Qt::CaseInsensitive) != 0)
            return QStringLiteral("erlaubt ist nur X oder nichts");
        const bool occupied = (column == OccupiedColumn) == !mark.isEmpty();
        SetTrigger(row, occupied ? OccupiedTrigger : FreeTrigger);
        showTrigger(row, occupied);
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
    const Route route = RouteOfRow(row);
    grid->setText(row, AddressColumn, AddressText(route.feedback));
    showTrigger(row, route.occupied());
}

void RouteEditor::showTrigger(int row, bool occupied)
{
    grid->setText(row, FreeColumn, occupied ? QString() : QStringLiteral("X"));
    grid->setText(row, OccupiedColumn, occupied ? QStringLiteral("X") : QString());
}

bool RouteEditor::takesInput(int column) const
{
    return column == AddressColumn;
}

void RouteEditor::actOn(int row, int column)
{
    if (column == AddressColumn && !typeAddress(row))
        return;
    const bool occupied = column == OccupiedColumn;
    if (column == FreeColumn || column == OccupiedColumn)
        showTrigger(row, occupied);
    SetTrigger(row, occupied ? OccupiedTrigger : FreeTrigger);
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
    SetFeedback(row, address);
    return true;
}

} // namespace hr::ui
