// The entries of the three tables as values: routes, places of the accessory list; an entry of the assignment is a symbol
// number. Where the bytes lie says handheld/block_tables.h; bytes that nobody interprets stay as they are in the table.
#pragma once

#include "handheld/block_tables.h"
#include "handheld/record_kinds.h"

#include <QStringList>

namespace hr::handheld
{

/// A route, as it is stored: what stands for none, and the bits beside the trigger, come back as they were.
struct Route {
    int feedback = 0xFFFF; // 1..4096; every other number is none
    quint8 trigger = 0;    // bit 0: 0 = when the section becomes free, 1 = occupied

    [[nodiscard]] bool hasFeedback() const { return feedback >= 1 && feedback <= LastFeedbackAddress; }
    [[nodiscard]] bool occupied() const { return (trigger & 1) == 1; }
    bool operator==(const Route &) const = default;
};

constexpr int DesignationLength = 2;

/// A place of the accessory list, as it is stored.
struct AccessoryPlace {
    int address = 0xFFFF;                                // 1..2048; every other number is none
    std::array<quint8, DesignationLength> designation{}; // codes of the character set
    quint8 symbol = 0;

    [[nodiscard]] bool hasAddress() const { return address >= 1 && address <= LastAccessoryAddress; }
    [[nodiscard]] bool hasDesignation() const; // false where a code is not defined: erased
    [[nodiscard]] QString designationText() const;
    void setDesignation(const QString &text);
    bool operator==(const AccessoryPlace &) const = default;
};

/// Entry n, counted from 0, out of a table and back into it.
Route RouteAt(const Routes &routes, size_t n);
void LayRoute(Routes &routes, size_t n, const Route &route);
AccessoryPlace PlaceAt(const AccessoryList &list, size_t n);
void LayPlace(AccessoryList &list, size_t n, const AccessoryPlace &place);

/// What the fields of an entry are: indexes of KindRow::fields and of EntryTexts.
enum RouteField { RouteFeedback, RouteTrigger };
enum PlaceField { PlaceAddress, PlaceDesignation, PlaceSymbol };
constexpr int AssignmentSymbol = 0;

/// "besetzt" or "frei".
QString TriggerText(bool occupied);

/// The fields of a table's entry as texts; what is none is empty.
QStringList EntryTexts(const RecordValue &table, size_t n);

/// All bytes of a table's entry.
QByteArray EntryBytes(const RecordValue &table, size_t n);

} // namespace hr::handheld
