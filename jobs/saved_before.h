// What stood in the handheld before a job overwrote it: backup files in konf\Sicherungen, the last 20.
//
//   konf\Sicherungen\2026-11-23-101530-vorher.dds            can be written back
//   konf\Sicherungen\2026-11-23-101530-zurueckgenommen.dds   has been written back, or stood there before that was done,
//                                                            or was changed while a job was broken off
//
// They hold whole pages: all records of each page that the job was to program, because a power cut in the middle of a
// program destroys the neighbours too. An empty loco record stands in them with its empty name, so that writing it back
// empties the place again.
#pragma once

#include "handheld/backup/dds_file.h"

constexpr qsizetype MostSavedBefore = 20;

/// Writes a new file and removes the oldest ones. Empty when it could not be written, which the user is told. Before a
/// change is taken back (`takesBack`) the file does not count as one that can be.
QString SaveBefore(const QByteArray &records, bool takesBack);

enum class SavedState { Sound, TakenBack, Gone };

/// The records of such a file; empty when it was written back meanwhile or cannot be read any more.
SavedState LoadSavedBefore(const QString &fileName, std::vector<DdsRecord> &records);

/// The newest file that was not written back yet; empty when there is none.
QString LastSavedBefore();

/// Marks a file as written back, so that the next one is the one before.
void MarkAsTakenBack(const QString &fileName);
