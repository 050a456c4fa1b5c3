// What stood in the handheld before a job overwrote it: backup files in konf\Sicherungen, the last 20.
//
//   konf\Sicherungen\2026-11-23-101530-vorher.dds            can be written back
//   konf\Sicherungen\2026-11-23-101530-zurueckgenommen.dds   has been written back
//
// They hold whole pages: all records of each page that the job was to program, because a power cut in the middle of a
// program destroys the neighbours too. An empty loco record stands in them with its empty name, so that writing it back
// empties the place again.
#pragma once

#include "handheld/backup/dds_file.h"

constexpr qsizetype MostSavedBefore = 20;

/// Writes a new file and removes the oldest ones. Empty when it could not be written, which the user is told.
QString SaveBefore(const QByteArray &records);

/// The newest file that was not written back yet; empty when there is none.
QString LastSavedBefore();

/// Marks a file as written back, so that the next one is the one before.
void MarkAsTakenBack(const QString &fileName);
