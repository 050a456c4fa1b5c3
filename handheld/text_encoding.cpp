#include "handheld/text_encoding.h"

#include "platform/text.h"

#include <vector>

namespace hr::handheld
{

namespace
{

QString ForeignCharacters()
{
    return QStringLiteral("ß-.,()<>_:+*/#!");
}

QString SubstituteCharacters()
{
    return QStringLiteral("S-..  <>_:+./+.");
}

bool IsInSet(QChar c)
{
    return CharCode(QString(c)) != BlankCode || c == u' ';
}

QString AdaptCharacter(QChar c)
{
    const qsizetype foreign = ForeignCharacters().indexOf(c);
    if (foreign >= 0) {
        const QChar substitute = SubstituteCharacters().at(foreign);
        return substitute == u'S' ? QStringLiteral("SS") : QString(substitute);
    }
    return IsInSet(c) ? QString(c) : QStringLiteral(" ");
}

} // namespace

quint8 CharCode(const QString &character)
{
    if (character.isEmpty())
        return BlankCode;
    for (quint8 code = 0; code <= ZeichensatzLast; ++code) {
        if (Zeichensatz.at(static_cast<size_t>(code)) == character.at(0))
            return code;
    }
    return BlankCode;
}

void EncodeName(const QString &text, std::span<quint8> codes, int start, int length)
{
    const QString padded = UpperLatin1(text).leftJustified(length, u' ', true);
    for (int i = 0; i < length; ++i) {
        Q_ASSERT(static_cast<size_t>(start + i) < codes.size());
        codes[static_cast<size_t>(start + i)] = CharCode(padded.at(i));
    }
}

QString DecodeName(std::span<const quint8> codes, int start, int count)
{
    QString text;
    for (int i = start; i < start + count; ++i) {
        Q_ASSERT(static_cast<size_t>(i) < codes.size());
        text += Zeichensatz.at(static_cast<size_t>(codes[static_cast<size_t>(i)]));
    }
    return text;
}

QString AdaptName(const QString &text)
{
    QString adapted;
    for (const QChar c : UpperLatin1(text))
        adapted += AdaptCharacter(c);
    return adapted;
}

QString UnknownCharacters(const QString &text)
{
    QString unknown;
    for (const QChar c : text) {
        if (!IsInSet(c) && !unknown.contains(c))
            unknown += c;
    }
    return unknown;
}

QString AsStored(const QString &text, int length)
{
    std::vector<quint8> codes(static_cast<size_t>(length), BlankCode);
    EncodeName(text, codes, 0, length);
    return DecodeName(codes, 0, length);
}

} // namespace hr::handheld
