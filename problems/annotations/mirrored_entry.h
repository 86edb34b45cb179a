// The mirrored problem of a record: the board reflected left to right (file a <-> file h), with
// the answer, the moves already played, the stored variants, the sort indications and the line
// of LOOKFORBESTDEFENCESAFTER reflected alike and "Mirror: " toggled on the description.
// Castling rights then follow from the reflected position.
#pragma once

#include "problems/format/problem_entry.h"

namespace moremate {

inline constexpr const char* kMirrorPrefix = "Mirror: ";

// The reflection of a valid position is valid: the rules do not tell the wings apart.
ProblemEntry MirroredEntry(const ProblemEntry& entry);

}  // namespace moremate
