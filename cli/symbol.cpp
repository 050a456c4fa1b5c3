#include "cli/careful.h"
#include "cli/picture_files.h"
#include "cli/results.h"
#include "handheld/record_kinds.h"

#include <optional>

namespace hr::cli
{

namespace
{

const auto BuiltInOption = QStringLiteral("auch-eingebaute");

/// What the arguments say after "lesen" or "schreiben".
struct Wanted {
    RecordId id;
    QString fileName;
};

std::optional<SymbolKind> KindOfWord(const QString &word)
{
    for (const RecordKind kind : AllKinds) {
        if (RowOf(kind).symbol && RowOf(kind).word == word)
            return RowOf(kind).symbol;
    }
    UsageFault(QStringLiteral("\"%1\": hier muss lok, funktion oder magnet stehen.").arg(word));
    return {};
}

/// The half that a word names, of the kind's own two words.
std::optional<RecordKind> HalfOfWord(SymbolKind symbol, const QString &word)
{
    const auto on = RecordKindOf(symbol, HalfOn);
    const auto off = RecordKindOf(symbol, HalfOff);
    for (const RecordKind kind : {on, off}) {
        if (RowOf(kind).halfWord == word)
            return kind;
    }
    UsageFault(
        QStringLiteral("\"%1\": hier muss %2 oder %3 stehen.").arg(word, RowOf(on).halfWord, RowOf(off).halfWord));
    return {};
}

std::optional<Wanted> WantedOf(const QStringList &words)
{
    const auto symbol = KindOfWord(words.value(1));
    if (!symbol)
        return {};
    const bool paired = *symbol != SymbolKind::Loco;
    if (words.size() != (paired ? 5 : 4)) {
        UsageFault(paired ? QStringLiteral("Es fehlt etwas: NUMMER, ein|aus (oder gruen|rot) und DATEI.")
                          : QStringLiteral("Bei lok stehen nur NUMMER und DATEI."));
        return {};
    }
    const int highest = RowOf(RecordKindOf(*symbol, HalfOn)).highest;
    bool isNumber = false;
    const int number = words.at(2).toInt(&isNumber);
    if (!isNumber || number < 0 || number > highest) {
        UsageFault(QStringLiteral("\"%1\" ist keine Symbolnummer von 0 bis %2.").arg(words.at(2)).arg(highest));
        return {};
    }
    const auto kind = paired ? HalfOfWord(*symbol, words.at(3)) : RecordKindOf(*symbol, HalfOn);
    return kind ? std::optional(Wanted{{*kind, number}, words.constLast()}) : std::nullopt;
}

Exit Write(const Call &call, const Wanted &wanted)
{
    const SymbolKind symbol = SymbolKindOf(wanted.id.kind);
    if (wanted.id.number <= LastBuiltInSymbol(symbol) && !call.has(BuiltInOption))
        return UsageFault(QStringLiteral("Das Symbol %1 ist eingebaut (0 bis %2). Mit --auch-eingebaute wird es "
                                         "überschrieben.")
                              .arg(wanted.id.number)
                              .arg(LastBuiltInSymbol(symbol)));
    return WritePictureFrom(call, wanted.fileName, wanted.id, EmptyPicture(symbol));
}

Exit Run(const Call &call)
{
    const QString verb = call.arguments.value(0);
    if (verb != u"lesen" && verb != u"schreiben")
        return UsageFault(QStringLiteral("\"%1\": hier muss lesen oder schreiben stehen.").arg(verb));
    const auto wanted = WantedOf(call.arguments);
    if (!wanted)
        return Exit::Usage;
    if (verb == u"schreiben")
        return Write(call, *wanted);
    const RecordId &id = wanted->id;
    SpiImage image{};
    return ReadPictureInto(call, wanted->fileName,
        [&] { return ReadPicture(image, SymbolKindOf(id.kind), id.number, HalfOf(id.kind)); });
}

} // namespace

Command SymbolCommand()
{
    return {QStringLiteral("symbol"),
        {QStringLiteral("lesen|schreiben"), QStringLiteral("lok|funktion|magnet"), QStringLiteral("NUMMER"),
            QStringLiteral("[ein|aus|gruen|rot]"), QStringLiteral("DATEI")},
        QStringLiteral("ein Symbol in eine Bilddatei (.bmp, .png) oder aus ihr in den Handregler"),
        CarefulOptions(Keeps::Nothing) << QCommandLineOption(
            BuiltInOption, QStringLiteral("überschreibt auch Symbole, die der Handregler mitbringt")),
        Run,
        QStringLiteral(
            "NUMMER: bei lok 0 bis 63, bei funktion und magnet 0 bis 255. Bei funktion folgt ein oder "
            "aus, bei magnet\n"
            "gruen oder rot. Größe der Bilder: lok 48 x 16 Punkte, funktion und magnet 14 x 14. Beim Schreiben wird\n"
            "vorher gefragt; eingebaut sind die Funktionssymbole 0 bis 163 und die Magnetartikelsymbole 0 bis 27.")};
}

} // namespace hr::cli
