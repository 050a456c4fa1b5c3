#include "handheld/table_entries.h"
#include "jobs/change.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

class Changes : public VirtualWorld
{
};

TEST_F(Changes, OfTablesAreToldByWhatTheEntriesMean)
{
    Routes routes{};
    Routes others = routes;
    LayRoute(routes, 2, {77, 1});
    LayRoute(others, 2, {17, 0});
    LayRoute(routes, 79, {4096, 1});
    LayRoute(others, 79, {0xFFFF, 1});
    routes.at(3) = 0xA5; // which nobody interprets
    AccessoryList places{};
    places.fill(0xFF);
    AccessoryList otherPlaces = places;
    AccessoryPlace place = PlaceAt(places, 31);
    place.address = 2048;
    place.setDesignation(QStringLiteral("w"));
    LayPlace(otherPlaces, 31, place);
    Assignment assignment{};
    Assignment otherAssignment{};
    otherAssignment.at(2047) = 9;
    const std::tuple<RecordValue, RecordValue, const char *> rows[] = {
        {routes, others,
            "Fahrstraße 1: Bytes 00 00 00 A5 → 00 00 00 00; Fahrstraße 3: Rückmelder 77 → 17, Auslösung besetzt → "
            "frei; "
            "Fahrstraße 80: Rückmelder 4096 → -"},
        {places, otherPlaces, "Platz 32: Adresse - → 2048, Bezeichnung - → W"},
        {assignment, otherAssignment, "Adresse 2048: Symbol 0 → 9"}};
    for (const auto &[from, to, text] : rows)
        EXPECT_EQ(FieldsText({{}, Change::Changed, to, from, {}}), QString::fromUtf8(text));
}

} // namespace hr::tests
