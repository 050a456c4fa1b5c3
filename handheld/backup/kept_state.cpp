#include "handheld/backup/kept_state.h"

KeptState::~KeptState()
{
    SetCurrentLocoRecord(record);
    SpiBuf = buffer;
    FsDaten = routes;
    MagZuordDaten = assignment;
    MagListeDaten = list;
}
