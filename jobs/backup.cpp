#include "jobs/backup.h"

#include "handheld/backup/dds_file.h"
#include "handheld/backup/number_list.h"
#include "handheld/flash_map.h"
#include "jobs/journal.h"
#include "jobs/report.h"
#include "platform/files.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <bitset>
#include <map>

namespace hr::jobs
{

namespace
{

using Numbers = std::bitset<LastLoco + 1>;

void AddStep(Plan &plan, RecordKind kind, int number)
{
    plan.steps.push_back({StepKind::Read, {kind, number}, {}, {}});
}

/// Runs through the wanted numbers of a kind, each once.
void ForEachNumber(
    const BackupSelection &selection, NumberedKind kind, Numbers &done, const std::function<void(int)> &add)
{
    const KindRow &row = RowOfChoice(kind);
    NumberList numbers(WantedNumbers(selection, kind));
    for (int n = numbers.next(); n >= 0; n = numbers.next()) {
        if (n < row.lowest || n > row.highest || done.test(static_cast<size_t>(n)))
            continue;
        done.set(static_cast<size_t>(n));
        add(n);
    }
}

void AddLocos(Plan &plan, const BackupSelection &selection)
{
    Numbers done;
    ForEachNumber(selection, LokDatenList, done, [&plan](int n) { AddStep(plan, RecordKind::Loco, n); });
    if (!selection.lokSuche)
        return;
    for (int n = qMax(selection.lokSucheStart, FirstLoco); n <= qMin(selection.lokSucheStop, LastLoco); ++n) {
        if (!done.test(static_cast<size_t>(n)))
            plan.steps.push_back({StepKind::Search, {RecordKind::Loco, n}, {}, {}});
    }
}

void AddSymbols(Plan &plan, const BackupSelection &selection, NumberedKind list, SymbolKind symbol)
{
    const int halves = symbol == SymbolKind::Loco ? 1 : 2;
    Numbers done;
    ForEachNumber(selection, list, done, [&](int n) {
        for (int half = 0; half < halves; ++half)
            AddStep(plan, RecordKindOf(symbol, half), n);
    });
}

QString Shown(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

/// Tried before the long reading: is there a place beside the file to write to?
bool CanBeWritten(const QString &fileName)
{
    QSaveFile probe(fileName);
    return probe.open(QIODevice::WriteOnly); // never committed: nothing stays of it
}

/// Writes the file; the user may make room and try again, since all that was read would be lost otherwise.
bool WriteFile(const QString &fileName, const QByteArray &file)
{
    const BoxText question{QStringLiteral("Die Datei %1 kann nicht geschrieben werden!\r"
                                          "Soll es noch einmal versucht werden?")
                               .arg(Shown(fileName)),
        QStringLiteral("Fehler!"), BoxIcon::Critical};
    while (!ReplaceFile(fileName, file)) {
        if (!TheAsk().askYesNo(question, true))
            return false;
    }
    return true;
}

/// The name with " (unvollständig)" before its ending; counted on where such a file exists already.
QString IncompleteName(const QString &fileName)
{
    const QFileInfo info(fileName);
    const QString ending = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    const QString front = info.path() + u'/' + info.completeBaseName() + QStringLiteral(" (unvollständig");
    QString name = front + u')' + ending;
    for (int n = 2; QFileInfo::exists(name); ++n)
        name = front + u' ' + QString::number(n) + u')' + ending;
    return name;
}

bool IsUnread(const JobEntry &entry)
{
    if (entry.state != RecordState::Doubtful || !entry.value)
        return false;
    const auto *loco = std::get_if<LocoRecord>(&*entry.value);
    return loco != nullptr && IsEmptyName(loco->name);
}

bool IsInFile(const JobEntry &entry)
{
    const bool read = entry.state == RecordState::Done || entry.state == RecordState::Doubtful;
    return read && entry.value && !IsUnread(entry);
}

QByteArray FileOf(const Report &report)
{
    QByteArray file;
    for (const JobEntry &entry : report.entries) {
        if (IsInFile(entry))
            file += PackRecord(entry.step.id, *entry.value);
    }
    return file;
}

void TakeEntry(BackupOutcome &outcome, const JobEntry &entry, const BackupSelection &selection)
{
    const int number = entry.step.id.number;
    outcome.answersMissing = outcome.answersMissing || entry.outcome.timedOut();
    if (IsUnread(entry))
        outcome.unread.push_back(entry.step.id);
    else if (entry.state == RecordState::Doubtful)
        outcome.doubtful.push_back(entry.step.id);
    if (entry.state == RecordState::Untouched)
        outcome.missing.push_back(entry.step.id);
    if (IsInFile(entry))
        outcome.saved.push_back(entry.step.id);
    const bool searched = selection.lokSuche && number >= selection.lokSucheStart && number <= selection.lokSucheStop;
    if (entry.step.id.kind == RecordKind::Loco && searched && IsInFile(entry))
        outcome.found.push_back(number);
}

/// The name under which the file is to be written; empty when it is not.
QString PlaceFor(const BackupOutcome &outcome, const QByteArray &file)
{
    const bool sound = outcome.doubtful.empty() && outcome.unread.empty() && !file.isEmpty();
    if (sound || !outcome.fileExisted)
        return outcome.fileName;
    const QString what = file.isEmpty()
        ? QStringLiteral("Es wurde kein Datensatz gelesen.")
        : QStringLiteral("Die neue Datensicherung ist unvollständig oder zweifelhaft.");
    const QString otherwise = file.isEmpty()
        ? QString()
        : QStringLiteral("\r(Nein: sie wird als %1 gespeichert)").arg(Shown(IncompleteName(outcome.fileName)));
    const BoxText question{what
            + QStringLiteral("\rSoll sie die vorhandene Datei %1 trotzdem ersetzen?").arg(Shown(outcome.fileName))
            + otherwise,
        QStringLiteral("Datei ersetzen?"), BoxIcon::Critical};
    if (TheAsk().askYesNo(question, false))
        return outcome.fileName;
    return file.isEmpty() ? QString() : IncompleteName(outcome.fileName);
}

void WriteOutcome(BackupOutcome &outcome, const QByteArray &file)
{
    const QString place = PlaceFor(outcome, file);
    if (place.isEmpty()) {
        outcome.end = JobEnd::NothingDone;
        return;
    }
    outcome.fileName = place;
    outcome.written = WriteFile(place, file);
    if (!outcome.written)
        outcome.end = JobEnd::NothingDone;
}

QString KeptText(const BackupOutcome &outcome)
{
    if (outcome.kept == 0)
        return {};
    const QString missing =
        outcome.missing.empty() ? QString() : QStringLiteral(" Es fehlen noch:\r") + RecordsText(outcome.missing);
    return QStringLiteral(
        "\r\rWas schon gelesen ist (%1), bleibt erhalten: Beginnen Sie dieselbe Sicherung in dieselbe Datei "
        "noch einmal,\rdann wird sie auf Wunsch fortgesetzt.%2")
        .arg(RecordCount(outcome.kept), missing);
}

BoxText BrokenOffBox(const BackupOutcome &outcome)
{
    const QString file = outcome.fileExisted ? QStringLiteral("Die vorhandene Datei %1 ist unverändert.")
                                             : QStringLiteral("Die Datei %1 wurde nicht angelegt.");
    return EndBox(outcome.end,
        EndText(outcome.end, QStringLiteral("Die Datensicherung wurde angehalten."))
            + QStringLiteral("\rEs wurde kein Datensatz gesichert.\r") + file.arg(Shown(outcome.fileName))
            + KeptText(outcome));
}

void ReportDoubtful(const BackupOutcome &outcome)
{
    QString text = outcome.answersMissing ? QStringLiteral("Der Handregler hat nicht immer geantwortet.")
                                          : QStringLiteral("Nicht alles, was vom Handregler kam, ist eindeutig.");
    if (!outcome.doubtful.empty()) {
        text += QStringLiteral("\r\r%1 in der Datei zweifelhaft:\r").arg(RecordCount(outcome.doubtful.size()))
            + RecordsText(outcome.doubtful);
    }
    if (!outcome.unread.empty()) {
        text += QStringLiteral("\r\r%1 als leer gelesen und nicht in der Datei, ebenfalls zweifelhaft:\r")
                    .arg(RecordCount(outcome.unread.size()))
            + RecordsText(outcome.unread);
    }
    text += QStringLiteral("\r\rGespeichert in %1.").arg(Shown(outcome.fileName));
    TheAsk().showBox({text, QStringLiteral("Achtung!"), BoxIcon::Critical});
}

/// The first record of the earlier part, the last one and some between, read again, that do not hold any more what they held.
std::vector<RecordId> ChangedSamples(const std::vector<DdsRecord> &records)
{
    constexpr size_t samples = 5;
    std::map<RecordId, RecordValue> wanted;
    for (size_t i = 0; i < samples; ++i) {
        const DdsRecord &record = records.at(i * (records.size() - 1) / (samples - 1));
        wanted.insert_or_assign(record.id, UnpackRecord(record));
    }
    Plan plan{.steps = {},
        .progress = [](const Step &step) { return ProgressText(step.id); },
        .patience = Patience::Job,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    for (const auto &[id, value] : wanted)
        plan.steps.push_back({StepKind::Read, id, {}, {}});
    std::vector<RecordId> changed;
    for (const JobEntry &entry : RunJob(plan).entries) {
        const bool read = entry.outcome.ok() && entry.state != RecordState::Untouched;
        if (read && !SameContent(*entry.value, wanted.at(entry.step.id)))
            changed.push_back(entry.step.id);
    }
    return changed;
}

/// Another handheld of the same type and version says the same of itself: what it holds tells them apart.
bool MayBeJoined(const JournalContent &earlier)
{
    const auto changed = earlier.read.empty() ? std::vector<RecordId>() : ChangedSamples(earlier.read);
    if (changed.empty())
        return true;
    const QString text =
        QStringLiteral("Der Handregler enthält nicht mehr, was der abgebrochene Teil gelesen hat:\r%1.\r"
                       "Vielleicht ist es ein anderer Handregler, oder diese Daten wurden seither geändert.\r"
                       "Soll trotzdem fortgesetzt werden? (Nein: alles wird noch einmal gelesen.)")
            .arg(RecordsText(changed));
    return TheAsk().askYesNo({text, QStringLiteral("Datensicherung"), BoxIcon::Critical, true}, false);
}

/// Begins a journal or goes on with the one that fits. False after a box.
bool OpenBackupJournal(Journal &journal, const QString &fileName, const BackupSelection &selection,
    const BackupMemory &memory, JournalContent &earlier)
{
    const JournalHead head = BackupHead(selection, memory.handheld);
    JournalContent content;
    const Earlier found = EarlierPart(fileName, head, content);
    if (BoxesAreSilent())
        return false; // nobody said that what is there may go
    if (const QString fault = EarlierFault(found, fileName); !fault.isEmpty()) {
        const BoxText question{fault + QStringLiteral("\rSoll er verworfen und von vorn begonnen werden?"),
            QStringLiteral("Datensicherung"), BoxIcon::Critical};
        return TheAsk().askYesNo(question, false) && journal.begin(head);
    }
    if (found == Earlier::None || !memory.goOn)
        return journal.begin(head);
    if (!MayBeJoined(content))
        return !BoxesAreSilent() && journal.begin(head);
    earlier = content;
    return journal.goOn();
}

/// Reads what the earlier part has not read, and joins both in the plan's order.
Report ReadAll(const Plan &plan, const JournalContent &earlier, Journal *journal)
{
    std::map<RecordId, std::optional<RecordValue>> known; // nothing: empty
    for (const DdsRecord &record : earlier.read)
        known.insert_or_assign(record.id, UnpackRecord(record));
    for (const RecordId &id : earlier.empty)
        known.emplace(id, std::nullopt);
    Plan missing = plan;
    std::erase_if(missing.steps, [&](const Step &step) { return known.contains(step.id); });
    Watcher watcher;
    watcher.finished = [journal](const JobEntry &entry) {
        if (journal != nullptr && entry.state == RecordState::Done)
            journal->read(entry.step.id, *entry.value);
        else if (journal != nullptr && entry.state == RecordState::Empty)
            journal->readEmpty(entry.step.id);
    };
    watcher.mayGoOn = [journal] { return journal == nullptr || journal->sound(); };
    const Report fresh = RunJob(missing, watcher);
    Report whole{fresh.end, {}};
    size_t next = 0;
    for (const Step &step : plan.steps) {
        const auto found = known.find(step.id);
        if (found == known.end())
            whole.entries.push_back(fresh.entries.at(next++));
        else
            whole.entries.push_back(
                {step, found->second ? RecordState::Done : RecordState::Empty, {}, found->second, {}});
    }
    if (journal != nullptr && !journal->sound()) {
        TheAsk().showBox(
            {QStringLiteral("Der Fortschritt kann nicht gespeichert werden (ist der Datenträger voll?)."),
                QStringLiteral("Fehler!"), BoxIcon::Critical});
        whole.end = JobEnd::NothingDone;
    }
    return whole;
}

} // namespace

Plan BackupPlan(const BackupSelection &selection)
{
    // The reading goes on after a time-out and names the record afterwards.
    Plan plan{.steps = {},
        .progress = [](const Step &step) { return ProgressText(step.id); },
        .patience = Patience::Agreed,
        .endsAtFailure = false,
        .ownerTellsPortLoss = true};
    AddLocos(plan, selection);
    AddSymbols(plan, selection, LokSymbolList, SymbolKind::Loco);
    AddSymbols(plan, selection, FktSymbolList, SymbolKind::Function);
    AddSymbols(plan, selection, MagSymbolList, SymbolKind::Accessory);
    if (selection.fsDaten)
        AddStep(plan, RecordKind::RouteTable, 0);
    if (selection.magSymZuord)
        AddStep(plan, RecordKind::AssignmentTable, 0);
    if (selection.magListe)
        AddStep(plan, RecordKind::PlaceTable, 0);
    return plan;
}

BackupOutcome Backup(
    const QString &fileName, const BackupSelection &selection, const std::optional<BackupMemory> &memory)
{
    BackupOutcome outcome;
    outcome.fileName = fileName;
    outcome.fileExisted = FileExists(fileName);
    if (!CanBeWritten(fileName)) {
        ReportFileUnwritable(fileName);
        outcome.end = JobEnd::NothingDone;
        return outcome;
    }
    std::optional<Journal> journal;
    JournalContent earlier;
    if (memory && !OpenBackupJournal(journal.emplace(fileName), fileName, selection, *memory, earlier)) {
        outcome.end = BoxesAreSilent() ? JobEnd::ProgramEnds : JobEnd::NothingDone;
        return outcome;
    }
    const Report report = ReadAll(BackupPlan(selection), earlier, journal ? &*journal : nullptr);
    outcome.end = report.end;
    for (const JobEntry &entry : report.entries)
        TakeEntry(outcome, entry, selection);
    std::sort(outcome.found.begin(), outcome.found.end()); // also those of the list stand in the searched range
    if (outcome.end == JobEnd::Complete)
        WriteOutcome(outcome, FileOf(report));
    if (journal && outcome.written)
        journal->remove();
    else if (journal)
        outcome.kept = outcome.saved.size() - outcome.doubtful.size(); // the journal holds what is sound
    return outcome;
}

JournalHead BackupHead(const BackupSelection &selection, const QString &handheld)
{
    return {JobName(QStringLiteral("sichern"), SelectionText(selection)), handheld};
}

std::optional<BrokenOffBackup> FindBrokenOff(const QString &fileName, const JournalHead &head)
{
    const auto begun = [&head](const QString &name) {
        const auto earlier = ReadJournal(name);
        return earlier && earlier->head == head ? *earlier : JournalContent();
    };
    const auto question = [](const JournalContent &earlier, const QString &place, const QString &otherwise) {
        return BoxText{
            QStringLiteral("Diese Datensicherung wurde%1 abgebrochen; %2 davon gelesen.\r"
                           "Soll sie fortgesetzt werden?%3\r(Nein: alles wird noch einmal gelesen%4.)")
                .arg(place.isEmpty() ? QString() : earlier.begun.toString(QStringLiteral(" am d.M.yyyy um hh:mm")),
                    RecordCount(earlier.read.size()) + QStringLiteral(" sind"), place, otherwise),
            QStringLiteral("Datensicherung"), BoxIcon::None};
    };
    if (const JournalContent own = begun(fileName); !own.read.empty())
        return BrokenOffBackup{fileName, question(own, {}, {})};
    for (const QString &other : FilesWithJournal(QFileInfo(fileName).absolutePath())) {
        if (const JournalContent earlier = begun(other); !earlier.read.empty()) {
            return BrokenOffBackup{other,
                question(earlier, QStringLiteral("\rSie wird dann in %1 gespeichert.").arg(Shown(other)),
                    QStringLiteral(" und in %1 gespeichert").arg(Shown(fileName)))};
        }
    }
    return {};
}

QString KeepPart(const QString &fileName)
{
    const auto earlier = ReadJournal(fileName);
    if (!earlier || earlier->read.empty())
        return {};
    QByteArray file;
    for (const DdsRecord &record : earlier->read)
        file += record.bytes;
    const QString name = IncompleteName(fileName);
    return WriteFile(name, file) ? name : QString();
}

std::optional<BoxText> PartQuestion(const BackupOutcome &outcome)
{
    if (!EndedEarly(outcome.end) || outcome.kept == 0)
        return {};
    BoxText box = BrokenOffBox(outcome);
    box.text += QStringLiteral("\rSoll es auch als eigene Datei %1 gespeichert werden?")
                    .arg(Shown(IncompleteName(outcome.fileName)));
    return box;
}

void ReportBackup(const BackupOutcome &outcome)
{
    if (EndedEarly(outcome.end))
        TheAsk().showBox(BrokenOffBox(outcome));
    else if (outcome.end == JobEnd::Complete && !(outcome.doubtful.empty() && outcome.unread.empty()))
        ReportDoubtful(outcome);
    else if (outcome.written)
        ShowDoneBox(QStringLiteral("Gesichert in %1:\r%2").arg(Shown(outcome.fileName), ContentText(outcome.saved)),
            QStringLiteral("Datensicherung"));
}

} // namespace hr::jobs
