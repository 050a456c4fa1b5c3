// The text that a user sends along when something does not work: versions, connection, the last messages and reports. What could
// be personal is left out unless he allows it.
#pragma once

#include "handheld/bus_trace.h"

#include <deque>

namespace hr::jobs
{

constexpr size_t ReportedMessages = 2000;

/// What the face knows.
struct ProblemFacts {
    QString program;         // with its version
    QString handheld;        // what identifies it; empty: none was found
    QString settings;        // konf\Einstellungen.ini
    QStringList lastReports; // boxes that were shown last, each with its time
    const BusTrace *messages = nullptr;
};

enum class Personal {
    Hidden, // names of locos, users and computers, and what is read or written of the handheld, are replaced
    Shown
};

/// The report, German, lines ended by LF.
QString ProblemReport(const ProblemFacts &facts, Personal personal);

} // namespace hr::jobs
