// Prints what every kind of transfer costs, at both cadences: messages, simulated time, the limit (the line times of the
// messages, the answer times of the handheld, and in the fast cadence the rests after page programs) with the ratio to
// it, and the CPU time of program and simulation together.

#include "handheld/discovery.h"
#include "handheld/options.h"
#include "handheld/record_kinds.h"
#include "jobs/backup.h"
#include "jobs/careful_job.h"
#include "link/cadence.h"
#include "platform/disk.h"
#include "platform/qt/machine_disk.h"
#include "tests/support/virtual_world.h"

#include <QSaveFile>

#include <chrono>
#include <cstdio>
#include <ctime>

namespace hr::tests
{

namespace
{

class YesFace : public JobFace
{
public:
    [[nodiscard]] QString handheld() const override { return QStringLiteral("51201 1.2"); }
    [[nodiscard]] bool agrees(Topic, const BoxText &, bool) override { return true; }
    [[nodiscard]] Handheld handheldNow() override { return Handheld::Same; }
};

/// The machine's disk, and what of the real time goes by in it.
class TimedDisk : public MachineDisk
{
public:
    int flushes = 0;
    double ms = 0;

    [[nodiscard]] bool write(QFileDevice &file, const QByteArray &bytes) override
    {
        return timed([&] { return MachineDisk::write(file, bytes); });
    }
    [[nodiscard]] bool replace(QSaveFile &file) override
    {
        ++flushes; // of the new file
        return timed([&] { return MachineDisk::replace(file); });
    }
    bool remove(const QString &path) override
    {
        return timed([&] { return MachineDisk::remove(path); });
    }
    [[nodiscard]] bool flush(QFileDevice &file) override
    {
        ++flushes;
        return timed([&] { return MachineDisk::flush(file); });
    }
    [[nodiscard]] bool flushFolder(const QString &path) override
    {
        ++flushes;
        return timed([&] { return MachineDisk::flushFolder(path); });
    }

private:
    bool timed(const std::function<bool()> &work)
    {
        const auto start = std::chrono::steady_clock::now();
        const bool done = work();
        ms += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        return done;
    }
};

constexpr double RestMs = 60; // after each page program, in the fast cadence
constexpr int ProgramOpcode = 0x83;

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
    static constexpr Patience agreed = Patience::Agreed;
    const Picture start{StartImageGeometry, std::vector<quint8>(262, 0)};
    return {{"handheld search", [] { static_cast<void>(FindHandheld()); }},
        {"read loco record", Reading({RecordKind::Loco, 3})},
        {"write loco record", Writing({RecordKind::Loco, 3}, LocoRecord{})},
        {"delete loco record", [] { static_cast<void>(DeleteLoco(image, 4, agreed)); }},
        {"read loco symbol", Reading({RecordKind::LocoSymbol, 1})},
        {"write loco symbol", Writing({RecordKind::LocoSymbol, 1}, EmptyPicture(SymbolKind::Loco))},
        {"read symbol half", Reading({RecordKind::FunctionOn, 1})},
        {"write symbol half", Writing({RecordKind::FunctionOn, 1}, EmptyPicture(SymbolKind::Function))},
        {"read start image", [] { static_cast<void>(ReadStartPicture(image)); }},
        {"write start image", [start] { static_cast<void>(WriteStartPicture(image, start, agreed)); }},
        {"read settings", [] { static_cast<void>(ReadSettingsBlock(image)); }},
        {"write settings", [] { static_cast<void>(WriteSettingsBlock(image, {}, agreed)); }},
        {"read routes", Reading({RecordKind::RouteTable, 0})},
        {"write routes", Writing({RecordKind::RouteTable, 0}, Routes{})},
        {"read assignment", Reading({RecordKind::AssignmentTable, 0})},
        {"write assignment", Writing({RecordKind::AssignmentTable, 0}, Assignment{})},
        {"read accessory list", Reading({RecordKind::PlaceTable, 0})},
        {"write accessory list", Writing({RecordKind::PlaceTable, 0}, AccessoryList{})}};
}

} // namespace

class Bench : public VirtualWorld
{
protected:
    void SetUp() override
    {
        connectDirectly();
        flash().setBytes(192, QByteArray(64, '\x0A'));
        events.limitSeconds = 1e9;
    }

    /// From the start of each request on the bus to the end of what answers it.
    double exchangeMs()
    {
        qint64 us = 0;
        qint64 start = 0;
        for (const sim::BusMessage &message : layout().bus.log) {
            if (message.sender == sim::Sender::Pc)
                start = message.startUs;
            else
                us += message.endUs() - start;
        }
        return static_cast<double>(us) / 1000;
    }

