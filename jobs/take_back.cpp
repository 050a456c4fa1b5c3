#include "jobs/take_back.h"

#include "jobs/report.h"
#include "jobs/undo_snapshot.h"
#include "program/ask.h"

#include <QDir>

#include <algorithm>

namespace hr::jobs
{

namespace
{

QString Shown(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

/// The damaged one keeps its name: it may be all that is left of those bytes.
bool SoundPartIsWanted(const QString &fileName, const LoadedSnapshot &loaded, const QString &title)
{
    const SavedState &state = loaded.state;
    const QString damage = QStringLiteral("Die Datei %1 %2.\r").arg(Shown(fileName), FileFault(loaded.foreign));
    if (state.before.empty()) {
        TheAsk().showBox({damage + QStringLiteral("Es ist nichts darin zu brauchen."), title, BoxIcon::Critical});
        return false;
    }
    const QString part = QStringLiteral("Unversehrt darin: %1.\rSoll nur dieses zurückgenommen werden?")
                             .arg(RecordCount(state.before.size()));
    return TheAsk().askYesNo({damage + part, title, BoxIcon::Critical}, false);
}

/// What a change was about: all records of its pages where an older version did not say more.
std::vector<RecordId> ChangedBy(const SavedState &state)
{
    std::vector<RecordId> changed;
    for (const auto &[id, bytes] : state.before) {
        if (state.wanted.empty() || state.wanted.contains(id))
            changed.push_back(id);
    }
    return changed;
}

QString SnapshotOfNumber(int number)
{
    const QStringList names = UndoSnapshots();
    if (number == NewestChange)
        return names.value(0);
    const auto found =
        std::ranges::find_if(names, [number](const QString &name) { return SnapshotNumber(name) == number; });
    return found != names.end() ? *found : QString();
}

} // namespace

std::vector<UndoListEntry> UndoList()
{
    std::vector<UndoListEntry> list;
    for (const QString &name : UndoSnapshots()) {
        const LoadedSnapshot loaded = LoadUndoSnapshot(name);
        const SavedState &state = loaded.state;
        list.push_back({SnapshotNumber(name), ShownTime(state), state.command, state.handheld, ChangedBy(state),
            loaded.is != SnapshotState::Sound});
    }
    return list;
}

std::optional<TakeBackOffer> OfferTakeBack(const QString &title, int number)
{
    TakeBackOffer offer{SnapshotOfNumber(number), {}, {}};
    if (offer.fileName.isEmpty()) {
        const QString text = number == NewestChange
            ? QStringLiteral("Es gibt nichts zurückzunehmen.")
            : QStringLiteral("Eine Änderung mit der Nummer %1, die zurückgenommen werden kann, gibt es nicht.")
                  .arg(number);
        TheAsk().showBox({text, title, BoxIcon::None});
        return {};
    }
    const LoadedSnapshot loaded = LoadUndoSnapshot(offer.fileName);
    if (loaded.is != SnapshotState::Sound && !SoundPartIsWanted(offer.fileName, loaded, title))
        return {};
    for (const auto &[id, bytes] : loaded.state.before) {
        const SavedRecord record{id, bytes};
        offer.steps.push_back({StepKind::Write, id, ValueOf(record), {}, false, LocoBytesOf(record)});
    }
    const QString command =
        loaded.state.command.isEmpty() ? QString() : QString(QStringLiteral(" (") + loaded.state.command + u')');
    offer.lead =
        QStringLiteral("Der Handregler bekommt zurück, was vor der Änderung vom %1%2 darin stand:\r%3.\r(%4)\r\r")
            .arg(ShownTime(loaded.state), command, ContentText(ChangedBy(loaded.state)), Shown(offer.fileName));
    return offer;
}

void TakeBackEnded(const TakeBackOffer &offer, const CarefulReport &report)
{
    CarefulReport rest = report; // what was edited since is not meant
    std::erase_if(rest.job.entries, [&](const JobEntry &entry) {
        return std::ranges::find(report.edited, entry.step.id) != report.edited.end();
    });
    if (IsSettled(rest) && !MarkAsTakenBack(offer.fileName)) {
        TheAsk().showBox({QStringLiteral("Die Datei %1 ließ sich nicht umbenennen:\r"
                                         "Dieselbe Änderung wird beim nächsten Mal noch einmal angeboten.")
                              .arg(Shown(offer.fileName)),
            QStringLiteral("Achtung!"), BoxIcon::Critical});
    }
}

} // namespace hr::jobs
