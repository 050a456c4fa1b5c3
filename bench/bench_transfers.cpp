// Prints what every kind of transfer costs: messages, simulated time at the 50 ms cadence, the pure line time of the
// same bytes, and the CPU time of program and simulation together.

#include "handheld/block_tables.h"
#include "handheld/discovery.h"
#include "handheld/loco_record.h"
#include "handheld/options.h"
#include "handheld/symbol_storage.h"
#include "link/open_port.h"
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

std::vector<Kind> Kinds()
{
    return {{"handheld search", ConnectHandheld}, {"read loco record", [] { ReadLocoRecord(3); }},
        {"write loco record", [] { WriteLocoRecord(3); }}, {"delete loco record", [] { DeleteLocoRecord(4); }},
        {"read loco symbol", [] { ReadLokSymbol(1); }}, {"write loco symbol", [] { WriteLokSymbol(1); }},
        {"read symbol half", [] { ReadFktSymbol(1, 0); }}, {"write symbol half", [] { WriteFktSymbol(1, 0); }},
        {"read start image", [] { ReadStartImage(); }}, {"write start image", [] { WriteStartImage(); }},
        {"read settings", [] { ReadSettingsBlock(); }}, {"write settings", [] { WriteSettingsBlock(); }},
        {"read routes", [] { ReadRoutes(); }}, {"write routes", [] { WriteRoutes(); }},
        {"read assignment", [] { ReadMagZuordnung(); }}, {"write assignment", [] { WriteMagZuordnung(); }},
        {"read accessory list", [] { ReadMagListe(); }}, {"write accessory list", [] { WriteMagListe(); }}};
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
