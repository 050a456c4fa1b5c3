// Which loco addresses of the handheld in service are known to be used, from what was read, looked for and written
// since it was found. Another handheld may answer to the next search: it forgets all.
#pragma once

#include "handheld/loco_record.h"

namespace hr::handheld
{

/// Jobs and commands tell what they have read or written without a doubt, or only looked for.
void NoteRecord(int address, const LocoRecord &record);
void NoteUse(int address, bool used);

/// True when the handheld holds a loco under this address; false when not, or when nothing is known about it.
[[nodiscard]] bool IsKnownLoco(int address);

/// Its name without the blanks at the end; empty when it is not known.
[[nodiscard]] QString KnownLocoName(int address);

void ForgetKnownLocos();

} // namespace hr::handheld
