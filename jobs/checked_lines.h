// Lines of files that are believed after a crash: each carries a checksum, so that one that was torn, lost or changed is
// never taken for another one.
//
//   <text> <8 hex digits>LF
#pragma once

#include "platform/rooms.h"

#include <QStringList>

namespace hr::jobs
{

QByteArray CheckedLine(const QString &text);

struct CheckedLines {
    QStringList texts;   // of the sound lines, in order
    bool spoilt = false; // there is a line that was written to its end and is not what was written
};

/// A last line without its end was being written when the program died: it is none.
CheckedLines ReadCheckedLines(const QByteArray &bytes);

} // namespace hr::jobs
