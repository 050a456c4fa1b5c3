// Text helpers with the meaning that number fields, names and message texts of this program need.
#pragma once

#include "platform/rooms.h"

#include <QString>

namespace hr::platform
{

/// The number at the start of a text: leading blanks are skipped, then digits are read; anything else ends it.
/// No digits (also a sign) give 0. Saturates at INT_MAX instead of overflowing.
int Val(const QString &text);

/// Upper case of the Latin-1 letters: a-z, and the accented small letters U+00E0..U+00FE (without the division
/// sign). The sharp s and U+00FF have no Latin-1 capital and stay; so does every character beyond Latin-1.
QString UpperLatin1(const QString &text);

/// A number as it is appended to a message text that does not end in a blank: decimal with one leading blank.
QString NumberText(int number);

/// The text without the blanks at its end.
QString WithoutTrailingBlanks(QString text);

/// The text with each CR, LF or CR LF turned into the line break that widgets show.
QString ScreenLines(const QString &text);

} // namespace hr::platform
