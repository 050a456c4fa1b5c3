// Texts that list numbers and ranges of numbers, for example "1-5,8".
//
// Entries are separated by commas; an entry is a number or a range low-high; digits are 0 to 9. Blanks and line
// breaks are ignored wherever they stand, and so are empty entries.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <span>
#include <vector>

namespace hr::handheld
{

/// Hands out the numbers of a text one by one, in the order of the text, without regard to any limits. Entries that
/// are neither a number nor a range low-high are passed over.
class NumberList
{
public:
    explicit NumberList(const QString &text);

    /// The next number, or -1 at the end of the text.
    int next();

private:
    bool openEntry();

    QString text;
    qsizetype position = 0;
    qint64 current = 0; // wider than the numbers, so that it can stand one past the highest
    qint64 last = -1;
};

/// Why the text cannot be used for numbers low..high, in German for the user, naming the entry; empty when it can.
/// A text without any number cannot.
QString NumberListFault(const QString &text, int low, int high);

/// The numbers of a checked text, each once, in the order of the text.
std::vector<int> EachNumberOnce(const QString &text);

/// The numbers as the shortest list, ascending, each once: 8, 1, 2, 3 becomes "1-3,8". After every ten entries
/// comes the line separator.
QString ShortList(std::span<const int> numbers, const QString &lineSeparator);

/// The numbers one by one in the given order, separated by commas, with a line break after every ten.
QString TenPerLine(std::span<const int> numbers);

} // namespace hr::handheld
