// The handheld's character set of 53 characters and the conversions between it and Latin-1 texts.
//
// Codes: 0-9 "0".."9", 10-35 "A".."Z", 36-38 "Ä" "Ö" "Ü", 39 blank, 40 "+", 41 "-", 42 ".", 43 ":", 44 "/",
// 45 "=", 46 "_", 47 "?", 48 "<", 49 ">", 50 "^", 51 "|", 52 "]"; 53-255 are undefined and show as U+00FF.
#pragma once

#include "platform/rooms.h"

#include <QString>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace hr::handheld
{

constexpr int ZeichensatzLast = 52; // highest defined code
constexpr quint8 BlankCode = 39;
constexpr QChar FillerCharacter(u'\u00FF'); // shown for every undefined code

/// Character of each code 0..255.
inline constexpr std::array<QChar, 256> Zeichensatz = [] {
    std::array<QChar, 256> characters{};
    characters.fill(FillerCharacter);
    constexpr std::u16string_view defined = u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ\u00C4\u00D6\u00DC +-.:/=_?<>^|]";
    static_assert(defined.size() == ZeichensatzLast + 1);
    std::copy(defined.begin(), defined.end(), characters.begin());
    return characters;
}();

/// Code of a one-character text. Exact comparison (lower-case letters are not in the set); a character outside
/// the set, and an empty text, give the blank's code.
quint8 CharCode(const QString &character);

/// Writes exactly `length` codes of the upper-cased text to codes[start ...]; short texts are filled with blanks,
/// further characters are dropped.
void EncodeName(const QString &text, std::span<quint8> codes, int start, int length);

/// Text of `count` codes from index start; trailing blanks are kept.
QString DecodeName(std::span<const quint8> codes, int start, int count);

/// A foreign text rewritten in characters of the set: upper case, sharp s as SS, similar punctuation, blanks for
/// all that the handheld cannot show. May be longer than the text.
QString AdaptName(const QString &text);

/// The characters of a text that are not in the set, each once; they are written as blanks.
QString UnknownCharacters(const QString &text);

/// The text as the handheld gives it back: encoded into so many codes and decoded again.
QString AsStored(const QString &text, int length);

} // namespace hr::handheld
