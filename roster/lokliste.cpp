#include "roster/lokliste.h"

#include "handheld/text_encoding.h"
#include "platform/text.h"

#include <algorithm>

namespace hr::roster
{

namespace
{

bool IsSame(const Lok &lok, const RosterLoco &other)
{
    return lok.address == other.address && lok.record == other.record;
}

bool IsSame(const Lok &one, const Lok &other)
{
    return IsSame(one, {other.address, other.record});
}

LocoRecord Blank()
{
    LocoRecord record;
    record.name = FitLocoName({});
    return record;
}

/// The record as the handheld would keep it, so that it can be compared with what it says.
LocoRecord Stored(LocoRecord record)
{
    record.name = AsStored(record.name, NameLength);
    return record;
}

} // namespace

QString HandheldSource()
{
    return QStringLiteral("Handregler");
}

QString StateText(LokState state)
{
    switch (state) {
    case LokState::InHandheld:
        return QStringLiteral("im Handregler");
    case LokState::FromFile:
        return QStringLiteral("aus Datei");
    case LokState::Changed:
        return QStringLiteral("geändert");
    case LokState::Invalid:
        return QStringLiteral("ungültig");
    case LokState::Unknown:
        return QStringLiteral("unbekannt");
    }
    Q_UNREACHABLE();
}

QString TypedName(const QString &text)
{
    return FitLocoName(UpperLatin1(text));
}

int Lokliste::rowOf(int id) const
{
    const auto found = std::ranges::find_if(rows, [id](const Row &row) { return row->id == id; });
    return found != rows.end() ? static_cast<int>(found - rows.begin()) : -1;
}

int Lokliste::rowOfAddress(int address) const
{
    const auto found = std::ranges::find_if(rows, [address](const Row &row) { return row->address == address; });
    return found != rows.end() ? static_cast<int>(found - rows.begin()) : -1;
}

const LocoRecord *Lokliste::held(int address) const
{
    const auto found = heldLocos.find(address);
    return found != heldLocos.end() ? &found->second : nullptr;
}

LokState Lokliste::state(int row) const
{
    const Lok &lok = at(row);
    if (!faults(row).isEmpty())
        return LokState::Invalid;
    const LocoRecord *there = held(lok.address);
    if (there != nullptr && *there == Stored(lok.record))
        return LokState::InHandheld;
    if (!IsSame(lok, lok.came))
        return LokState::Changed;
    if (!lok.source.isEmpty() && lok.source != HandheldSource())
        return LokState::FromFile;
    return there == nullptr ? LokState::Unknown : LokState::Changed;
}

QStringList Lokliste::faults(int row) const
{
    const Lok &lok = at(row);
    QStringList found;
    if (lok.address < FirstLoco || lok.address > LastLoco)
        found += QStringLiteral("Die Adresse fehlt: %1 bis %2").arg(FirstLoco).arg(LastLoco);
    else if (const auto use = uses.find(lok.address); use != uses.end() && use->second > 1)
        found += QStringLiteral("Die Adresse %1 steht mehrmals in der Liste").arg(lok.address);
    const QString name = WithoutTrailingBlanks(lok.record.name);
    if (name.isEmpty() || IsEmptyName(name))
        found += QStringLiteral("Der Name fehlt");
    else if (const QString foreign = UnknownCharacters(name); !foreign.isEmpty())
        found += QStringLiteral("Im Namen sind Zeichen, die der Handregler nicht hat: %1").arg(foreign);
    return found;
}

// --- Steps ---

void Lokliste::count()
{
    uses.clear();
    for (const Row &row : rows)
        ++uses[row->address];
}

/// Shows other rows. Where the same ones stay, only those that look different are told: doubled addresses too.
void Lokliste::show(const std::vector<Row> &wanted)
{
    const bool sameRows =
        std::ranges::equal(rows, wanted, [](const Row &one, const Row &other) { return one->id == other->id; });
    std::vector<int> different;
    std::set<int> addresses; // whose rows may have become doubled, or are so no more
    for (size_t i = 0; sameRows && i < rows.size(); ++i) {
        const Lok &was = *rows.at(i);
        const Lok &is = *wanted.at(i);
        if (was.address != is.address)
            addresses.insert({was.address, is.address});
        if (!IsSame(was, is) || !IsSame(Lok{0, was.came.address, was.came.record, {}, {}}, is.came))
            different.push_back(static_cast<int>(i));
    }
    rows = wanted;
    count();
    unsaved = true;
    for (size_t i = 0; sameRows && !addresses.empty() && i < rows.size(); ++i) {
        const int row = static_cast<int>(i);
        if (addresses.contains(rows.at(i)->address) && std::ranges::find(different, row) == different.end())
            different.push_back(row);
    }
    if (sameRows && onRows)
        onRows(different);
    if (!sameRows && onReset)
        onReset();
}

void Lokliste::keep(const std::vector<Row> &after)
{
    steps.resize(step);
    steps.push_back({rows, after});
    step = steps.size();
    if (!joined)
        dropOldest();
    show(after);
}

void Lokliste::dropOldest()
{
    if (steps.size() > MostSteps) {
        steps.erase(steps.begin());
        --step;
    }
}

void Lokliste::join(size_t from)
{
    joined = false;
    if (step > from + 1) {
        steps.at(from).after = rows;
        steps.resize(from + 1);
        step = from + 1;
    }
    dropOldest();
}

void Lokliste::undo()
{
    if (canUndo())
        show(std::vector<Row>(steps.at(--step).before));
}

void Lokliste::redo()
{
    if (canRedo())
        show(std::vector<Row>(steps.at(step++).after));
}

void Lokliste::change(const std::vector<int> &changed, const std::function<void(Lok &)> &edit)
{
    std::vector<Row> after = rows;
    bool any = false;
    for (const int row : changed) {
        auto edited = std::make_shared<Lok>(at(row));
        edit(*edited);
        any = any || !IsSame(*edited, at(row));
        after.at(static_cast<size_t>(row)) = edited;
    }
    if (any)
        keep(after);
}

Lokliste::Row Lokliste::made(int address, const LocoRecord &record, const QString &source, bool came)
{
    auto row = std::make_shared<Lok>(Lok{++lastId, address, record, {}, source});
    if (came)
        row->came = {address, record};
    return row;
}

bool Lokliste::add(const std::vector<ListedLoco> &locos, const QString &source, const Decide &decide)
{
    std::vector<Row> after = rows;
    std::map<int, size_t> places;
    for (size_t i = 0; i < after.size(); ++i)
        places.emplace(after.at(i)->address, i);
    for (const ListedLoco &loco : locos) {
        const auto found = places.find(loco.address);
        const LocoRecord *known = held(loco.address); // what the source does not say stays as the handheld has it
        const LocoRecord present = found != places.end() ? after.at(found->second)->record
            : known && !IsEmptyName(known->name)         ? *known
                                                         : Blank();
        LocoRecord record = Applied(loco, present);
        record.name = TypedName(record.name);
        if (found == places.end()) {
            places.emplace(loco.address, after.size());
            after.push_back(made(loco.address, record, source, true));
            continue;
        }
        const Lok &there = *after.at(found->second);
        if (there.record == record)
            continue;
        const Doubled wanted = decide(there, {loco.address, record});
        if (wanted == Doubled::Stop)
            return false;
        if (wanted == Doubled::Keep)
            continue;
        auto replaced = std::make_shared<Lok>(Lok{there.id, loco.address, record, {loco.address, record}, source});
        after.at(found->second) = replaced;
    }
    if (after != rows)
        keep(after);
    return true;
}

std::set<int> Lokliste::takenAddresses() const
{
    std::set<int> taken;
    for (const Row &row : rows)
        taken.insert(row->address);
    for (const auto &[address, record] : heldLocos) {
        if (!IsEmptyName(record.name))
            taken.insert(address);
    }
    return taken;
}

/// The next address that neither the list nor the handheld has; 0 when there is none.
int Lokliste::freeAddress(int from, const std::set<int> &taken) const
{
    for (int i = 0; i < LastLoco; ++i) {
        const int address = FirstLoco + (from - FirstLoco + 1 + i) % LastLoco;
        if (!taken.contains(address))
            return address;
    }
    return 0;
}

int Lokliste::duplicate(const std::vector<int> &copied)
{
    if (copied.empty())
        return -1;
    std::set<int> taken = takenAddresses();
    const auto behind = static_cast<size_t>(std::ranges::max(copied)) + 1;
    std::vector<Row> after(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(behind));
    for (const int row : copied) {
        const int address = freeAddress(std::max(at(row).address, 0), taken);
        taken.insert(address);
        after.push_back(made(address, at(row).record, at(row).source, false));
    }
    after.insert(after.end(), rows.begin() + static_cast<std::ptrdiff_t>(behind), rows.end());
    keep(after);
    return static_cast<int>(behind);
}

int Lokliste::addNew()
{
    const std::set<int> taken = takenAddresses();
    std::vector<Row> after = rows;
    after.push_back(made(freeAddress(rows.empty() ? 0 : rows.back()->address, taken), Blank(), {}, false));
    keep(after);
    return size() - 1;
}

void Lokliste::remove(const std::vector<int> &removed)
{
    std::vector<Row> after;
    for (int row = 0; row < size(); ++row) {
        if (std::ranges::find(removed, row) == removed.end())
            after.push_back(rows.at(static_cast<size_t>(row)));
    }
    if (after.size() != rows.size())
        keep(after);
}

// --- What the handheld holds ---

void Lokliste::noteHeld(int address, const LocoRecord &record)
{
    heldLocos.insert_or_assign(address, Stored(record));
    std::vector<int> told;
    for (int row = 0; row < size(); ++row) {
        if (at(row).address == address || at(row).came.address == address)
            told.push_back(row);
    }
    if (!told.empty() && onRows)
        onRows(told);
}

void Lokliste::takeHeld(int address, const LocoRecord &record)
{
    heldLocos.insert_or_assign(address, Stored(record));
    const int row = rowOfAddress(address);
    if (row < 0 && IsEmptyName(record.name))
        return; // most of a search
    std::vector<Row> after = rows;
    if (IsEmptyName(record.name)) {
        after.erase(after.begin() + row);
    } else if (row < 0) {
        after.push_back(made(address, record, {}, true));
    } else {
        after.at(static_cast<size_t>(row)) =
            std::make_shared<Lok>(Lok{at(row).id, address, record, {address, record}, {}});
    }
    show(after);
    unsaved = false;
    if (onRows && row >= 0 && row < size())
        onRows({row}); // its state may be another one
}

void Lokliste::settle(const std::vector<int> &settled, const QString &source)
{
    for (const int row : settled) {
        auto lok = std::make_shared<Lok>(at(row));
        lok->came = {lok->address, lok->record};
        lok->source = source;
        rows.at(static_cast<size_t>(row)) = lok;
    }
    if (onRows)
        onRows(settled);
}

int Lokliste::leftBehind(int row) const
{
    const Lok &lok = at(row);
    const LocoRecord *there = held(lok.came.address);
    const bool moved = lok.came.address != 0 && lok.came.address != lok.address && !uses.contains(lok.came.address);
    return moved && there != nullptr && *there == Stored(lok.came.record) ? lok.came.address : 0;
}

void Lokliste::load(const std::vector<RosterLoco> &locos, const QString &source)
{
    rows.clear();
    steps.clear();
    step = 0;
    for (const RosterLoco &loco : locos) {
        LocoRecord record = loco.record;
        record.name = TypedName(record.name);
        rows.push_back(made(loco.address, record, source, true));
    }
    count();
    unsaved = false;
    if (onReset)
        onReset();
}

std::vector<RosterLoco> LocosOf(const Lokliste &list)
{
    std::vector<RosterLoco> locos;
    locos.reserve(static_cast<size_t>(list.size()));
    for (int row = 0; row < list.size(); ++row)
        locos.push_back({list.at(row).address, list.at(row).record});
    return locos;
}

} // namespace hr::roster
