#include "cli/careful.h"
#include "cli/output.h"
#include "cli/picture_files.h"
#include "cli/results.h"
#include "cli/service.h"
#include "handheld/record_kinds.h"
#include "jobs/report.h"
#include "jobs/runner.h"
#include "platform/files.h"
#include "platform/text.h"
#include "symbols/symbol_folder.h"

#include <QDir>
#include <QFileInfo>

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
    UsageFault(QStringLiteral("\"%1\": hier muss lok, funktion, magnet oder alle stehen.").arg(word));
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

// --- All symbols, and a folder. ---

void PrintRead(const Call &call, const QString &folder, const std::vector<RecordId> &read,
    const std::vector<RecordId> &erased, const std::vector<RecordId> &doubtful)
{
    if (call.options.json) {
        PrintJson(QJsonDocument(
            QJsonObject{{QStringLiteral("ordner"), folder}, {QStringLiteral("gelesen"), RecordsJson(read)},
                {QStringLiteral("leer"), RecordsJson(erased)}, {QStringLiteral("unsicher"), RecordsJson(doubtful)}}));
        return;
    }
    PrintLine(QStringLiteral("Gelesen nach %1:").arg(folder));
    PrintLine(ScreenLines(RecordsText(read)));
    if (!erased.empty())
        PrintLine(QStringLiteral("Leer, ohne Datei:\n") + ScreenLines(RecordsText(erased)));
    if (!doubtful.empty())
        PrintLine(QStringLiteral("Nicht sicher gelesen, ohne Datei:\n") + ScreenLines(RecordsText(doubtful)));
}

/// The files are written when all is read: a reading that is stopped leaves the folder as it was.
Exit ReadAll(const Call &call, const QString &folder)
{
    if (!ReadsOnly(call))
        return Exit::Usage;
    if (const QFileInfo place(folder); place.exists() && !place.isDir())
        return UsageFault(QStringLiteral("%1 ist kein Ordner.").arg(folder));
    if (!MakeFolder(folder)) { // known before the minutes that the reading takes
        ReportFileUnwritable(folder);
        return Exit::Usage;
    }
    const Service service(call);
    if (!service.ready())
        return service.failure();
    Plan plan;
    plan.progress = [](const Step &step) { return ProgressText(step.id); };
    for (const RecordId &id : AllSymbols())
        plan.steps.push_back({StepKind::Read, id, {}, {}});
    const Report report = RunJob(plan);
    if (report.end != JobEnd::Complete) {
        Tell(EndText(report.end, QStringLiteral("Angehalten."))
            + QStringLiteral(" Es wurde keine Datei geschrieben."));
        return ExitOf(report.end, true);
    }
    std::vector<std::pair<RecordId, Picture>> pictures;
    std::vector<RecordId> read;
    std::vector<RecordId> erased;
    std::vector<RecordId> doubtful;
    for (const JobEntry &entry : report.entries) {
        const RecordId &id = entry.step.id;
        const auto *picture = entry.value ? std::get_if<Picture>(&*entry.value) : nullptr;
        if (entry.state != RecordState::Done || picture == nullptr) {
            doubtful.push_back(id);
        } else if (IsErased(*picture)) {
            erased.push_back(id);
        } else {
            read.push_back(id);
            pictures.emplace_back(id, *picture);
        }
    }
    if (const QString fault = WriteSymbolFolder(folder, pictures); !fault.isEmpty()) {
        ReportFileUnwritable(fault);
        return Exit::Usage;
    }
    PrintRead(call, folder, read, erased, doubtful);
    return doubtful.empty() ? Exit::Done : Exit::Incomplete;
}

/// At most twenty lines of what is to be told, and how many more there are.
QString SomeLines(const QStringList &lines)
{
    constexpr qsizetype most = 20;
    QString text = lines.first(qMin(most, lines.size())).join(u'\n');
    if (lines.size() > most)
        text += QStringLiteral("\n… und %1 weitere").arg(lines.size() - most);
    return text;
}

Exit WriteAll(const Call &call, const QString &folder)
{
    if (!QFileInfo(folder).isDir())
        return UsageFault(QStringLiteral("Den Ordner %1 gibt es nicht.").arg(folder));
    const SymbolFolder files = ReadSymbolFolder(folder);
    if (!files.passedOver.isEmpty())
        Tell(QStringLiteral("Kein Symbol, übergangen:\n") + SomeLines(files.passedOver));
    if (!files.faults.isEmpty())
        return FileFaults(folder, SomeLines(files.faults));
    CarefulJob job = JobOf(call);
    int builtIn = 0;
    for (const FolderPicture &file : files.pictures) {
        if (file.id.number <= LastBuiltInSymbol(SymbolKindOf(file.id.kind)) && !call.has(BuiltInOption)) {
            ++builtIn;
            continue;
        }
        job.steps.push_back({StepKind::Write, file.id, file.picture, {}});
        job.about += RecordName(file.id).toUtf8()
            + QByteArray(reinterpret_cast<const char *>(file.picture.bytes.data()),
                static_cast<qsizetype>(file.picture.bytes.size()));
    }
    if (builtIn > 0 && !call.options.quiet)
        Tell(QStringLiteral("Übergangen: %1 Bilder von eingebauten Symbolen "
                            "(--auch-eingebaute schreibt auch sie).")
                 .arg(builtIn));
    if (job.steps.empty())
        return UsageFault(QStringLiteral("In %1 ist kein Bild, das geschrieben werden kann. Es müsste in LokSymbole, "
                                         "LokfktSymbole oder MagSymbole liegen.")
                              .arg(folder));
    return RunCarefully(call, job);
}

Exit RunAll(const Call &call, const QString &verb)
{
    if (call.arguments.size() != 3)
        return UsageFault(QStringLiteral("Bei alle steht nur ORDNER."));
    const QString folder = QDir::cleanPath(call.arguments.at(2));
    return verb == u"lesen" ? ReadAll(call, folder) : WriteAll(call, folder);
}

Exit Run(const Call &call)
{
    const QString verb = call.arguments.value(0);
    if (verb != u"lesen" && verb != u"schreiben")
        return UsageFault(QStringLiteral("\"%1\": hier muss lesen oder schreiben stehen.").arg(verb));
    if (call.arguments.value(1) == u"alle")
        return RunAll(call, verb);
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
        {QStringLiteral("lesen|schreiben"), QStringLiteral("lok|funktion|magnet|alle"), QStringLiteral("[NUMMER]"),
            QStringLiteral("[ein|aus|gruen|rot]"), QStringLiteral("DATEI|ORDNER")},
        QStringLiteral("ein Symbol in eine Bilddatei (.bmp, .png) oder aus ihr in den Handregler"),
        CarefulOptions(Keeps::Nothing) << QCommandLineOption(
            BuiltInOption, QStringLiteral("überschreibt auch Symbole, die der Handregler mitbringt")),
        Run,
        QStringLiteral(
            "NUMMER: bei lok 0 bis 63, bei funktion und magnet 0 bis 255. Bei funktion folgt ein oder "
            "aus, bei magnet\n"
            "gruen oder rot. Größe der Bilder: lok 48 x 16 Punkte, funktion und magnet 14 x 14. Beim Schreiben wird\n"
            "vorher gefragt; eingebaut sind die Funktionssymbole 0 bis 163 und die Magnetartikelsymbole 0 bis 27.\n"
            "alle ORDNER: alle Symbole auf einmal, als Bilder in den Ordnern LokSymbole, LokfktSymbole und "
            "MagSymbole;\n"
            "geschrieben wird nur, was anders ist.")};
}

} // namespace hr::cli
