// Everything that reads a file of the user's, with the promises it makes whatever the bytes are.
#pragma once

#include "platform/rooms.h"

#include <QByteArray>

namespace hr::tests
{

/// Reads the bytes as a backup file, as konf\Sicherung.txt and as konf\ComPort.inf. Returns what was not as promised,
/// nullptr when all was: every record taken from a backup file is whole, within its limits and gives the same bytes
/// again; a selection that is read and written stays as it is.
const char *ReadAsEveryFile(const QByteArray &bytes);

} // namespace hr::tests
