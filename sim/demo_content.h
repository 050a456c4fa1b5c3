// What the demo handheld holds when it is new: locos, pictures, routes, accessories and settings of a small German
// layout. Everything else is erased (0xFF).
#pragma once

#include "sim/dataflash.h"

namespace hr::sim
{

/// Lays the demo content over an erased flash.
void FillDemoContent(Dataflash &flash);

} // namespace hr::sim
