// What became of a command's records, in words, as JSON and as exit status.
#pragma once

#include "cli/call.h"
#include "jobs/runner.h"
#include "program/ask.h"

#include <QJsonArray>
#include <QJsonObject>

namespace hr::cli
{

/// 0 when all is well; 5 for a stopped job, 3 for one that lost the handheld or has doubtful or untouched records.
Exit ExitOf(const Report &report);
Exit ExitOf(JobEnd end, bool allSound);

/// [{"art":"lok","nummer":3}, {"art":"fahrstrassen"}]
QJsonArray RecordsJson(const std::vector<RecordId> &records);

/// The numbers of a list argument, or nothing after a message. "alle" stands for low-high.
std::optional<std::vector<int>> ListArgument(const QString &text, int low, int high);

/// A file's bytes, or nothing after a message; and its replacement, false after a message.
std::optional<QByteArray> ReadFileArgument(const QString &fileName);
[[nodiscard]] bool WriteFileArgument(const QString &fileName, const QByteArray &content);

/// True when a command may write this file: it has the ending (without a point) of what is written, or --als insists and there
/// is no such file yet. Otherwise false after a message: a file of another kind is never replaced.
[[nodiscard]] bool WritesKind(const Call &call, const QString &fileName, const QString &ending);
QCommandLineOption AsKindOption(const QString &ending);

/// False, after a message, for lists and empty files, which are no backups.
[[nodiscard]] bool IsBackupArgument(const QString &fileName, const QByteArray &content);

/// Tells a wrong call: "handregler: ...".
Exit UsageFault(const QString &text);

/// Tells what is wrong in a file: its name and the faults.
Exit FileFaults(const QString &fileName, const QString &faults);

/// A question whether a broken-off job is to be gone on with. --ja is no answer to it: the job is begun anew then, and the
/// user is told.
bool AgreesToGoOn(const Call &call, const BoxText &question, bool defaultYes = true);

} // namespace hr::cli
