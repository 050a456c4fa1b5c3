// What is known of the locos of the handheld in service, from what was read, looked for and written since it was found.
// Another handheld may answer to the next search: it forgets all.
#pragma once

#include "handheld/loco_record.h"

#include <functional>

namespace hr::handheld
{

/// Jobs and commands tell what they have read or written without a doubt, or only looked for.
void NoteRecord(int address, const LocoRecord &record);
void NoteUse(int address, bool used);

/// True when the handheld holds a loco under this address; false when not, or when nothing is known about it.
[[nodiscard]] bool IsKnownLoco(int address);

/// Its name without the blanks at the end, and all of it; empty and nothing when only its address is known.
[[nodiscard]] QString KnownLocoName(int address);
[[nodiscard]] std::optional<LocoRecord> KnownRecord(int address);

/// The addresses of the known locos, in order.
[[nodiscard]] std::vector<int> KnownAddresses();

void ForgetKnownLocos();

/// Who is told of each address about which something new is known; of AllAddresses when all is forgotten.
constexpr int AllAddresses = 0;
void OnKnownLoco(std::function<void(int address)> tell);

} // namespace hr::handheld
