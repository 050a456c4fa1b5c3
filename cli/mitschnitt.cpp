#include "cli/output.h"
#include "cli/results.h"
#include "cli/service.h"
#include "handheld/bus_trace.h"
#include "handheld/message_words.h"
#include "platform/world.h"
#include "program/run_control.h"

#include <QFileInfo>
#include <QJsonObject>

namespace hr::cli
{

namespace
{

const auto DurationOption = QStringLiteral("dauer");
constexpr int LongestDuration = 1'000'000; // seconds: eleven days

QJsonObject RowJson(const TraceRow &row)
{
    return {{QStringLiteral("sekunden"), static_cast<double>(row.us) / 1e6}, {QStringLiteral("eigene"), row.own},
        {QStringLiteral("bytes"), TraceBytes(row)}, {QStringLiteral("pruefsumme"), row.sound()},
        {QStringLiteral("bedeutung"), MessageWords(row.message())}};
}

/// Seconds; 0 = until it is ended. Nothing after a message.
std::optional<double> DurationOf(const Call &call)
{
    if (!call.has(DurationOption))
        return 0;
    bool isNumber = false;
    const double seconds = call.value(DurationOption).toDouble(&isNumber);
    if (isNumber && seconds > 0 && seconds <= LongestDuration)
        return seconds;
    UsageFault(QStringLiteral("--dauer %1: hier müssen Sekunden stehen.").arg(call.value(DurationOption)));
    return {};
}

bool MayBeWritten(const QString &fileName)
{
    if (fileName.isEmpty())
        return true;
    if (!fileName.endsWith(QStringLiteral(".lntrace"), Qt::CaseInsensitive)) {
        UsageFault(QStringLiteral("%1: Der Name muss auf .lntrace enden.").arg(fileName));
        return false;
    }
    return !QFileInfo::exists(fileName)
        || TheAsk().askYesNo(
            {QStringLiteral("Die Datei %1 gibt es schon. Soll sie ersetzt werden?").arg(fileName), {}}, false);
}

/// Ctrl-C is the usual end.
void ListenFor(double seconds)
{
    const double start = NowSeconds();
    if (seconds > 0)
        TheEvents().after(static_cast<qint64>(seconds * 1e6) + 1, [] {});
    const StoppableJob listening;
    static_cast<void>(PumpUntil([=] {
        return StoppableJob::stopRequested() || !Comm().isOpen() || !OutputSound()
            || (seconds > 0 && SecondsSince(start) >= seconds);
    }));
}

Exit Run(const Call &call)
{
    const QString fileName = call.arguments.value(0);
    const auto seconds = DurationOf(call);
    if (!seconds)
        return Exit::Usage;
    if (!MayBeWritten(fileName))
        return fileName.endsWith(QStringLiteral(".lntrace"), Qt::CaseInsensitive) ? Exit::Stopped : Exit::Usage;
    const Service line(call, Service::Wanted::BusOnly);
    if (!line.ready())
        return line.failure();
    BusTrace trace;
    if (fileName.isEmpty()) {
        if (!call.options.json)
            PrintLine(TraceHeading(trace.begun()));
        trace.onRow = [json = call.options.json](const TraceRow &row) {
            PrintLine(json ? QString::fromUtf8(QJsonDocument(RowJson(row)).toJson(QJsonDocument::Compact))
                           : TraceLine(row));
        };
    } else if (!trace.keepIn(fileName)) {
        ReportFileUnwritable(fileName);
        return Exit::Usage;
    }
    if (!call.options.quiet)
        Tell(*seconds > 0 ? QStringLiteral("Es wird mitgeschrieben.")
                          : QStringLiteral("Es wird mitgeschrieben; Strg-C beendet es."));
    ListenFor(*seconds);
    if (!trace.fileSound()) {
        ReportFileUnwritable(fileName);
        return Exit::Usage;
    }
    if (!fileName.isEmpty())
        PrintLine(QStringLiteral("Mitgeschrieben in %1: %2").arg(fileName).arg(trace.end()));
    return Comm().isOpen() || BoxesAreSilent() ? Exit::Done : Exit::Incomplete; // a lost port was told
}

} // namespace

Command TraceCommand()
{
    return {QStringLiteral("mitschnitt"), {QStringLiteral("[DATEI.lntrace]")},
        QStringLiteral("zeigt oder speichert alle Meldungen auf dem Bus, mit ihrer Bedeutung"),
        {{DurationOption, QStringLiteral("endet nach so vielen Sekunden, sonst mit Strg-C"), QStringLiteral("S")}},
        Run,
        QStringLiteral("Sendet nichts; ein Handregler muss nicht verbunden sein. Eine Zeile: Sekunden seit dem "
                       "Beginn, > eigene\n"
                       "oder < fremde Meldung, Bytes, Bedeutung. Mit --json je Meldung ein Objekt.")};
}

} // namespace hr::cli
