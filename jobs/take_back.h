// Taking the last change back: the steps that write what stood there before, to the byte.
#pragma once

#include "jobs/careful_report.h"
#include "jobs/plan.h"

namespace hr::jobs
{

struct TakeBackOffer {
    QString fileName; // of the undo snapshot
    QString lead;     // above the question: when and by what it was changed, and what comes back
    std::vector<Step> steps;
};

/// A change that can be taken back.
struct UndoListEntry {
    int number = 0; // 0: of an older version
    QString time;   // "23.11.2026 10:15"
    QString command;
    QString handheld;
    std::vector<RecordId> changed;
    bool damaged = false;
};

/// All of them, the newest first.
std::vector<UndoListEntry> UndoList();

/// The newest change that was not taken back yet, or the one of that number. Nothing, after a box, when there is none or it
/// cannot be used; of a damaged one what is sound is offered after a question.
constexpr int NewestChange = -1;
[[nodiscard]] std::optional<TakeBackOffer> OfferTakeBack(const QString &title = {}, int number = NewestChange);

/// When all of it is back, the next offer is the change before.
void TakeBackEnded(const TakeBackOffer &offer, const CarefulReport &report);

} // namespace hr::jobs
