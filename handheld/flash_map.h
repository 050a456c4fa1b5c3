// Where the handheld's data lie in its dataflash: 24-bit byte addresses, pages of 512 bytes, erased bytes are 0xFF.
//
//   data                            first byte  page   addressing
//   loco records                    0x000000       0   loco n at n x 64, n = 1..9999, 8 records a page
//   accessory symbol assignment     0x0E0000    1792   address a at 0x0E0000 + a, a = 1..2048
//   function symbols                0x0F0000    1920   symbol n, half h at + n x 64 + h x 32
//   accessory symbols               0x0F8000    1984   as function symbols
//   loco symbols                    0x110000    2176   symbol n at + n x 512, one page each
//   start image                     0x118000    2240   262 bytes in a row
//   display texts                   0x120000    2304   text t of block b at + b x 8192 + t x 32
//   settings                        0x3F0000    8064   128 bytes, offset 5 = switch-off time
//   routes                          0x3F0200    8065   from page offset 4
//   accessory list                  0x3F0800    8068   from page offset 8
#pragma once

#include "platform/rooms.h"

namespace hr::handheld
{

constexpr int FlashPageSize = 512;
constexpr int EmptyByte = 0xFF;

constexpr int LocoRecordSize = 64; // bytes of a record, and the distance between two
constexpr int FirstLoco = 1;
constexpr int LastLoco = 9999;

constexpr int MagZuordAddress = 0x0E0000;
constexpr int FktSymbolAddress = 0x0F0000;
constexpr int MagSymbolAddress = 0x0F8000;
constexpr int LokSymbolAddress = 0x110000;
constexpr int StartImageAddress = 0x118000;
constexpr int TextTableAddress = 0x120000;
constexpr int SettingsAddress = 0x3F0000;
constexpr int RoutesAddress = 0x3F0200;
constexpr int MagListeAddress = 0x3F0800;

/// Offset of a flash address in its page.
constexpr int PageOffset(int address)
{
    return address % FlashPageSize;
}

/// Flash address of the record of loco n.
constexpr int LocoRecordAddress(int locoNumber)
{
    return locoNumber * LocoRecordSize;
}

} // namespace hr::handheld
