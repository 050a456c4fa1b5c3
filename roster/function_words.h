// Words for functions as other programs' lists have them ("Headlight", "Pfeife"), and the function symbols that they mean.
//
// The words stand in konf\Funktionswoerter.txt (UTF-8), which users can extend: "14 = Pfeife, Whistle", a line each, the
// first word of a symbol is the one that is written; empty lines and lines with "#" are passed over, and so is what
// cannot be understood.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace hr::roster
{

class FunctionWords
{
public:
    explicit FunctionWords(const QByteArray &file);

    /// The words of konf\Funktionswoerter.txt; none when it is missing.
    static FunctionWords Kept();

    /// The symbol 0..255 that a label means: that of the longest word that stands in it, at the start of one of its words or,
    /// from four letters on, within one ("Rangierlicht"). "Symbol 17" means 17, and "F5" and an empty label mean none (0).
    [[nodiscard]] std::optional<int> symbolOf(const QString &label) const;

    /// A label that means this symbol 1..255.
    [[nodiscard]] QString labelOf(int symbol) const;

private:
    struct Word {
        QString text; // lower case
        int symbol;
    };
    std::vector<Word> words; // the longest first
    std::map<int, QString> firstWords;
};

} // namespace hr::roster
