#include "jobs/record_reader.h"

#include "handheld/flash_map.h"
#include "program/ask.h"

#include <utility>

namespace hr::jobs
{

namespace
{

constexpr int LocosPerPage = FlashPageSize / LocoRecordSize;
constexpr size_t FewPages = 8;      // of a search: fewer are not worth the proof
constexpr size_t LongestRow = 6;    // more than one read can bring
constexpr double EmptyByChip = 0.4; // messages for an empty record: three for eight, and the samples
constexpr double EmptyByRead = 1.5; // three for two

int PageOf(int loco)
{
    return loco / LocosPerPage;
}

bool IsSearch(const Step &step)
{
    return step.kind == StepKind::Search && step.id.kind == RecordKind::Loco;
}

/// Where anything is written, buffer 1 belongs to the writing.
bool ChipCanBeAsked(const Plan &plan)
{
    std::set<int> searched;
    for (const Step &step : plan.steps) {
        if (!OnlyReads(step))
            return false;
        if (IsSearch(step))
            searched.insert(PageOf(step.id.number));
    }
    return searched.size() >= FewPages;
}

void ShowGroup(int group)
{
    TheAsk().showProgress(QStringLiteral("Lese Zuordnungsdaten ") + QString::number(group));
}

/// Also a name that begins with a character no handheld writes is doubtful: such a record must not be left out silently.
RecordState StateOfRead(const RecordId &id, const RecordRead &read)
{
    const auto *loco = id.kind == RecordKind::Loco ? std::get_if<LocoRecord>(&read.value) : nullptr;
    if (!read.outcome.ok())
        return RecordState::Doubtful;
    if (loco == nullptr || !IsEmptyName(loco->name))
        return RecordState::Done;
    return read.bytes.front() == EmptyByte ? RecordState::Empty : RecordState::Doubtful;
}

} // namespace

bool OnlyReads(const Step &step)
{
    return step.kind == StepKind::Read || step.kind == StepKind::Search || step.kind == StepKind::IsUsed;
}

double CostOfReading(const Step &step, bool asksChip)
{
    constexpr double look = 2;
    if (step.kind == StepKind::IsUsed)
        return look;
    if (step.kind == StepKind::Search)
        return asksChip ? EmptyByChip : EmptyByRead;
    return RowOf(step.id.kind).rowMessages;
}

RecordReader::RecordReader(const Plan &wholePlan) : plan(wholePlan), chipIsAsked(ChipCanBeAsked(wholePlan)) { }

bool RecordReader::chipSaysEmpty(size_t index)
{
    if (!chipIsAsked || !IsSearch(step(index)))
        return false;
    const int page = PageOf(step(index).id.number);
    if (page != askedPage)
        askedPageEmpty = pages.saysEmpty(page);
    askedPage = page;
    return askedPageEmpty;
}

bool RecordReader::read(size_t index, JobEntry &entry)
{
    if (!ahead.contains(index) && chipSaysEmpty(index)) {
        entry.state = RecordState::Empty;
        unproved.push_back(index);
        return false;
    }
    readAnyway(index, entry);
    return true;
}

/// The steps from this one on that are read with it. A page about which the chip is still to be asked is left for later.
std::vector<RecordId> RecordReader::groupFrom(size_t index) const
{
    std::vector<RecordId> ids;
    for (size_t i = index; i < plan.steps.size() && ids.size() < LongestRow; ++i) {
        const bool sameWay = step(i).kind == step(index).kind && !ahead.contains(i);
        const bool asksFirst =
            chipIsAsked && IsSearch(step(i)) && PageOf(step(i).id.number) != askedPage && i != index;
        if (!sameWay || asksFirst)
            break;
        ids.push_back(step(i).id);
    }
    return ids;
}

void RecordReader::readAnyway(size_t index, JobEntry &entry)
{
    const RecordId &id = step(index).id;
    if (!NeighbourReader::canRead(id.kind)) {
        auto read = ReadRecord(image, id, ShowGroup, plan.patience);
        return take(entry, {std::move(read.value), read.outcome, {}});
    }
    if (!ahead.contains(index)) {
        auto reads = neighbours.read(groupFrom(index), plan.patience);
        for (size_t i = 0; i < reads.size(); ++i)
            ahead.emplace(index + i, std::move(reads.at(i)));
    }
    take(entry, ahead.extract(index).mapped());
}

void RecordReader::take(JobEntry &entry, const RecordRead &read)
{
    const RecordId &id = entry.step.id;
    entry.outcome = read.outcome;
    entry.value = read.value;
    entry.state = StateOfRead(id, read);
    if (id.kind != RecordKind::Loco)
        return;
    if (read.outcome.ok() && entry.state != RecordState::Empty)
        entry.bytes = read.bytes;
    notePage(id.number, entry.state);
}

/// A page of which all locos were read tells the chip's questioner what it holds.
void RecordReader::notePage(int loco, RecordState state)
{
    if (PageOf(loco) != readPage)
        emptyOfPage.clear();
    readPage = PageOf(loco);
    if (state == RecordState::Done)
        pages.pageWasRead(readPage, false);
    if (state == RecordState::Empty)
        emptyOfPage.insert(loco);
    if (emptyOfPage.size() == RecordsOfPage({RecordKind::Loco, loco}).size())
        pages.pageWasRead(readPage, true);
}

RecordReader::Checked RecordReader::check(bool atEnd)
{
    if (unproved.empty() || !(atEnd || pages.sampleDue()))
        return {};
    auto steps = std::exchange(unproved, {});
    askedPage = -1;
    readPage = -1;
    emptyOfPage.clear();
    return pages.sampleIsEmpty() ? Checked{std::move(steps), {}} : Checked{{}, std::move(steps)};
}

} // namespace hr::jobs
