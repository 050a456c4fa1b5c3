// The handheld in service for one command.
#pragma once

#include "cli/call.h"
#include "handheld/discovery.h"

namespace hr::cli
{

class Service
{
public:
    /// Opens the port (told when it can't be) and finds the handheld; for the command station and for
    /// listening only the line is needed.
    enum class Wanted { Handheld, LineOnly, BusOnly };
    explicit Service(const Call &call, Wanted wanted = Wanted::Handheld);

    /// Sends a found handheld back, exactly once, also when the program is ending, and closes the port.
    ~Service();
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;

    [[nodiscard]] bool ready() const { return state == Exit::Done; }

    /// Why it is not ready: Usage, NoHandheld or Stopped.
    [[nodiscard]] Exit failure() const { return state; }

    [[nodiscard]] const HandheldInfo &handheld() const { return info; }

private:
    Exit open(const Call &call, Wanted wanted);

    Exit state;
    HandheldInfo info;
};

} // namespace hr::cli
