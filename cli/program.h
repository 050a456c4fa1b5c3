// The terminal program from its words to its exit status.
#pragma once

#include "cli/call.h"
#include "cli/terminal_ask.h"

#include <optional>

namespace hr::cli
{

/// What a command line asks for.
struct Wish {
    const Command *command = nullptr;
    Call call;
    TerminalAsk::Manner manner;
};

/// Understands the words (without the program's name). Help and version are printed; they and faults (told) give no wish
/// but an exit status. The parser must outlive the wish.
std::optional<Wish> UnderstandWords(const QStringList &words, QCommandLineParser &parser, Exit &exit);

/// Ctrl-C: a job over many records ends after the current one, with its report; all else ends at once.
void TakeInterrupt();

} // namespace hr::cli
