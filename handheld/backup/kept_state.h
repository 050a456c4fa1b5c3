// What the windows show lies in shared state that backup and restore overwrite: SpiBuf, the current loco record and
// the three tables. While an object of this class lives they may; afterwards everything is as before, so that a
// window's write button writes what the window shows.
#pragma once

#include "handheld/block_tables.h"
#include "handheld/loco_record.h"
#include "link/message_layer.h"

class KeptState
{
public:
    KeptState() = default;
    ~KeptState();
    KeptState(const KeptState &) = delete;
    KeptState &operator=(const KeptState &) = delete;

private:
    LocoRecord record = CurrentLocoRecord();
    decltype(SpiBuf) buffer = SpiBuf;
    decltype(FsDaten) routes = FsDaten;
    decltype(MagZuordDaten) assignment = MagZuordDaten;
    decltype(MagListeDaten) list = MagListeDaten;
};
