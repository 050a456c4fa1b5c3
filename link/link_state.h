// The link as a whole: with which settings, and whether a handheld is in service.
#pragma once

#include "program/settings_file.h"

#include <functional>

namespace hr::link
{

/// There is one: TheLink().
class LinkState
{
public:
    // --- Settings. Written by use() (start-up, selection window), read by the whole link. ---
    PortValue PortNumber;
    int InterfaceType = InterfaceNone; // InterfaceNone or 1..3

    /// True once a handheld has acknowledged and the link is in service. Set by the handheld search, cleared when the
    /// port is closed or lost and when the handheld is sent back. Every command that talks to the handheld tests it.
    bool HandreglerGefunden = false;

    /// True from the loss of an open port (pulled adapter) to the next opening. The user has been told once.
    bool LinkLost = false;

    int lossTellers = 0; // TellsPortLoss objects alive (link/open_link.h)

    /// A port in the network has always the third kind of interface.
    void use(const LinkSettings &settings);
    [[nodiscard]] LinkSettings settings() const { return {PortNumber, InterfaceType}; }

    /// The handheld is not in service any more: clears HandreglerGefunden, and tells the face where it was set.
    void endService();
    void onServiceEnds(std::function<void()> handler) { serviceEnds = std::move(handler); }

private:
    std::function<void()> serviceEnds;
};

LinkState &TheLink();

} // namespace hr::link
