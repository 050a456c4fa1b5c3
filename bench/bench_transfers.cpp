// Prints what every kind of transfer costs: messages, simulated time at the 50 ms cadence, the pure line time of the
// same bytes, and the CPU time of program and simulation together.

#include "handheld/discovery.h"
#include "handheld/options.h"
#include "handheld/record_kinds.h"
#include "tests/support/virtual_world.h"

#include <cstdio>
#include <ctime>

namespace
{

constexpr double LongMessageMs = 31 * 0.6;
constexpr double ShortMessageMs = 4 * 0.6;

struct Kind {
    const char *name;
    std::function<void()> run;
};

SpiImage image{};

std::function<void()> Reading(const RecordId &id)
{
    return [id] { static_cast<void>(ReadRecord(image, id, [](int) {})); };
}

std::function<void()> Writing(const RecordId &id, const RecordValue &value)
{
    return [=] { static_cast<void>(WriteRecord(image, id, value, Patience::Agreed)); };
}

std::vector<Kind> Kinds()
{
    constexpr auto agreed = Patience::Agreed;
    const Picture start{StartImageGeometry, std::vector<int>(262, 0)};
    return {{"handheld search", [] { static_cast<void>(FindHandheld()); }},
        {"read loco record", Reading({KindLoco, 3})}, {"write loco record", Writing({KindLoco, 3}, LocoRecord{})},
        {"delete loco record", [] { static_cast<void>(DeleteLoco(image, 4, agreed)); }},
        {"read loco symbol", Reading({KindLokSymbol, 1})},
        {"write loco symbol", Writing({KindLokSymbol, 1}, EmptyPicture(SymbolKind::Loco))},
        {"read symbol half", Reading({KindFktSymbolOn, 1})},
        {"write symbol half", Writing({KindFktSymbolOn, 1}, EmptyPicture(SymbolKind::Function))},
        {"read start image", [] { static_cast<void>(ReadStartPicture(image)); }},
        {"write start image", [start] { static_cast<void>(WriteStartPicture(image, start, agreed)); }},
        {"read settings", [] { static_cast<void>(ReadSettingsBlock(image)); }},
        {"write settings", [] { static_cast<void>(WriteSettingsBlock(image, {}, agreed)); }},
        {"read routes", Reading({KindRoutes, 0})}, {"write routes", Writing({KindRoutes, 0}, Routes{})},
        {"read assignment", Reading({KindMagZuordnung, 0})},
        {"write assignment", Writing({KindMagZuordnung, 0}, Assignment{})},
        {"read accessory list", Reading({KindMagListe, 0})},
        {"write accessory list", Writing({KindMagListe, 0}, AccessoryList{})}};
}

} // namespace

class Bench : public VirtualWorld
{
protected:
    void measure(const Kind &kind)
    {
        layout().bus.log.clear();
        const int ticks = events.ticks;
        const qint64 start = events.nowUs;
        const std::clock_t cpu = std::clock();
        kind.run();
        const double cpuMs = 1000.0 * static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC;
        double lineMs = 0;
        for (const sim::BusMessage &message : layout().bus.log)
            lineMs += message.bytes.size() == 31 ? LongMessageMs : ShortMessageMs;
        const double timeMs = static_cast<double>(events.nowUs - start) / 1000;
        const int requests = messagesOnBus(0xED);
        std::printf("%-20s %4d messages %8.0f ms %8.1f ms line  ratio %4.1f  %4.2f ticks a message  %6.2f ms CPU\n",
            kind.name, requests, timeMs, lineMs, timeMs / lineMs,
            static_cast<double>(events.ticks - ticks) / requests, cpuMs);
    }
};

TEST_F(Bench, Transfers)
{
    connectDirectly();
    flash().setBytes(192, QByteArray(64, '\x0A'));
    for (const Kind &kind : Kinds())
        measure(kind);
}
