#include "cli/careful.h"
#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "jobs/report.h"
#include "jobs/restore.h"

#include <algorithm>

namespace hr::cli
{

namespace
{

std::optional<std::vector<DdsRecord>> RecordsIn(const QString &fileName)
{
    const auto file = ReadFileArgument(fileName);
    if (!file || !IsBackupArgument(fileName, *file))
        return {};
    const DdsContent content = ReadDds(*file);
    if (!content.fault)
        return content.records;
    FileFaults(fileName, FaultText(*content.fault));
    return {};
}

Exit ExitOfChanges(const std::vector<RecordChange> &changes)
{
    const auto has = [&](Change wanted) {
        return std::ranges::any_of(changes, [wanted](const RecordChange &change) { return change.change == wanted; });
    };
    if (has(Change::Unknown))
        return Exit::Incomplete;
    return ToBeWritten(changes, Written::Changes).empty() ? Exit::Done : Exit::Differs;
}

Exit WithHandheld(const Call &call, const std::vector<DdsRecord> &records)
{
    const Service service(call);
    if (!service.ready())
        return service.failure();
    std::vector<Step> steps;
    steps.reserve(records.size());
    for (const DdsRecord &record : records)
        steps.push_back({StepKind::Write, record.id, UnpackRecord(record), {}});
    const Look look = LookAt(steps);
    PrintChanges(call, look.changes, Listed::OnlyDifferent);
    if (look.end == JobEnd::Complete)
        return ExitOfChanges(look.changes);
    Tell(EndText(look.end, QStringLiteral("Angehalten.")));
    return ExitOf(look.end, false);
}

Exit Run(const Call &call)
{
    const auto first = RecordsIn(call.arguments.value(0));
    if (!first)
        return Exit::Usage;
    if (call.arguments.size() == 1)
        return WithHandheld(call, *first);
    const auto second = RecordsIn(call.arguments.value(1));
    if (!second)
        return Exit::Usage;
    const auto changes = Differences(RestorePlan(*first).steps, RestorePlan(*second).steps);
    PrintChanges(call, changes, Listed::OnlyDifferent);
    return ExitOfChanges(changes);
}

} // namespace

Command CompareCommand()
{
    return {QStringLiteral("vergleichen"), {QStringLiteral("DATEI.dds"), QStringLiteral("[DATEI2.dds]")},
        QStringLiteral("vergleicht eine Sicherung mit dem Handregler oder mit einer zweiten (4: verschieden)"), {},
        Run};
}

} // namespace hr::cli
