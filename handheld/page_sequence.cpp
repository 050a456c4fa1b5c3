#include "handheld/page_sequence.h"

#include "link/cadence.h"
#include "program/ask.h"
#include "program/run_control.h"

#include <algorithm>

namespace hr::handheld
{

namespace
{

constexpr int LoadRepeats = 2;    // after the first load
constexpr int FastTries = 2;      // in the fast cadence, before it falls back
constexpr int DiffersRepeats = 1; // of a page that was programmed and differs

/// How a page load ended: the page is in buffer 1, it certainly is not, or nobody can tell.
enum class Loaded { Yes, No, Unknown };

/// After a load that nobody acknowledged, or whose acknowledge is not believed: the chip is asked, and the load repeated until
/// the page is there.
Loaded SecureLoad(int address, bool believesAcknowledge)
{
    for (int repeat = 0;; ++repeat) {
        const Result<bool> equal = PageEqualsBuffer1(address);
        if (equal.ok() && equal.value)
            return Loaded::Yes;
        if (repeat == LoadRepeats || equal.outcome.brokenOff())
            return equal.ok() ? Loaded::No : Loaded::Unknown;
        const bool acknowledged = move_spibuf_to_buf1(address, Patience::Quiet).ok();
        if (acknowledged && believesAcknowledge)
            return Loaded::Yes;
        if (!acknowledged && !equal.ok())
            return Loaded::Unknown; // neither question nor load is answered: nobody is there
    }
}

void TellNothingWritten()
{
    if (BoxesAreSilent())
        return;
    TheAsk().showBox({QStringLiteral("Der Handregler hat die Speicherseite nicht geladen.\r"
                                     "Damit die Nachbarn unversehrt bleiben, wurde sie nicht geschrieben."),
        QStringLiteral("Fehler!"), BoxIcon::Critical});
}

Outcome WhyBrokenOff()
{
    if (WaitsMustEnd())
        return Outcome(End::ProgramEnds);
    return Outcome(TheMessages().secondHandheld() ? End::SecondHandheld : End::PortLost);
}

PageResult AsItWas(PageState state, const Outcome &outcome)
{
    return {outcome.brokenOff() ? PageState::BrokenOff : state, outcome};
}

/// One run through the steps.
class Sequence
{
public:
    Sequence(SpiImage &buffer, const PageWrite &wanted, const Patience &manner)
        : image(buffer), page(wanted), patience(manner)
    {
    }

    PageResult run()
    {
        Outcome failure;
        const Loaded loaded = load(failure);
        if (loaded == Loaded::No && patience.goesOn)
            TellNothingWritten();
        if (loaded == Loaded::No || EndsStep(failure, patience))
            return AsItWas(PageState::NotLoaded, failure);
        failure.keep(writeParts());
        // It may have come back meanwhile: then the load is made sure of, and the parts are written once more.
        if (loaded == Loaded::Unknown && move_spibuf_to_buf1(page.address, Patience::Quiet).ok())
            failure = writeParts();
        if (TransferBrokenOff())
            failure.keep(WhyBrokenOff());
        if (EndsStep(failure, patience) || failure.brokenOff())
            return AsItWas(PageState::NotWritten, failure);
        return program(failure);
    }

private:
    /// The failure is that of a load that did not succeed in the end.
    Loaded load(Outcome &failure)
    {
        if (!page.loadFirst && !patience.keepsRest)
            return Loaded::Yes;
        failure = move_spibuf_to_buf1(page.address, patience);
        const bool proves = patience.verifies && failure.ok();
        if (!failure.timedOut() && !proves)
            return Loaded::Yes; // or broken off
        const Loaded loaded = SecureLoad(page.address, !proves);
        if (loaded == Loaded::Yes)
            failure = {};
        else if (TransferBrokenOff())
            failure = WhyBrokenOff();
        else if (failure.ok())
            failure = Outcome(End::NoAnswer, QStringLiteral("move_spibuf_to_buf1"));
        return loaded;
    }

    Outcome writeParts()
    {
        Outcome outcome;
        for (const PagePart &part : page.parts) {
            if (TransferBrokenOff() || EndsStep(outcome, patience))
                break;
            LayBufferWrite(image, part.offset);
            std::copy(part.data.begin(), part.data.end(), image.begin() + WritePosition);
            outcome.keep(writeSlices(part));
        }
        return outcome;
    }

    /// Stores the slices and lets the last one start the execution. The last one is never repeated alone: clocking through
    /// the chip leaves the chip's answer in the handheld's buffer.
    Outcome writeSlices(const PagePart &part)
    {
        Outcome outcome;
        for (int start = 0; start <= part.lastSlice && !EndsStep(outcome, patience); start += SliceSize)
            outcome.keep(write_to_spibuf(image, start, start == part.lastSlice ? part.executeLength : 0, patience));
        return outcome;
    }

    PageResult program(Outcome failure)
    {
        const Outcome programmed = write_buf1_to_flash(page.address, patience);
        failure.keep(programmed);
        if (patience.goesOn)
            return {failure.ok() ? PageState::Programmed : PageState::Unanswered, failure};
        if (programmed.brokenOff())
            return {PageState::Unanswered, programmed};
        if (programmed.ok() && !patience.verifies)
            return {};
        const Result<bool> equal = PageEqualsBuffer1(page.address); // perhaps only its acknowledge is missing
        if (equal.ok() && equal.value)
            return {};
        if (programmed.ok() && equal.ok())
            return {PageState::Differs, Outcome(End::Differs)};
        return {PageState::Unanswered, programmed.ok() ? equal.outcome : programmed};
    }

    SpiImage &image;
    const PageWrite &page;
    const Patience patience;
};

/// Once the page was to be programmed it is not "as it was" any more, whatever became of a later try.
PageResult Joined(const PageResult &before, const PageResult &tried)
{
    return IsUntouched(tried.page) && !IsUntouched(before.page) ? PageResult{before.page, tried.outcome} : tried;
}

} // namespace

PageResult ProgramPage(SpiImage &image, const PageWrite &page, const Patience &patience)
{
    const PageSequence guard;
    const int fastTries = CurrentCadence() == Cadence::Events ? FastTries : 0;
    PageResult result;
    int differed = 0;
    for (int tries = 0; tries < fastTries + patience.sequences; ++tries) {
        const bool fast = tries < fastTries;
        if (fastTries > 0 && tries == fastTries)
            FallBackToTicks();
        const PageResult tried = Sequence(image, page, fast ? patience.quiet() : patience).run();
        result = tries == 0 ? tried : Joined(result, tried);
        differed += tried.page == PageState::Differs ? 1 : 0;
        const bool again = tried.page == PageState::Differs ? differed <= DiffersRepeats : tried.outcome.timedOut();
        if (!again || TransferBrokenOff() || (fast && BoxesAreSilent())
            || (!fast && tried.page == PageState::NotLoaded))
            break;
    }
    return result;
}

} // namespace hr::handheld
