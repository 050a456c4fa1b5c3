// The three tables that are read and written as whole blocks: routes, accessory symbol assignment, accessory list.
//
//   block                        flash bytes            bytes  array index
//   routes                       0x3F0204 .. 0x3F0343     320  page offset - 4, 0..319
//   accessory list               0x3F0808 .. 0x3F0907     256  page offset - 8, 0..255
//   accessory symbol assignment  0x0E0001 .. 0x0E0800    2048  accessory address - 1, 0..2047
//
// Route n (1..80), four bytes from index (n - 1) x 4:
//   0-1  feedback address, high byte first; above 4096 = none (erased: 0xFFFF)
//   2    bit 0: 0 = triggered when the section becomes free, 1 = occupied
//   3    not interpreted
// Place p (1..32) of the accessory list, eight bytes from index (p - 1) x 8:
//   0-1  accessory address, high byte first
//   2-3  designation, two of the handheld's character codes
//   4    accessory symbol number, 0..255
//   5-7  not interpreted
// Assignment: one byte for each accessory address, its symbol number; erased (255) is symbol number 255.
//
// Reads go on after a time-out (each shows its "Timeout" box); what was not received is then whatever the image held,
// and the outcome says so. They end at once when the port is closed or lost or the program ends.
#pragma once

#include "handheld/page_sequence.h"

#include <functional>
#include <vector>

namespace hr::handheld
{

constexpr int RouteCount = 80;
constexpr int RouteSize = 4;
constexpr int LastFeedbackAddress = 4096;
constexpr int PlaceCount = 32;
constexpr int PlaceSize = 8;
constexpr int LastAccessoryAddress = 2048;

/// A table of so many entries, one byte value each. It lies on the heap: a job holds thousands of records of which
/// few are tables.
template <size_t Size> class ByteTable
{
public:
    [[nodiscard]] quint8 &at(size_t index) { return bytes.at(index); }
    [[nodiscard]] const quint8 &at(size_t index) const { return bytes.at(index); }
    [[nodiscard]] auto begin() { return bytes.begin(); }
    [[nodiscard]] auto begin() const { return bytes.begin(); }
    [[nodiscard]] auto end() { return bytes.end(); }
    [[nodiscard]] auto end() const { return bytes.end(); }
    [[nodiscard]] quint8 *data() { return bytes.data(); }
    [[nodiscard]] const quint8 *data() const { return bytes.data(); }
    [[nodiscard]] static constexpr size_t size() { return Size; }
    void fill(quint8 value) { bytes.assign(Size, value); }
    bool operator==(const ByteTable &) const = default;

private:
    std::vector<quint8> bytes = std::vector<quint8>(Size, 0);
};

using Routes = ByteTable<size_t{RouteCount} * RouteSize>;
using AccessoryList = ByteTable<size_t{PlaceCount} * PlaceSize>;
using Assignment = ByteTable<LastAccessoryAddress>;

Result<Routes> ReadRouteTable(SpiImage &image, const Patience &patience = Patience::Agreed);

/// Writes the routes in one page program, without loading the page: its other bytes are programmed from what
/// buffer 1 holds.
PageResult WriteRouteTable(SpiImage &image, const Routes &routes, const Patience &patience);

Result<AccessoryList> ReadAccessoryList(SpiImage &image, const Patience &patience = Patience::Agreed);

/// Writes the accessory list in one page program, without loading the page, as the routes.
PageResult WriteAccessoryList(SpiImage &image, const AccessoryList &list, const Patience &patience);

/// Reads the assignment in 32 groups; onGroup is told the number of each (0..31) before it is read.
Result<Assignment> ReadAssignment(
    SpiImage &image, const std::function<void(int)> &onGroup, const Patience &patience = Patience::Agreed);

/// Writes the assignment page by page, each loaded first, so that bytes outside the table stay.
PageResult WriteAssignment(SpiImage &image, const Assignment &assignment, const Patience &patience);

} // namespace hr::handheld
