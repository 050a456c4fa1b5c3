// What a LocoNet message is, in German words: the common messages of the bus by their opcode, the program's own memory transfer
// in full.
#pragma once

#include "link/long_message.h"

#include <QString>

namespace hr::handheld
{

/// "Fahrstufe 12 für Platz 3", "liest Flash 0x0000C0, 64 Bytes", "unbekannte Meldung". For a whole message with its checksum;
/// what is said of a damaged one is as wrong as its bytes.
QString MessageWords(std::span<const quint8> message);

} // namespace hr::handheld
