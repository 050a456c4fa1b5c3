#include "jobs/take_back.h"

#include "jobs/report.h"
#include "jobs/undo_snapshot.h"
#include "program/ask.h"

#include <QDir>

#include <algorithm>

namespace
{

QString Shown(const QString &fileName)
{
    return QDir::toNativeSeparators(fileName);
}

/// The damaged one keeps its name: it may be all that is left of those bytes.
bool SoundPartIsWanted(const QString &fileName, const SavedState &state, const QString &title)
{
    const QString damage = QStringLiteral("Die Datei %1 ist beschädigt.\r").arg(Shown(fileName));
    if (state.before.empty()) {
        TheAsk().showBox({damage + QStringLiteral("Es ist nichts darin zu brauchen."), title, BoxIcon::Critical});
        return false;
    }
    const QString part = QStringLiteral("Unversehrt darin: %1.\rSoll nur dieses zurückgenommen werden?")
                             .arg(RecordCount(state.before.size()));
    return TheAsk().askYesNo({damage + part, title, BoxIcon::Critical}, false);
}

} // namespace

std::optional<TakeBackOffer> OfferTakeBack(const QString &title)
{
    const QStringList names = UndoSnapshots();
    if (names.isEmpty()) {
        TheAsk().showBox({QStringLiteral("Es gibt nichts zurückzunehmen."), title, BoxIcon::None});
        return {};
    }
    TakeBackOffer offer{names.constFirst(), {}, {}};
    const LoadedSnapshot loaded = LoadUndoSnapshot(offer.fileName);
    if (loaded.is != SnapshotState::Sound && !SoundPartIsWanted(offer.fileName, loaded.state, title))
        return {};
    std::vector<RecordId> changed;
    for (const auto &[id, bytes] : loaded.state.before) {
        const SavedRecord record{id, bytes};
        offer.steps.push_back({StepKind::Write, id, ValueOf(record), {}, false, LocoBytesOf(record)});
        if (loaded.state.wanted.empty() || loaded.state.wanted.contains(id))
            changed.push_back(id);
    }
    const QString command =
        loaded.state.command.isEmpty() ? QString() : QString(QStringLiteral(" (") + loaded.state.command + u')');
    offer.lead =
        QStringLiteral("Der Handregler bekommt zurück, was vor der Änderung vom %1%2 darin stand:\r%3.\r(%4)\r\r")
            .arg(ShownTime(loaded.state), command, ContentText(changed), Shown(offer.fileName));
    return offer;
}

void TakeBackEnded(const TakeBackOffer &offer, const CarefulReport &report)
{
    CarefulReport rest = report; // what was edited since is not meant
    std::erase_if(rest.job.entries, [&](const JobEntry &entry) {
        return std::ranges::find(report.edited, entry.step.id) != report.edited.end();
    });
    if (IsSettled(rest))
        MarkAsTakenBack(offer.fileName);
}
