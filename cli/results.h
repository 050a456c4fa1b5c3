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

/// Tells a wrong call: "handregler: ...".
Exit UsageFault(const QString &text);

/// Tells what is wrong in a file: its name and the faults.
Exit FileFaults(const QString &fileName, const QString &faults);

/// A question whether a broken-off job is to be gone on with. --ja is no answer to it: the job is begun anew then, and the
/// user is told.
bool AgreesToGoOn(const Call &call, const BoxText &question, bool defaultYes = true);

} // namespace hr::cli
