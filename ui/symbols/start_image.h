// "Startbild ändern".
#pragma once

#include "platform/rooms.h"

namespace hr::ui
{

/// Reads the start image, opens the pixel editor on it, asks (default No) and writes it back. After a read that
/// was not complete a second question says so.
void EditStartImage();

} // namespace hr::ui
