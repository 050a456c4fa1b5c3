// Writing from a window: what stands there is read anew, the user is asked, then WriteCarefully (jobs/careful_write.h),
// with a journal beside the file.
#pragma once

#include "jobs/careful_write.h"
#include "ui/common/command.h"

struct CarefulJob {
    QString fileName;        // beside which the journal lies; empty: there is none
    QByteArray about;        // what the job is about: another content is another job
    std::vector<Step> steps; // Write only
    CarefulWish wish;
    QString title; // of the boxes
    QString lead;  // stands above the question, ended by CR; may be empty
};

struct CarefulEnd {
    bool complete = false;             // all is written, or was there already, and nothing is in doubt
    std::vector<RecordChange> records; // as they are now, as far as they were looked at
};

/// Looks at the handheld, asks (default No) with counts and duration, writes and tells what became of it. The command has
/// passed the guard. A broken-off job of the same kind is offered to be continued (default Yes); one that does not fit is
/// named with the reason and, when the user wants that (default No), given up. Whatever goes wrong has been told.
CarefulEnd RunCarefully(const Command &command, const CarefulJob &job);
