// Writing from the terminal: look, plan, write, verify, with a journal beside the file (jobs/careful_write.h).
#pragma once

#include "cli/call.h"
#include "jobs/change.h"

/// The options of a writing command; those that need a journal only where there is a file beside which it can lie.
enum class Keeps { Journal, Nothing };
QList<QCommandLineOption> CarefulOptions(Keeps keeps);

struct CarefulJob {
    QString fileName; // beside which the journal lies; empty: there is none
    QByteArray about; // what the job is about: another content is another job
    std::vector<Step> steps;
    QString heading;        // of what was done: "In den Handregler geschrieben:"
    QString key;            // the same in JSON
    bool takesBack = false; // writes back what stood there: only what differs
};

/// Calls the handheld and carries the job out, or only shows what it would do (--probe).
Exit RunCarefully(const Call &call, const CarefulJob &job);

/// Prints changes: those that differ, or all; as JSON with pages and seconds.
enum class Shown { All, OnlyDifferent };
void PrintChanges(const Call &call, const std::vector<RecordChange> &changes, Shown shown);
