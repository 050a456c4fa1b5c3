// Typing on a grid without a search field goes to a row: by its number, or by a word in any column.
#pragma once

#include "ui/widgets/grid.h"

namespace hr::ui
{

class TypeSearch
{
public:
    /// The grid belongs to the caller and outlives the search.
    explicit TypeSearch(Grid *searchedGrid) : grid(searchedGrid) { }

    /// A letter or digit was typed; what follows within a second belongs to the same word. The number of a row comes
    /// before texts that begin with the word, and these before words in what a picture is called. Where nothing fits,
    /// the current cell stays.
    void type(const QString &character);

private:
    [[nodiscard]] int rank(int row) const;

    Grid *grid;
    QString word;
    qint64 lastTypedUs = 0;
};

} // namespace hr::ui
