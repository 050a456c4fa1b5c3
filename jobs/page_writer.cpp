#include "jobs/page_writer.h"

#include <algorithm>

namespace
{

constexpr int WriteRepeats = 1; // of what reads back differently
constexpr int MostReads = 5;    // of a record without a sure answer

Plan ReadingPlan(const std::vector<RecordId> &ids)
{
    Plan plan{.steps = {},
        .progress = [](const Step &step) -> QString { return QStringLiteral("Lese ") + RecordName(step.id); },
        .patience = Patience::Quiet,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    for (const RecordId &id : ids)
        plan.steps.push_back({StepKind::Read, id, {}, {}});
    return plan;
}

bool IsUnsure(const JobEntry &entry)
{
    return entry.state == RecordState::Doubtful && !entry.outcome.ok();
}

PageResult Program(const std::vector<RecordChange> &changes, bool prove)
{
    const Patience patience = prove ? Patience::Verified : Patience::Quiet;
    SpiImage image{};
    image.fill(EmptyByte); // bytes that nobody lays
    const RecordChange &first = changes.front();
    if (!SharesPage(first.id.kind))
        return WriteRecord(image, first.id, first.wanted, patience);
    PageWrite page{PageAddressOf(first.id), true, {}};
    for (const RecordChange &change : changes) {
        const LocoBytes beneath = LocoBytesOf(WantedRecord(change)).value_or(LocoBytes());
        PagePart part = PartOf(change.id, change.wanted, beneath);
        if (change.wantedBytes)
            part.data.assign(beneath.begin(), beneath.end()); // a name too that has characters which nobody knows
        page.parts.push_back(std::move(part));
    }
    return ProgramPage(image, page, patience);
}

/// Reads a record that was just written, also when the user wants to stop: what was begun is proved.
Result<RecordChange> ReadAgain(const RecordChange &written)
{
    SpiImage image{};
    auto read = ReadRecord(
        image, written.id, [](int) {}, Patience::Quiet);
    for (int repeat = 1; repeat < MostReads && read.outcome.timedOut() && !TransferBrokenOff(); ++repeat)
        read = ReadRecord(
            image, written.id, [](int) {}, Patience::Quiet);
    RecordChange now = written;
    now.present = read.value;
    now.presentBytes.reset();
    if (written.id.kind == RecordKind::Loco) {
        now.presentBytes.emplace();
        std::copy_n(image.begin() + ReadPosition, LocoRecordSize, now.presentBytes->begin());
    }
    return {now, read.outcome};
}

bool IsAsWanted(const RecordChange &now)
{
    if (now.wantedBytes)
        return PresentRecord(now)->bytes == WantedRecord(now).bytes;
    return SameContent(*now.present, now.wanted);
}

/// Reads each written record again. What differs, or can't be read, is noted; true when something differs.
bool ReadBackDiffers(const std::vector<RecordChange> &changes, WrittenPage &page)
{
    bool differs = false;
    for (size_t i = 0; i < changes.size(); ++i) {
        const Result<RecordChange> read = ReadAgain(changes.at(i));
        if (!read.ok())
            page.states.at(i) = RecordState::Doubtful;
        else if (!IsAsWanted(read.value))
            page.states.at(i) = RecordState::Differs;
        differs = differs || page.states.at(i) == RecordState::Differs;
    }
    return differs;
}

} // namespace

Report ReadSurely(const std::vector<RecordId> &ids)
{
    int unsureInRow = 0;
    const Watcher watcher{{}, [&](const JobEntry &entry) { unsureInRow = IsUnsure(entry) ? unsureInRow + 1 : 0; },
        [&] { return unsureInRow < MostReads; }};
    Report report = RunJob(ReadingPlan(ids), watcher);
    for (int repeat = 1; repeat < MostReads && report.end == JobEnd::Complete; ++repeat) {
        std::vector<RecordId> again;
        for (const JobEntry &entry : report.entries) {
            if (IsUnsure(entry))
                again.push_back(entry.step.id);
        }
        const Report read = RunJob(ReadingPlan(again), watcher);
        report.end = read.end;
        for (const JobEntry &entry : read.entries)
            *std::ranges::find(report.entries, entry.step.id, [](const JobEntry &old) { return old.step.id; }) =
                entry;
    }
    if (report.end == JobEnd::Stopped && unsureInRow >= MostReads)
        report.end = JobEnd::NoAnswer;
    return report;
}

std::vector<std::vector<RecordChange>> ByPage(const std::vector<RecordChange> &changes)
{
    std::vector<std::vector<RecordChange>> groups;
    std::map<int, size_t> groupOfPage;
    for (const RecordChange &change : changes) {
        const auto [found, isNew] = groupOfPage.emplace(PageAddressOf(change.id), groups.size());
        if (isNew)
            groups.emplace_back();
        groups.at(found->second).push_back(change);
    }
    return groups;
}

WrittenPage WritePage(const std::vector<RecordChange> &changes, bool prove)
{
    WrittenPage page;
    for (int repeat = 0; repeat <= WriteRepeats; ++repeat) {
        page.result = Program(changes, prove);
        if (repeat > 0 && IsUntouched(page.result.page))
            page.result.page = PageState::Differs; // it was programmed before, and did not read back as it should
        page.states.assign(changes.size(), StateOf(page.result.page));
        if (!page.result.ok() || !prove || !ReadBackDiffers(changes, page))
            break;
    }
    return page;
}
