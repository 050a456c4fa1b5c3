// Where the terminal program writes: results to the standard output, all else to the standard error output. UTF-8.
#pragma once

#include "platform/rooms.h"

#include <QJsonDocument>
#include <QString>

namespace hr::cli
{

/// Writes a line (or bytes as they are) of the result at once. When the reader has gone away, the program ends: the
/// running page is finished and the handheld sent back.
void PrintLine(const QString &line);
void PrintBytes(const QByteArray &bytes);
void PrintJson(const QJsonDocument &document);

/// True when everything could be written.
bool OutputSound();

/// True once nobody reads the standard output any more: he needs no report either.
bool ReaderGone();

/// Writes a line to the standard error output: what went wrong, or what the user should know.
void Tell(const QString &line);

} // namespace hr::cli
