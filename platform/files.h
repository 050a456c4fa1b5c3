// Where the program's files are.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The folder that holds the program and its konf folder. Set once by main() or by a test.
void SetProgramFolder(const QString &folder);
QString ProgramFolder();

/// The real path of a file named relative to the program folder in the form "\konf\hilfe.txt". Where the file
/// system tells upper from lower case, an existing entry that differs only in case is taken for each step;
/// otherwise the name is used as given.
QString KonfPath(const QString &relative);

/// True when the file can be opened for reading.
bool FileExists(const QString &path);

/// Replaces the file's content so that the file is never half written: written beside it, then renamed.
/// False when the folder or file cannot be written; the old file is untouched then.
bool ReplaceFile(const QString &path, const QByteArray &content);

/// Tells the user that a file beside the program cannot be written: a "Fehler!" box, once in a run.
void ReportUnwritable(const QString &relative);
void ResetFiles();

/// Names of the files (no folders) in a folder, sorted by name without regard to case. Empty when the folder
/// does not exist.
QStringList FileNames(const QString &folder);
