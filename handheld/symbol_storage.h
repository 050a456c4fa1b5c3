// The pictures in the handheld's dataflash: loco symbols, function and accessory symbol pairs, start image.
//
//   kind                      address                        bytes                          rest of the slot
//   loco symbol n (0..63)     0x110000 + n x 512             98 (48 x 16 pixels)            not preserved
//   function symbol n, half h 0x0F0000 + n x 64 + h x 32     30 (14 x 14 pixels)            2 bytes, untouched
//   accessory symbol n, h     0x0F8000 + n x 64 + h x 32     30 (14 x 14 pixels)            2 bytes, untouched
//   start image               0x118000                       262 (80 x 26 pixels)           page bytes kept
//
// n = 0..255 for the pairs. The first two bytes of a picture are width / 2 - 1 and height - 1, then its rows.
// In SpiBuf a picture always lies in write position, from index 4. All operations go on after a time-out (each
// shows its "Timeout" box) and return 1 then.
#pragma once

enum class SymbolKind { Loco, Function, Accessory };

/// Which half of a pair is which, in the handheld: the index of the option buttons too.
constexpr int HalfOn = 0;  // function symbol ON, accessory symbol green
constexpr int HalfOff = 1; // function symbol OFF, accessory symbol red

constexpr int LokSymbolCount = 64;
constexpr int PairCount = 256;
constexpr int LokSymbolBytes = 98;
constexpr int HalfSymbolBytes = 30;
constexpr int StartImageBytes = 262;

int ReadLokSymbol(int n);
int WriteLokSymbol(int n);
int ReadFktSymbol(int n, int half);
int WriteFktSymbol(int n, int half);
int ReadMagSymbol(int n, int half);
int WriteMagSymbol(int n, int half);

/// The operation for a kind; half is ignored for loco symbols.
int ReadSymbol(SymbolKind kind, int n, int half);
int WriteSymbol(SymbolKind kind, int n, int half);

int ReadStartImage();
int WriteStartImage();

/// Resets the function symbols 164 to 255 to an empty picture, each shown as "Fktsym. n" in the progress window.
/// Ends early after a symbol that failed, when the user stops it, the port is lost or the program ends.
void ResetFktSymbols();
