// The heuristics dialog's fields and the heuristic set they stand for, in both directions: the
// dialog opens on the fields of a set and, once its checks pass, gives back the set they describe.
#pragma once

#include <cstdint>

#include "heuristic_checks.h"
#include "heuristic_set.h"

namespace moremate {

// The heuristics the dialog shows as plain check boxes: a named bit with a label of its own and
// no field among THeuristicsDialogFields.
inline constexpr uint32_t kDialogPlainBits =
    SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK | SH_DONTRECEDEBLACKKING | SH_DONTLETPROMOTEDQUEENMOVE |
    SH_SAVEQUEENROOK | SH_DONTLOSEANYFIGURES | SH_DONTLETBLACKQUEENCHECKTWICE | SH_ASSERTBLACKKINGSURROUNDED |
    SH_SINGLEQUEENMATE | SH_3MOVESTOMATE | SH_CAPTUREKNIGHT | SH_DONTLETPROMOTEDFIGUREMOVE |
    SH_REDUCTIONTOGLOBREGPOS;

// The fields showing `set` (the plain bits are read from the set's mask); `position` is the
// problem's, from which the zugzwang field names White's move into the zugzwang position.
THeuristicsDialogFields DialogFieldsOfSet(const THeuristicSet& set, const TChessboard& position);

// The set that checked fields describe: `plainBits` (within kDialogPlainBits) and the heuristics of
// the fields with their parameters. What the dialog does not show (the bits only the engine sets,
// the parameters without a field) is kept from `base`. The fields must have passed
// CheckHeuristicsDialog with the same `position`.
THeuristicSet SetOfDialogFields(const THeuristicsDialogFields& fields, uint32_t plainBits,
                                const THeuristicSet& base, const TChessboard& position);

}  // namespace moremate
