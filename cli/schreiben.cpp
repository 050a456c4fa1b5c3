#include "cli/careful.h"
#include "cli/loco_files.h"
#include "cli/results.h"
#include "handheld/flash_map.h"
#include "jobs/listed_step.h"
#include "platform/files.h"

#include <QDir>

#include <algorithm>

namespace hr::cli
{

namespace
{

const auto OnlyOption = QStringLiteral("nur");

/// Only those that --nur lists; each of them must be in the file.
bool KeepWanted(std::vector<ListedLoco> &locos, const std::vector<int> &wanted)
{
    for (const int number : wanted) {
        if (std::ranges::none_of(locos, [number](const ListedLoco &loco) { return loco.address == number; })) {
            UsageFault(QStringLiteral("Die Lok %1 steht nicht in der Datei.").arg(number));
            return false;
        }
    }
    std::erase_if(locos, [&](const ListedLoco &loco) { return std::ranges::count(wanted, loco.address) == 0; });
    return true;
}

/// Addresses with symbols alone may be the assignment of the accessories.
bool SaysWhatALocoIs(const ListedLoco &loco)
{
    const auto given = [](const std::optional<int> &value) { return value.has_value(); };
    return loco.name || std::ranges::any_of(loco.symbols, given) || std::ranges::any_of(loco.modes, given);
}

/// What a run is about: it goes on only with the same. What a roster says also stands in other files (the loco files, the
/// words of the functions), so there it is what became of them.
QByteArray AboutOf(const QString &fileName, const std::vector<ListedLoco> &locos)
{
    QByteArray about = ReadWholeFile(fileName).value_or(QByteArray());
    if (!IsLocoFolder(fileName) && !fileName.endsWith(u".xml", Qt::CaseInsensitive))
        return about;
    for (const ListedLoco &loco : locos)
        about += CsvLine({loco.address, Applied(loco, {})}).toUtf8() + '\n';
    return about;
}

Exit Run(const Call &call)
{
    const QString fileName = QDir::cleanPath(call.arguments.value(0)); // a folder's journal lies beside it, not in it
    auto locos = ReadLocoFile(fileName);
    if (!locos)
        return Exit::Usage;
    if (call.has(OnlyOption)) {
        const auto wanted = ListArgument(call.value(OnlyOption), FirstLoco, LastLoco);
        if (!wanted || !KeepWanted(*locos, *wanted))
            return Exit::Usage;
    }
    if (std::ranges::none_of(*locos, SaysWhatALocoIs))
        return FileFaults(fileName, QStringLiteral("Die Liste nennt weder Namen noch Funktionen von Loks."));
    if (!NamesAccepted(*locos))
        return Exit::Stopped;
    CarefulJob job = JobOf(call);
    job.fileName = fileName;
    job.about = AboutOf(fileName, *locos);
    job.asks = false; // overwriting is what the command is for
    for (const ListedLoco &loco : *locos)
        job.steps.push_back(ListedStep(loco));
    return RunCarefully(call, job);
}

} // namespace

Command WriteCommand()
{
    return {QStringLiteral("schreiben"), {QStringLiteral("DATEI")},
        QStringLiteral("schreibt die Loks aus einer Datei .csv, .json, .dds oder .xml (JMRI)"),
        CarefulOptions(Keeps::Journal) << QCommandLineOption(
            OnlyOption, QStringLiteral("nur diese Loks der Datei, zum Beispiel 1-5,8"), QStringLiteral("LISTE")),
        Run,
        QStringLiteral(
            "Was eine Spalte nennen würde, die fehlt, bleibt, wie es im Handregler steht; ein leerer Datensatz\n"
            "braucht einen Namen. Gefragt wird nur, wenn ein Name Zeichen hat, die der Handregler nicht hat.")};
}

} // namespace hr::cli
