#include "jobs/page_writer.h"

#include "handheld/neighbour_read.h"

#include <algorithm>

namespace hr::jobs
{

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

using Reads = std::map<RecordId, RecordRead>; // those without a sure answer say so

/// The records with the first of `ids` that come together; tables come one by one.
std::vector<RecordRead> ReadSome(NeighbourReader &reader, const std::vector<RecordId> &ids)
{
    if (NeighbourReader::canRead(ids.front().kind))
        return reader.read(ids, Patience::Quiet);
    SpiImage image{};
    auto read = ReadRecord(
        image, ids.front(), [](int) {}, Patience::Quiet);
    return {{std::move(read.value), read.outcome, {}}};
}

/// Reads records of a page that was just written, also when the user wants to stop: what was begun is proved.
Reads ReadAgain(std::vector<RecordId> ids)
{
    Reads reads;
    NeighbourReader reader;
    for (int tries = 1; !ids.empty() && !TransferBrokenOff(); ++tries) {
        for (RecordRead &read : ReadSome(reader, ids)) {
            const bool again = read.outcome.timedOut() && tries < MostReads;
            if (again)
                break;
            reads.insert_or_assign(ids.front(), std::move(read));
            ids.erase(ids.begin());
            tries = 0;
        }
    }
    return reads;
}

/// What a read has brought, as what stands there now.
RecordChange WithPresent(const RecordChange &change, const RecordRead &read)
{
    RecordChange now = change;
    now.present = read.value;
    now.presentBytes = change.id.kind == RecordKind::Loco ? std::optional(read.bytes) : std::nullopt;
    return now;
}

bool IsAsWanted(const RecordChange &now)
{
    if (now.wantedBytes)
        return PresentRecord(now)->bytes == WantedRecord(now).bytes;
    return SameContent(*now.present, now.wanted);
}

/// What became of a record that was to be written.
RecordState StateOfRead(const RecordChange &change, const Reads &reads)
{
    const auto read = reads.find(change.id);
    if (read == reads.end() || !read->second.outcome.ok())
        return RecordState::Doubtful;
    return IsAsWanted(WithPresent(change, read->second)) ? RecordState::Done : RecordState::Differs;
}

/// Reads the whole page. What has to be written once more is added: neighbours that do not hold any more what they held.
bool ReadBackDiffers(std::vector<RecordChange> &changes, const Neighbours &neighbours, WrittenPage &page)
{
    std::vector<RecordId> ids;
    for (const RecordId &id : RecordsOfPage(changes.front().id))
        ids.push_back(id);
    const Reads reads = ReadAgain(ids);
    bool differs = false;
    for (size_t i = 0; i < page.states.size(); ++i) {
        page.states.at(i) = StateOfRead(changes.at(i), reads);
        differs = differs || page.states.at(i) == RecordState::Differs;
    }
    page.neighboursSound = true;
    for (const auto &[id, bytes] : neighbours) {
        const auto read = reads.find(id);
        const bool known = read != reads.end() && read->second.outcome.ok();
        const auto now = known ? PresentRecord(WithPresent({id, {}, {}, {}, {}}, read->second)) : std::nullopt;
        page.neighboursSound = page.neighboursSound && now && now->bytes == bytes;
        if (now && now->bytes != bytes)
            changes.push_back(BackTo({id, bytes}, *now));
    }
    return differs || changes.size() > page.states.size();
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

RecordChange BackTo(const SavedRecord &was, const SavedRecord &now)
{
    return {was.id, Change::Changed, ValueOf(was), ValueOf(now), LocoBytesOf(now), LocoBytesOf(was)};
}

WrittenPage WritePage(const std::vector<RecordChange> &changes, const Neighbours &neighbours, bool prove)
{
    WrittenPage page;
    std::vector<RecordChange> all = changes; // and neighbours that have to be put back
    for (int repeat = 0; repeat <= WriteRepeats; ++repeat) {
        page.result = Program(all, prove);
        if (repeat > 0 && IsUntouched(page.result.page))
            page.result.page = PageState::Differs; // it was programmed before, and did not read back as it should
        page.states.assign(changes.size(), StateOf(page.result.page));
        all.resize(changes.size());
        if (!page.result.ok() || !prove || !ReadBackDiffers(all, neighbours, page))
            break;
    }
    return page;
}

} // namespace hr::jobs
