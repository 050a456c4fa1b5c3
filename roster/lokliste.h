// The Lokliste: a list of locos as a document, with undo of its own and without any window.
//
// A row is a loco as the list has it. What the handheld holds is known beside it (held), as far as it was read or written
// without a doubt; the two are compared, never mixed: to take something back in the list changes nothing in the handheld.
#pragma once

#include "roster/loco_csv.h"

#include <functional>
#include <map>
#include <memory>
#include <set>

namespace hr::roster
{

enum class LokState {
    InHandheld, // the handheld holds it exactly so
    FromFile,   // as its source had it
    Changed,    // edited here, or the handheld it came from is known to hold something else by now
    Invalid,    // cannot be written as it is: see faults
    Unknown     // known from an earlier start or another handheld, not looked at since
};

/// What a row that was read from the handheld has as its source.
QString HandheldSource();

/// "im Handregler", "aus Datei", "geändert", "ungültig", "unbekannt"
QString StateText(LokState state);

struct Lok {
    int id = 0;      // stays the same as long as the row lives
    int address = 0; // 0 where it has none
    LocoRecord record;
    RosterLoco came; // as it came into the list, or was written last; address 0: made here
    QString source;  // "Handregler", "Loks.csv", ...; empty: from an earlier start
};

class Lokliste
{
public:
    using Row = std::shared_ptr<const Lok>;
    static constexpr int MostSteps = 100;

    [[nodiscard]] int size() const { return static_cast<int>(rows.size()); }
    [[nodiscard]] const Lok &at(int row) const { return *rows.at(static_cast<size_t>(row)); }
    [[nodiscard]] int rowOf(int id) const; // -1 when it is gone
    [[nodiscard]] int rowOfAddress(int address) const;

    [[nodiscard]] LokState state(int row) const;

    /// What is wrong with a row, each in words for the user; empty when it can be written.
    [[nodiscard]] QStringList faults(int row) const;

    // --- Steps, each of which can be taken back. ---

    /// Changes rows in one step. Where nothing becomes different it is none.
    void change(const std::vector<int> &changed, const std::function<void(Lok &)> &edit);

    /// What is to happen to a loco whose address the list has already.
    enum class Doubled { Keep, Replace, Stop };
    using Decide = std::function<Doubled(const Lok &present, const RosterLoco &incoming)>;

    /// Adds the locos of a source in one step. False when it was stopped: then nothing is added.
    bool add(const std::vector<ListedLoco> &locos, const QString &source, const Decide &decide);

    /// Copies of rows, behind the last of them, under the next free addresses. Their first row.
    int duplicate(const std::vector<int> &copied);

    /// An empty line at the end, under the next free address. Its row.
    int addNew();

    /// Takes rows out of the list; the handheld keeps its locos.
    void remove(const std::vector<int> &removed);

    /// All steps while one of these lives are one.
    class OneStep
    {
    public:
        explicit OneStep(Lokliste &lokliste) : list(lokliste), from(lokliste.step) { list.joined = true; }
        ~OneStep() { list.join(from); }
        OneStep(const OneStep &) = delete;
        OneStep &operator=(const OneStep &) = delete;

    private:
        Lokliste &list;
        size_t from;
    };

    [[nodiscard]] bool canUndo() const { return step > 0; }
    [[nodiscard]] bool canRedo() const { return step < steps.size(); }
    void undo();
    void redo();

    /// True when something was edited since it was loaded, saved or sent.
    [[nodiscard]] bool isChanged() const { return unsaved; }
    void setSaved() { unsaved = false; }

    // --- What the handheld holds; no steps. ---

    /// Read or written without a doubt; an empty record says that the address is free there.
    void noteHeld(int address, const LocoRecord &record);

    /// The same for a list that shows what the handheld holds: its rows come and go with it.
    void takeHeld(int address, const LocoRecord &record);
    void forgetHeld() { heldLocos.clear(); }
    [[nodiscard]] const LocoRecord *held(int address) const;

    /// Rows that were written or saved as they are: that is how they came from now on.
    void settle(const std::vector<int> &settled, const QString &source);

    /// The address under which the handheld holds a row that has got another one here; 0 when it need not be deleted there.
    [[nodiscard]] int leftBehind(int row) const;

    /// Replaces all, without a step: the list of an earlier start.
    void load(const std::vector<RosterLoco> &locos, const QString &source);

    /// Told after every change: the rows that look different, or all when rows came or went.
    std::function<void(const std::vector<int> &changed)> onRows;
    std::function<void()> onReset;

private:
    struct Step {
        std::vector<Row> before;
        std::vector<Row> after;
    };

    void keep(const std::vector<Row> &after);
    void join(size_t from);
    void dropOldest();
    void show(const std::vector<Row> &wanted);
    void count();
    [[nodiscard]] Row made(int address, const LocoRecord &record, const QString &source, bool came);
    [[nodiscard]] int freeAddress(int from, const std::set<int> &taken) const;
    [[nodiscard]] std::set<int> takenAddresses() const;

    std::vector<Row> rows;
    std::map<int, int> uses; // how many rows have an address
    std::map<int, LocoRecord> heldLocos;
    std::vector<Step> steps;
    size_t step = 0; // so many of them are done
    bool joined = false;
    int lastId = 0;
    bool unsaved = false;
};

/// A name as it is typed: upper case, at most 21 characters, filled with blanks.
QString TypedName(const QString &text);

/// The rows as they can be saved.
std::vector<RosterLoco> LocosOf(const Lokliste &list);

} // namespace hr::roster
