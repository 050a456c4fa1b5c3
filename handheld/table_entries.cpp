#include "handheld/table_entries.h"

#include "handheld/text_encoding.h"
#include "platform/text.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr size_t TriggerOffset = 2;
constexpr size_t DesignationOffset = 2;
constexpr size_t SymbolOffset = 4;

template <typename Table> int WordAt(const Table &table, size_t at)
{
    return table.at(at) * 256 + table.at(at + 1);
}

template <typename Table> void LayWord(Table &table, size_t at, int word)
{
    table.at(at) = static_cast<quint8>(word / 256);
    table.at(at + 1) = static_cast<quint8>(word % 256);
}

template <typename Table> QByteArray BytesOf(const Table &table, size_t first, size_t count)
{
    QByteArray bytes;
    for (size_t i = first; i < first + count; ++i)
        bytes += static_cast<char>(table.at(i));
    return bytes;
}

} // namespace

bool AccessoryPlace::hasDesignation() const
{
    return std::ranges::all_of(designation, [](quint8 code) { return code <= ZeichensatzLast; });
}

QString AccessoryPlace::designationText() const
{
    return DecodeName(designation, 0, DesignationLength);
}

void AccessoryPlace::setDesignation(const QString &text)
{
    EncodeName(text, designation, 0, DesignationLength);
}

Route RouteAt(const Routes &routes, size_t n)
{
    const size_t at = n * RouteSize;
    return {WordAt(routes, at), routes.at(at + TriggerOffset)};
}

void LayRoute(Routes &routes, size_t n, const Route &route)
{
    const size_t at = n * RouteSize;
    LayWord(routes, at, route.feedback);
    routes.at(at + TriggerOffset) = route.trigger;
}

AccessoryPlace PlaceAt(const AccessoryList &list, size_t n)
{
    const size_t at = n * PlaceSize;
    const size_t codes = at + DesignationOffset;
    return {WordAt(list, at), {list.at(codes), list.at(codes + 1)}, list.at(at + SymbolOffset)};
}

void LayPlace(AccessoryList &list, size_t n, const AccessoryPlace &place)
{
    const size_t at = n * PlaceSize;
    LayWord(list, at, place.address);
    std::ranges::copy(place.designation, list.begin() + static_cast<std::ptrdiff_t>(at + DesignationOffset));
    list.at(at + SymbolOffset) = place.symbol;
}

QString TriggerText(bool occupied)
{
    return occupied ? QStringLiteral("besetzt") : QStringLiteral("frei");
}

QStringList EntryTexts(const RecordValue &table, size_t n)
{
    if (const auto *routes = std::get_if<Routes>(&table)) {
        const Route route = RouteAt(*routes, n);
        return {route.hasFeedback() ? QString::number(route.feedback) : QString(), TriggerText(route.occupied())};
    }
    if (const auto *assignment = std::get_if<Assignment>(&table))
        return {QString::number(assignment->at(n))};
    const AccessoryPlace place = PlaceAt(std::get<AccessoryList>(table), n);
    return {place.hasAddress() ? QString::number(place.address) : QString(),
        place.hasDesignation() ? WithoutTrailingBlanks(place.designationText()) : QString(),
        QString::number(place.symbol)};
}

QByteArray EntryBytes(const RecordValue &table, size_t n)
{
    if (const auto *routes = std::get_if<Routes>(&table))
        return BytesOf(*routes, n * RouteSize, RouteSize);
    if (const auto *assignment = std::get_if<Assignment>(&table))
        return BytesOf(*assignment, n, 1);
    return BytesOf(std::get<AccessoryList>(table), n * PlaceSize, PlaceSize);
}

} // namespace hr::handheld
