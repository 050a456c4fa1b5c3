#include "jobs/change.h"

#include "handheld/table_entries.h"
#include "link/cadence.h"
#include "platform/text.h"

#include <algorithm>
#include <set>

namespace hr::jobs
{

namespace
{

constexpr int VerifyMessages = 6; // of a page: after its load and after its program
constexpr int PageMessages = 2;   // load and program
constexpr int BitsPerByte = 8;

QString YesNo(int flag)
{
    return flag == 1 ? QStringLiteral("ja") : QStringLiteral("nein");
}

QString MannerText(int mode)
{
    return mode == 1 ? QStringLiteral("Taster") : QStringLiteral("Schalter");
}

void AddChange(std::vector<FieldChange> &changes, const QString &field, const QString &from, const QString &to)
{
    if (from != to)
        changes.push_back({{}, field, from, to});
}

std::vector<FieldChange> LocoChanges(const LocoRecord &from, const LocoRecord &to)
{
    std::vector<FieldChange> changes;
    AddChange(changes, QStringLiteral("Name"), ShownName(from), ShownName(to));
    if (IsEmptyName(from.name) || IsEmptyName(to.name))
        return changes;
    AddChange(changes, QStringLiteral("Loksymbol"), QString::number(from.locoSymbol), QString::number(to.locoSymbol));
    AddChange(changes, QStringLiteral("ein Symbol für alle Funktionen"), YesNo(from.multiUni), YesNo(to.multiUni));
    for (size_t f = 0; f < FunctionCount; ++f) {
        const QString function = u'f' + QString::number(f);
        if (f > 0)
            AddChange(changes, function + QStringLiteral(" Symbol"), QString::number(from.symbols.at(f)),
                QString::number(to.symbols.at(f)));
        AddChange(changes, function, MannerText(from.modes.at(f)), MannerText(to.modes.at(f)));
    }
    return changes;
}

int DarkPixels(const Picture &picture)
{
    int dark = 0;
    for (int i = SizeBytes; i < FlashBytesOf(picture.geometry); ++i) {
        for (int bit = 0; bit < BitsPerByte; ++bit)
            dark += picture.bytes.at(static_cast<size_t>(i)) >> bit & 1;
    }
    return dark;
}

int DifferentPixels(const Picture &one, const Picture &other)
{
    Picture both = one;
    for (size_t i = SizeBytes; i < static_cast<size_t>(FlashBytesOf(one.geometry)); ++i)
        both.bytes.at(i) ^= other.bytes.at(i);
    return DarkPixels(both);
}

QString ShownField(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

QString HexText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ')).toUpper();
}

/// An entry field by field, and as bytes where only some differ that no field shows.
std::vector<FieldChange> EntryChanges(const RecordValue &from, const RecordValue &to, const KindRow &row, size_t n)
{
    std::vector<FieldChange> changes;
    const QStringList before = EntryTexts(from, n);
    const QStringList after = EntryTexts(to, n);
    for (qsizetype i = 0; i < row.fields.size(); ++i)
        AddChange(changes, row.fields.at(i), ShownField(before.at(i)), ShownField(after.at(i)));
    if (changes.empty())
        AddChange(changes, QStringLiteral("Bytes"), HexText(EntryBytes(from, n)), HexText(EntryBytes(to, n)));
    for (FieldChange &change : changes)
        change.entry = row.entryName + u' ' + QString::number(n + 1);
    return changes;
}

std::vector<FieldChange> TableChanges(const RecordValue &from, const RecordValue &to)
{
    std::vector<FieldChange> changes;
    const KindRow &row = RowOf(TableKindOf(from));
    for (size_t n = 0; n < static_cast<size_t>(row.entries); ++n) {
        const auto entry = EntryChanges(from, to, row, n);
        changes.insert(changes.end(), entry.begin(), entry.end());
    }
    return changes;
}

/// A loco that only gets another name is the same; so is one that keeps its name.
bool IsAnother(const LocoRecord &before, const LocoRecord &after)
{
    const bool looksTheSame = before.locoSymbol == after.locoSymbol && before.multiUni == after.multiUni
        && before.symbols == after.symbols && before.modes == after.modes;
    return ShownName(before) != ShownName(after) && !looksTheSame;
}

/// The wanted value of a step, or nothing where it leaves the record alone.
std::optional<RecordValue> WantedBy(const Step &step, const std::optional<RecordValue> &present)
{
    if (step.kind == StepKind::Delete)
        return LocoRecord{.name = EmptyName()};
    if (step.kind != StepKind::Merge)
        return step.value;
    if (!present)
        return {};
    const auto *loco = std::get_if<LocoRecord>(&*present);
    if (loco == nullptr || !IsEmptyName(loco->name))
        return step.merge(*present);
    return step.fillsEmpty ? std::optional<RecordValue>(step.value) : std::nullopt;
}

/// What was read without a doubt.
std::optional<RecordValue> SoundValue(const JobEntry &entry)
{
    if (entry.state == RecordState::Empty)
        return LocoRecord{.name = EmptyName()};
    return entry.state == RecordState::Done ? entry.value : std::nullopt;
}

/// What was read well and not understood can be overwritten and deleted, but nothing can be merged into it.
std::optional<RecordValue> PresentFor(const Step &step, const JobEntry &entry)
{
    const bool strange = entry.state == RecordState::Doubtful && entry.outcome.ok();
    return strange && step.kind != StepKind::Merge ? entry.value : SoundValue(entry);
}

LocoBytes Erased()
{
    LocoBytes erased{};
    erased.fill(EmptyByte);
    return erased;
}

/// An empty record has nothing that counts.
SavedRecord WithoutRemains(SavedRecord record)
{
    if (record.id.kind == RecordKind::Loco && record.bytes.startsWith(static_cast<char>(EmptyByte)))
        record.bytes.fill(static_cast<char>(EmptyByte));
    return record;
}

SavedRecord Exactly(const RecordId &id, const LocoBytes &bytes)
{
    return {id, QByteArray(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size()))};
}

using StepsById = std::map<RecordId, const Step *>;

const Step *StepOf(const StepsById &steps, const RecordId &id)
{
    const auto found = steps.find(id);
    return found != steps.end() ? found->second : nullptr;
}

/// What one side holds beside the other: what a list does not say is as there.
std::optional<RecordValue> Beside(const RecordId &id, const Step *step, const Step *other)
{
    if (step != nullptr)
        return step->kind == StepKind::Merge && other != nullptr ? step->merge(other->value) : step->value;
    return id.kind == RecordKind::Loco ? std::optional<RecordValue>(LocoRecord{.name = EmptyName()}) : std::nullopt;
}

RecordChange DifferenceOf(const RecordId &id, const Step *left, const Step *right)
{
    const auto before = Beside(id, left, right);
    const auto after = Beside(id, right, left);
    if (!before || !after)
        return {id, before ? Change::Emptied : Change::New, before ? *before : *after, before, {}, {}};
    const auto *loco = std::get_if<LocoRecord>(&*before);
    const bool nameless = loco != nullptr && IsEmptyName(loco->name) && right != nullptr
        && right->kind == StepKind::Merge && !right->fillsEmpty;
    return {id, nameless ? Change::Nameless : ChangeOf(before, *after), *after, before, {}, {}};
}

} // namespace

