// Steps that can be taken back and done again, each kept as the state before and after it.
#pragma once

#include "platform/rooms.h"

#include <QUndoStack>

#include <functional>
#include <utility>

namespace hr::ui
{

template <typename State> class SnapshotHistory
{
public:
    using Take = std::function<State()>;
    using Restore = std::function<void(const State &)>;

    /// A step that is no continuation of another one.
    static constexpr int SingleStep = -1;

    /// `take` gives the present state, `restore` brings a kept one back.
    SnapshotHistory(Take takeState, Restore restoreState)
        : take(std::move(takeState)), restore(std::move(restoreState))
    {
        steps.setUndoLimit(MostSteps);
    }

    /// Notes what has changed since `before` as one step; where nothing has, it is none. Steps of the same kind that
    /// follow each other become one.
    void note(State before, int kind = SingleStep)
    {
        State after = take();
        if (!(before == after))
            steps.push(new Step(*this, std::move(before), std::move(after), kind));
    }

    /// The steps, to undo, redo and clear them.
    QUndoStack &stack() { return steps; }

private:
    static constexpr int MostSteps = 100;

    class Step : public QUndoCommand
    {
    public:
        Step(const SnapshotHistory &owner, State stateBefore, State stateAfter, int stepKind)
            : history(owner), before(std::move(stateBefore)), after(std::move(stateAfter)), kind(stepKind)
        {
        }
        [[nodiscard]] int id() const override { return kind; }
        void undo() override { history.restore(before); }
        void redo() override
        {
            if (std::exchange(done, true)) // the first time it has been done already
                history.restore(after);
        }
        bool mergeWith(const QUndoCommand *later) override
        {
            after = static_cast<const Step *>(later)->after;
            setObsolete(before == after);
            return true;
        }

    private:
        const SnapshotHistory &history;
        State before;
        State after;
        int kind;
        bool done = false;
    };

    Take take;
    Restore restore;
    QUndoStack steps;
};

} // namespace hr::ui
