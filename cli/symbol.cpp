#include "cli/picture_files.h"
#include "cli/results.h"
#include "handheld/symbol_storage.h"

#include <optional>

namespace
{

/// What the arguments say after "lesen" or "schreiben".
struct Wanted {
    SymbolKind kind = SymbolKind::Loco;
    int number = 0;
    int half = 0;
    QString fileName;
};

std::optional<SymbolKind> KindOfWord(const QString &word)
{
    if (word == u"lok")
        return SymbolKind::Loco;
    if (word == u"funktion")
        return SymbolKind::Function;
    if (word == u"magnet")
        return SymbolKind::Accessory;
    UsageFault(QStringLiteral("\"%1\": hier muss lok, funktion oder magnet stehen.").arg(word));
    return {};
}

/// The half that a word names, of the kind's own two words.
std::optional<int> HalfOfWord(SymbolKind kind, const QString &word)
{
    const bool function = kind == SymbolKind::Function;
    const QStringList words = function ? QStringList{QStringLiteral("ein"), QStringLiteral("aus")}
                                       : QStringList{QStringLiteral("gruen"), QStringLiteral("rot")};
    const qsizetype half = words.indexOf(word);
    if (half >= 0)
        return static_cast<int>(half);
    UsageFault(QStringLiteral("\"%1\": hier muss %2 oder %3 stehen.").arg(word, words.at(0), words.at(1)));
    return {};
}

std::optional<Wanted> WantedOf(const QStringList &words)
{
    const auto kind = KindOfWord(words.value(1));
    if (!kind)
        return {};
    Wanted wanted{*kind, 0, 0, words.constLast()};
    const bool paired = *kind != SymbolKind::Loco;
    if (words.size() != (paired ? 5 : 4)) {
        UsageFault(paired ? QStringLiteral("Es fehlt etwas: NUMMER, ein|aus (oder gruen|rot) und DATEI.")
                          : QStringLiteral("Bei lok stehen nur NUMMER und DATEI."));
        return {};
    }
    const int highest = (paired ? PairCount : LokSymbolCount) - 1;
    bool isNumber = false;
    wanted.number = words.at(2).toInt(&isNumber);
    if (!isNumber || wanted.number < 0 || wanted.number > highest) {
        UsageFault(QStringLiteral("\"%1\" ist keine Symbolnummer von 0 bis %2.").arg(words.at(2)).arg(highest));
        return {};
    }
    const auto half = paired ? HalfOfWord(*kind, words.at(3)) : std::optional<int>(0);
    if (!half)
        return {};
    wanted.half = *half;
    return wanted;
}

Exit Run(const Call &call)
{
    const QString verb = call.arguments.value(0);
    if (verb != u"lesen" && verb != u"schreiben")
        return UsageFault(QStringLiteral("\"%1\": hier muss lesen oder schreiben stehen.").arg(verb));
    const auto wanted = WantedOf(call.arguments);
    if (!wanted)
        return Exit::Usage;
    SpiImage image{};
    return MovePicture(
        call, wanted->fileName, verb == u"schreiben", EmptyPicture(wanted->kind),
        [&] { return ReadPicture(image, wanted->kind, wanted->number, wanted->half); },
        [&](const Picture &picture) {
            return WritePicture(image, wanted->kind, wanted->number, wanted->half, picture, Patience::Job).outcome;
        });
}

} // namespace

Command SymbolCommand()
{
    return {QStringLiteral("symbol"),
        {QStringLiteral("lesen|schreiben"), QStringLiteral("lok|funktion|magnet"), QStringLiteral("NUMMER"),
            QStringLiteral("[ein|aus|gruen|rot]"), QStringLiteral("DATEI")},
        QStringLiteral("ein Symbol in eine Bilddatei (.bmp, .png) oder aus ihr in den Handregler"), {}, Run,
        QStringLiteral("NUMMER: bei lok 0 bis 63, bei funktion und magnet 0 bis 255. Bei funktion folgt ein oder "
                       "aus, bei magnet\n"
                       "gruen oder rot. Größe der Bilder: lok 48 x 16 Punkte, funktion und magnet 14 x 14.")};
}
