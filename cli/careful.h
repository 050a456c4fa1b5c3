// Writing from the terminal: the one flow of a careful job (jobs/careful_job.h) with the options and the words of a terminal.
#pragma once

#include "cli/call.h"
#include "jobs/careful_job.h"

namespace hr::cli
{

/// The options of a writing command; --fortsetzen only where there is a file beside which the journal can lie.
enum class Keeps { Journal, Nothing };
QList<QCommandLineOption> CarefulOptions(Keeps keeps);

/// False, after a message, when a call that only reads has an option of writing.
[[nodiscard]] bool ReadsOnly(const Call &call);

/// How what was written is headed: "In den Handregler geschrieben:", and its key in JSON.
struct Heading {
    QString text = QStringLiteral("In den Handregler geschrieben:");
    QString key = QStringLiteral("geschrieben");
};

/// A job with the options of the call; what it is about, its steps and its question are to be filled in.
CarefulJob JobOf(const Call &call);

/// Calls the handheld and carries the job out, or only shows what it would do (--probe). `settled` is called when all of it
/// is done.
Exit RunCarefully(const Call &call, const CarefulJob &job, const Heading &heading = {},
    const std::function<void(const CarefulReport &)> &whenWritten = {});

/// Prints changes: those that differ, or all; as JSON with pages and seconds.
enum class Listed { All, OnlyDifferent };
void PrintChanges(const Call &call, const std::vector<RecordChange> &changes, Listed listed);

} // namespace hr::cli
