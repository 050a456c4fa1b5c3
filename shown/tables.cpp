#include "shown/tables.h"

#include "program/ask.h"
#include "shown/record.h"

namespace hr::shown
{

Routes FsDaten{};
Assignment MagZuordDaten{};
AccessoryList MagListeDaten{};
bool RoutesLoaded = false;
bool MagSymZuordLoaded = false;
bool MagListeLoaded = false;

namespace
{

template <typename Table> Outcome Take(const Result<Table> &read, Table &shown)
{
    if (!read.outcome.brokenOff())
        shown = read.value;
    return read.outcome;
}

} // namespace

Outcome ReadRoutes()
{
    return Take(ReadRouteTable(SpiBuf), FsDaten);
}

Outcome ReadMagListe()
{
    return Take(ReadAccessoryList(SpiBuf), MagListeDaten);
}

Outcome ReadMagZuordnung()
{
    const auto showGroup = [](int group) {
        TheAsk().showProgress(QStringLiteral("Lese Zuordnungsdaten ") + QString::number(group));
    };
    return Take(ReadAssignment(SpiBuf, showGroup), MagZuordDaten);
}

Outcome WriteRoutes(const Routes &routes)
{
    return WriteRouteTable(SpiBuf, routes, Patience::Agreed).outcome;
}

Outcome WriteMagListe(const AccessoryList &list)
{
    return WriteAccessoryList(SpiBuf, list, Patience::Agreed).outcome;
}

Outcome WriteMagZuordnung(const Assignment &assignment)
{
    return WriteAssignment(SpiBuf, assignment, Patience::Agreed).outcome;
}

void ResetShownTables()
{
    FsDaten = {};
    MagZuordDaten = {};
    MagListeDaten = {};
    RoutesLoaded = MagSymZuordLoaded = MagListeLoaded = false;
}

} // namespace hr::shown
