// The process-wide side of freeing room in full registers: one emptying at a time in the whole
// process, and the level at which the last one stopped, shared by all registers so that the
// next emptying goes on from there.
#pragma once

#include <cstdint>

namespace moremate {

// Milliseconds of the monotonic clock that times the emptyings (and the automatic saves).
int64_t EmptyingClockMs();

// The level (n) last removed by an emptying; 0 before the first.
uint16_t LastLevelEmptied();
// Lets the next emptying start again from the smallest levels.
void ResetLastLevelEmptied();

// The number of entries removed by the level loop above which an emptying has done enough:
// about capacity / 12 for an emptying asked for by an insertion, else about capacity / 25.
uint32_t EmptyingThreshold(uint32_t nCapacity, bool bFromInsertion);

}  // namespace moremate