    void measure(const Kind &kind)
    {
        layout().bus.log.clear();
        const int ticks = events.ticks;
        const int programs = executed(ProgramOpcode);
        const qint64 start = events.nowUs;
        const std::clock_t cpu = std::clock();
        kind.run();
        const double cpuMs = 1000.0 * static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC;
        const int programmed = executed(ProgramOpcode) - programs;
        const bool fast = CurrentCadence() == Cadence::Events;
        if (fast && programmed > 0) // the last rest belongs to it
            events.run(RestMs / 1000);
        const double limitMs = exchangeMs() + (fast ? RestMs * programmed : 0);
        const double timeMs = static_cast<double>(events.nowUs - start) / 1000;
        const int requests = messagesOnBus(0xED);
        std::printf("%-24s %6d messages %9.0f ms  limit %9.0f ms  ratio %5.2f  %4.2f ticks a message  CPU %5.2f %%\n",
            kind.name, requests, timeMs, limitMs, timeMs / limitMs,
            static_cast<double>(events.ticks - ticks) / requests, 100 * cpuMs / timeMs);
    }

    void measureAll()
    {
        for (const Kind &kind : Kinds())
            measure(kind);
        measureCareful();
    }

    /// Eight neighbours in one page, looked at and written: alone, proved by the chip and by reading back, and saved before.
    void measureCareful()
    {
        std::vector<Step> steps;
        for (int n = 16; n < 24; ++n)
            steps.push_back(
                {StepKind::Write, {RecordKind::Loco, n}, LocoRecord{.name = FitLocoName(QStringLiteral("X"))}, {}});
        measure({"8 neighbours, look", [&] { static_cast<void>(LookAt(steps)); }});
        YesFace face;
        const auto write = [&](const WriteOptions &options) {
            CarefulJob job;
            job.steps = steps;
            job.options = options;
            return [job, &face] { static_cast<void>(RunCarefulJob(job, face)); };
        };
        measure({"8 neighbours, write", write({true, false, false})});
        measure({"8 neighbours, verify", write({true, true, false})});
        measure({"8 neighbours, save too", write({true, true, true})});
    }
};

/// What the disk costs a proved job of 300 pages with journal and snapshot: its real time beside the bus's simulated one.
TEST_F(Bench, TheDiskOfACarefulJob)
{
    std::vector<Step> steps;
    steps.reserve(300);
    for (int page = 0; page < 300; ++page)
        steps.push_back({StepKind::Write, {RecordKind::Loco, 8 + page * 8},
            LocoRecord{.name = FitLocoName(QStringLiteral("X"))}, {}});
    YesFace face;
    for (const Cadence cadence : {Cadence::Ticks, Cadence::Events}) {
        ChooseCadence(cadence);
        flash().setBytes(0, QByteArray(qsizetype{64} * 9999, '\xFF'));
        CarefulJob job;
        job.fileName = folder.filePath(QStringLiteral("bench.csv"));
        job.steps = steps;
        TimedDisk disk;
        InstallDisk(&disk);
        const qint64 start = events.nowUs;
        const int programs = executed(ProgramOpcode);
        static_cast<void>(RunCarefulJob(job, face));
        InstallDisk(nullptr);
        const double busMs = static_cast<double>(events.nowUs - start) / 1000;
        std::printf("300 pages proved, %-6s %9.0f ms  %d programs  disk %6.0f ms in %d flushes: %4.2f %%\n",
            cadence == Cadence::Ticks ? "ticks" : "events", busMs, executed(ProgramOpcode) - programs, disk.ms,
            disk.flushes, 100 * disk.ms / busMs);
    }
}

/// Runs a backup of what the selection names, as a transfer of its own.
Kind BackupOf(const char *name, const QString &folder, const BackupSelection &selection)
{
    return {name, [=] { static_cast<void>(Backup(folder + QStringLiteral("/bench.dds"), selection)); }};
}

TEST_F(Bench, Ticks)
{
    measureAll();
}

TEST_F(Bench, Events)
{
    ChooseCadence(Cadence::Events);
    measureAll();
}

TEST_F(Bench, LongJobsInEvents)
{
    ChooseCadence(Cadence::Events);
    user.acceptAnyBox();
    flash().setBytes(TextTableAddress, QByteArray(32, '\x05')); // no handheld is without texts
    BackupSelection search;
    search.lokSuche = true;
    search.lokSucheStart = 10;
    search.lokSucheStop = 9999;
    measure(BackupOf("search 10-9999", folder.path(), search));
    BackupSelection symbols;
    symbols.magSymZuord = true;
    for (const auto kind : {LokSymbolList, FktSymbolList, MagSymbolList})
        symbols.numbered.at(kind) = {true, true, {}};
    measure(BackupOf("all symbols, assignment", folder.path(), symbols));
    flash().setBytes(64, QByteArray(qsizetype{64} * 9999, '\x0A'));
    BackupSelection locos;
    locos.numbered.at(LokDatenList) = {true, false, QStringLiteral("1-9999")};
    measure(BackupOf("read locos 1-9999", folder.path(), locos));
}

} // namespace hr::tests