std::optional<SavedRecord> PresentRecord(const RecordChange &change)
{
    if (change.presentBytes)
        return WithoutRemains(Exactly(change.id, *change.presentBytes));
    if (!change.present)
        return {};
    return WithoutRemains(SavedRecordOf(change.id, *change.present, Erased()));
}

SavedRecord WantedRecord(const RecordChange &change)
{
    if (change.wantedBytes)
        return WithoutRemains(Exactly(change.id, *change.wantedBytes));
    return WithoutRemains(SavedRecordOf(change.id, change.wanted, change.presentBytes.value_or(Erased())));
}

std::optional<SavedRecord> ReadRecordOf(const JobEntry &entry)
{
    if (entry.state == RecordState::Empty)
        return SavedRecord{entry.step.id, QByteArray(LocoRecordSize, static_cast<char>(EmptyByte))};
    if (!entry.outcome.ok() || !entry.value)
        return {};
    if (entry.bytes)
        return Exactly(entry.step.id, *entry.bytes);
    return SavedRecordOf(entry.step.id, *entry.value, Erased());
}

QString ChangeText(Change change)
{
    switch (change) {
    case Change::New:
        return QStringLiteral("neu");
    case Change::Changed:
        return QStringLiteral("geändert");
    case Change::OtherLoco:
        return QStringLiteral("überschreibt eine andere Lok");
    case Change::Emptied:
        return QStringLiteral("wird gelöscht");
    case Change::Unchanged:
        return QStringLiteral("unverändert");
    case Change::Nameless:
        return QStringLiteral("leer; ohne Namen wird nichts geschrieben");
    case Change::EditedSince:
        return QStringLiteral("seither geändert; bleibt");
    case Change::Unknown:
        break;
    }
    return QStringLiteral("nicht sicher gelesen");
}

std::vector<FieldChange> FieldChanges(const RecordValue &from, const RecordValue &to)
{
    if (SameContent(from, to) || from.index() != to.index())
        return {};
    if (const auto *loco = std::get_if<LocoRecord>(&from))
        return LocoChanges(*loco, std::get<LocoRecord>(to));
    if (const auto *picture = std::get_if<Picture>(&from)) {
        const auto &other = std::get<Picture>(to);
        return {{{}, QStringLiteral("Bild"), QStringLiteral("%1 dunkle Punkte").arg(DarkPixels(*picture)),
            QStringLiteral("%1 dunkle Punkte, %2 anders")
                .arg(DarkPixels(other))
                .arg(DifferentPixels(*picture, other))}};
    }
    return TableChanges(from, to);
}

