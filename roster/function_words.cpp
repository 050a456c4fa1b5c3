#include "roster/function_words.h"

#include "platform/files.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace hr::roster
{

namespace
{

constexpr int HighestSymbol = 255;
constexpr qsizetype LettersWithin = 4; // shorter words stand by chance in others

bool StandsIn(const QString &label, const QString &word)
{
    for (qsizetype at = label.indexOf(word); at >= 0; at = label.indexOf(word, at + 1)) {
        if (word.size() >= LettersWithin || at == 0 || !label.at(at - 1).isLetterOrNumber())
            return true;
    }
    return false;
}

} // namespace

FunctionWords::FunctionWords(const QByteArray &file)
{
    for (const QString &line : QString::fromUtf8(file).split(u'\n')) {
        bool isNumber = false;
        const int symbol = line.section(u'=', 0, 0).trimmed().toInt(&isNumber);
        if (!isNumber || symbol < 0 || symbol > HighestSymbol || line.startsWith(u'#'))
            continue;
        for (const QString &part : line.section(u'=', 1).split(u',')) {
            const QString word = part.trimmed();
            if (word.isEmpty())
                continue;
            words.push_back({word.toLower(), symbol});
            firstWords.try_emplace(symbol, word);
        }
    }
    std::ranges::stable_sort(words, std::greater(), [](const Word &word) { return word.text.size(); });
}

FunctionWords FunctionWords::Kept()
{
    return FunctionWords(
        ReadWholeFile(KonfPath(QStringLiteral("\\konf\\Funktionswoerter.txt"))).value_or(QByteArray()));
}

std::optional<int> FunctionWords::symbolOf(const QString &label) const
{
    static const QRegularExpression unnamed(QStringLiteral("^f\\d+$"));
    static const QRegularExpression numbered(QStringLiteral("^symbol (\\d{1,3})$"));
    const QString text = label.simplified().toLower();
    if (text.isEmpty() || unnamed.match(text).hasMatch())
        return 0;
    if (const auto match = numbered.match(text); match.hasMatch() && match.captured(1).toInt() <= HighestSymbol)
        return match.captured(1).toInt();
    const auto found = std::ranges::find_if(words, [&text](const Word &word) { return StandsIn(text, word.text); });
    return found != words.end() ? std::optional(found->symbol) : std::nullopt;
}

QString FunctionWords::labelOf(int symbol) const
{
    const auto word = firstWords.find(symbol);
    if (word != firstWords.end() && symbolOf(word->second) == symbol)
        return word->second;
    return QStringLiteral("Symbol %1").arg(symbol);
}

} // namespace hr::roster
