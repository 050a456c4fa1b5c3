#include "cli/careful.h"
#include "cli/output.h"
#include "cli/results.h"
#include "jobs/report.h"
#include "jobs/saved_before.h"
#include "program/ask.h"

#include <QDir>

namespace
{

Exit Run(const Call &call)
{
    const QString fileName = LastSavedBefore();
    if (fileName.isEmpty()) {
        Tell(QStringLiteral("Es gibt nichts zurückzunehmen."));
        return Exit::Usage;
    }
    const auto file = ReadFileArgument(fileName);
    if (!file)
        return Exit::Usage;
    const DdsContent content = ReadDds(*file);
    std::vector<RecordId> ids;
    CarefulJob job{{}, *file, {}, QStringLiteral("Zurückgenommen:"), QStringLiteral("geschrieben"), true};
    for (const DdsRecord &record : content.records) {
        ids.push_back(record.id);
        job.steps.push_back({StepKind::Write, record.id, UnpackRecord(record), {}});
    }
    const BoxText question{
        QStringLiteral("Der Handregler bekommt zurück, was vor der letzten Änderung darin stand (%1):\r%2.\r"
                       "Soll die Änderung zurückgenommen werden?")
            .arg(QDir::toNativeSeparators(fileName), ContentText(ids)),
        {}, BoxIcon::None};
    if (!TheAsk().askYesNo(question, false))
        return Exit::Stopped;
    const Exit exit = RunCarefully(call, job);
    if (exit == Exit::Done)
        MarkAsTakenBack(fileName);
    return exit;
}

} // namespace

Command TakeBackCommand()
{
    return {QStringLiteral("zuruecknehmen"), {},
        QStringLiteral("nimmt die letzte Änderung zurück: schreibt, was vorher da stand (fragt vorher)"), {}, Run};
}
