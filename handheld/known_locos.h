// Which loco addresses of the handheld in service are known to be used, from what was read, looked for and written
// since it was found. Another handheld may answer to the next search: it forgets all.
#pragma once

#include <QString>

/// Called by whoever has read, looked at or written a loco record without a doubt. An empty name means that it is not
/// known; one that is known already stays then.
void NoteLoco(int address, const QString &name);
void NoteNoLoco(int address);

/// True when the handheld holds a loco under this address; false when not, or when nothing is known about it.
[[nodiscard]] bool IsKnownLoco(int address);

/// Its name without the blanks at the end; empty when it is not known.
[[nodiscard]] QString KnownLocoName(int address);

void ForgetKnownLocos();
