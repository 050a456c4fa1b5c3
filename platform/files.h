// Where the program's files are, and how they are written so that none is ever half there.
#pragma once

#include "platform/rooms.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace hr::platform
{

/// The folder that holds the program and what was installed with it. Set once by main() or by a test; the data lie there
/// too until another folder is set for them.
void SetProgramFolder(const QString &folder);
QString ProgramFolder();

/// The folder that holds the user's konf folder and the simulated handheld (see program/data_folder.h).
void SetDataFolder(const QString &folder);
QString DataFolder();

/// The real path of a file named relative to the data folder in the form "\konf\hilfe.txt". Where the file
/// system tells upper from lower case, an existing entry that differs only in case is taken for each step;
/// otherwise the name is used as given.
QString KonfPath(const QString &relative);

/// True when the file can be opened for reading.
bool FileExists(const QString &path);

/// All bytes of a file; nothing when it cannot be read.
std::optional<QByteArray> ReadWholeFile(const QString &path);

/// The same of a file of at most so many bytes; nothing for a larger one, and for what is no plain file.
std::optional<QByteArray> ReadSmallFile(const QString &path, qint64 mostBytes);

/// Replaces the file's content so that the file is never half written: written beside it, then renamed, and on the disk
/// when this returns. False when the folder or file cannot be written or the disk is full; the old file is untouched then.
bool ReplaceFile(const QString &path, const QByteArray &content);

/// The same for files in folders that are scanned: what is half written lies in the konf folder, never in the folder
/// of the file, so that a broken save leaves nothing there. Both folders are on one file system.
bool ReplaceFileInScannedFolder(const QString &path, const QByteArray &content);

/// Makes a folder, and those above it, where there is none.
bool MakeFolder(const QString &folder);

/// A path without the data folder in front, and back: so that what names a file holds when the whole folder is moved. What
/// lies elsewhere keeps its whole path.
QString InDataFolder(const QString &path);
QString FromDataFolder(const QString &path);

/// True when two names lead to the same file; also where neither exists yet.
bool IsSameFile(const QString &one, const QString &other);

/// Names of the files (no folders) in a folder, sorted by name without regard to case. Empty when the folder
/// does not exist.
QStringList FileNames(const QString &folder);

} // namespace hr::platform
