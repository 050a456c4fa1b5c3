#include "ui/common/type_search.h"

#include "platform/world.h"

namespace hr::ui
{

namespace
{
constexpr qint64 PauseUs = 1'000'000;
constexpr int NoRank = 3;

/// "12" is the number of the rows 12 and f12.
bool IsNumberOf(const QString &head, const QString &word)
{
    return head.compare(word, Qt::CaseInsensitive) == 0 || (head.startsWith(u'f') && head.mid(1) == word);
}

} // namespace

/// How well a row fits, 0 the best.
int TypeSearch::rank(int row) const
{
    if (IsNumberOf(grid->text(row, 0), word))
        return 0;
    int best = NoRank;
    for (int column = 1; column < grid->columnCount(); ++column) {
        if (grid->text(row, column).startsWith(word, Qt::CaseInsensitive))
            return 1;
        const QString spoken = grid->model()->index(row, column).data(Qt::AccessibleTextRole).toString();
        if (word.front().isLetter() && spoken.contains(u' ' + word, Qt::CaseInsensitive))
            best = 2;
    }
    return best;
}

void TypeSearch::type(const QString &character)
{
    const qint64 now = TheEvents().monotonicUs();
    const bool goesOn = !word.isEmpty() && now - lastTypedUs < PauseUs;
    lastTypedUs = now;
    word = goesOn ? word + character : character;
    const int from = qMax(0, grid->currentRow()) + (goesOn ? 0 : 1);
    int found = -1;
    int best = NoRank;
    for (int step = 0; step < grid->rowCount() && best > 0; ++step) {
        const int row = (from + step) % grid->rowCount();
        if (const int fit = rank(row); fit < best) {
            best = fit;
            found = row;
        }
    }
    if (found >= 0)
        grid->setCurrentCell(found, qMax(0, grid->currentColumn()));
}

} // namespace hr::ui
