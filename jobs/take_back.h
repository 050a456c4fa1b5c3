// Taking the last change back: the steps that write what stood there before, to the byte.
#pragma once

#include "jobs/careful_report.h"
#include "jobs/plan.h"

struct TakeBackOffer {
    QString fileName; // of the undo snapshot
    QString lead;     // above the question: when and by what it was changed, and what comes back
    std::vector<Step> steps;
};

/// The newest undo snapshot that was not taken back yet. Nothing, after a box, when there is none or it cannot be used; of a
/// damaged one what is sound is offered after a question.
[[nodiscard]] std::optional<TakeBackOffer> OfferTakeBack(const QString &title = {});

/// When all of it is back, the next offer is the change before.
void TakeBackEnded(const TakeBackOffer &offer, const CarefulReport &report);