QString FieldsText(const RecordChange &change)
{
    if (!change.present)
        return {};
    QString text;
    QString entry;
    for (const FieldChange &field : FieldChanges(*change.present, change.wanted)) {
        const bool sameEntry = !entry.isEmpty() && field.entry == entry;
        if (!text.isEmpty())
            text += sameEntry ? QStringLiteral(", ") : QStringLiteral("; ");
        if (field.entry.isEmpty())
            text += field.field + QStringLiteral(": ");
        else
            text += (sameEntry ? QString() : QString(field.entry + QStringLiteral(": "))) + field.field + u' ';
        text += field.from + QStringLiteral(" → ") + field.to;
        entry = field.entry;
    }
    return text;
}

Change ChangeOf(const std::optional<RecordValue> &present, const RecordValue &wanted)
{
    if (!present)
        return Change::Unknown;
    if (SameContent(*present, wanted))
        return Change::Unchanged;
    const auto *before = std::get_if<LocoRecord>(&*present);
    if (before == nullptr)
        return Change::Changed;
    const auto &after = std::get<LocoRecord>(wanted);
    if (IsEmptyName(before->name))
        return Change::New;
    if (IsEmptyName(after.name))
        return Change::Emptied;
    return IsAnother(*before, after) ? Change::OtherLoco : Change::Changed;
}

std::vector<RecordChange> ChangesOf(const std::vector<Step> &steps, const Report &present)
{
    std::map<RecordId, const JobEntry *> entries;
    for (const JobEntry &entry : present.entries)
        entries.emplace(entry.step.id, &entry);
    std::vector<RecordChange> changes;
    for (const Step &step : steps) {
        const JobEntry *entry = entries.contains(step.id) ? entries.at(step.id) : nullptr;
        const auto value = entry != nullptr ? PresentFor(step, *entry) : std::nullopt;
        const auto wanted = WantedBy(step, value);
        const Change unwanted = value ? Change::Nameless : Change::Unknown;
        RecordChange change{step.id, wanted ? ChangeOf(value, *wanted) : unwanted, wanted.value_or(step.value), value,
            entry != nullptr ? entry->bytes : std::nullopt, step.exact};
        const bool otherBytes = step.exact && change.presentBytes && *step.exact != *change.presentBytes;
        if (change.change == Change::Unchanged && otherBytes)
            change.change = Change::Changed; // in what nobody interprets
        changes.push_back(std::move(change));
    }
    return changes;
}

std::vector<RecordChange> Differences(const std::vector<Step> &first, const std::vector<Step> &second)
{
    StepsById left;
    StepsById right;
    std::vector<RecordId> order;
    for (auto &[steps, byId] : {std::pair(&first, &left), {&second, &right}}) {
        for (const Step &step : *steps) {
            if (!left.contains(step.id) && !right.contains(step.id))
                order.push_back(step.id);
            byId->insert_or_assign(step.id, &step);
        }
    }
    std::vector<RecordChange> changes;
    changes.reserve(order.size());
    for (const RecordId &id : order)
        changes.push_back(DifferenceOf(id, StepOf(left, id), StepOf(right, id)));
    return changes;
}

size_t PagesOf(const std::vector<RecordChange> &changes)
{
    constexpr size_t assignmentPages = 5;
    std::set<int> pages;
    size_t more = 0;
    for (const RecordChange &change : changes) {
        pages.insert(PageAddressOf(change.id));
        more += change.id.kind == RecordKind::AssignmentTable ? assignmentPages - 1 : 0;
    }
    return pages.size() + more;
}

double SecondsOf(const std::vector<RecordChange> &changes, bool verify)
{
    std::map<int, std::vector<RecordId>> pages;
    double messages = static_cast<double>(PagesOf(changes)) * (PageMessages + (verify ? VerifyMessages : 0));
    for (const RecordChange &change : changes) {
        const KindRow &row = RowOf(change.id.kind);
        messages += SharesPage(change.id.kind) ? row.writeMessages - PageMessages : row.writeMessages;
        pages[PageAddressOf(change.id)].push_back(change.id);
    }
    for (const auto &[address, changed] : pages) { // the neighbours are read before, all of it afterwards
        const size_t whole = RecordsOfPage(changed.front()).size();
        const size_t reads = whole - changed.size() + (verify ? whole : 0);
        messages += static_cast<double>(reads) * RowOf(changed.front().kind).rowMessages;
    }
    return messages * SecondsPerMessage();
}

std::vector<RecordChange> ToBeWritten(const std::vector<RecordChange> &changes, Written which)
{
    std::vector<RecordChange> wanted = changes;
    std::erase_if(wanted, [which](const RecordChange &change) {
        const bool needless = change.change == Change::Unchanged || change.change == Change::EditedSince;
        return change.change == Change::Nameless || (which == Written::Changes && needless);
    });
    return wanted;
}

} // namespace hr::jobs
