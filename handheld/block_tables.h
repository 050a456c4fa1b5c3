// The three tables that are read and written as whole blocks: routes, accessory symbol assignment, accessory list.
//
//   block                        flash bytes            bytes  array index
//   routes                       0x3F0204 .. 0x3F0343     320  page offset - 4, 0..319
//   accessory list               0x3F0808 .. 0x3F0907     256  page offset - 8, 0..255
//   accessory symbol assignment  0x0E0001 .. 0x0E0800    2048  accessory address, 1..2048
//
// Route n (1..80), four bytes from index (n - 1) x 4:
//   0-1  feedback address, high byte first; above 4096 = none (erased: 0xFFFF)
//   2    bit 0: 0 = triggered when the section becomes free, 1 = occupied
//   3    not interpreted
// Place p (1..32) of the accessory list, eight bytes from index (p - 1) x 8:
//   0-1  accessory address, high byte first
//   2-3  designation, two of the handheld's character codes
//   4    accessory symbol number, 0..255
//   5-7  not interpreted
// Assignment: one byte for each accessory address, its symbol number; erased (255) is symbol number 255.
//
// All operations go on after a time-out (each shows its "Timeout" box) and return 1 then; what was not received is
// then whatever the buffer held. They end at once when the port is closed or lost or the program ends: a read
// leaves its table as it was, a started page is finished at the program's end.
#pragma once

#include <array>

constexpr int RouteCount = 80;
constexpr int RouteSize = 4;
constexpr int LastFeedbackAddress = 4096;
constexpr int PlaceCount = 32;
constexpr int PlaceSize = 8;
constexpr int LastAccessoryAddress = 2048;

// --- The tables; one byte value in each entry. Filled by the reads, changed by the editors, written by the writes;
// --- all zero before the first read.
extern std::array<int, 513> FsDaten;        // 0..319 are used
extern std::array<int, 2601> MagZuordDaten; // 1..2048 are used
extern std::array<int, 513> MagListeDaten;  // 0..255 are used

int ReadRoutes();

/// Writes the routes in one page program, without loading the page: its other bytes are programmed from what
/// buffer 1 holds.
int WriteRoutes();

int ReadMagListe();

/// Writes the accessory list in one page program, without loading the page, as the routes.
int WriteMagListe();

/// Reads the assignment in 32 groups, each shown as "Lese Zuordnungsdaten g" (g = 0..31) in the progress window.
int ReadMagZuordnung();

/// Writes the assignment page by page, each loaded first, so that bytes outside the table stay. The groups are
/// counted in the progress window: "Schreibe Fahrstraßen g" (g = 0..32).
int WriteMagZuordnung();

/// True when the last transfer could not go on: the port is closed or lost, or the program is ending.
bool TransferBrokenOff();

void ResetBlockTables();
