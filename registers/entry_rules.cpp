#include "entry_rules.h"

namespace moremate {

void SetFirstResult(TChessboardRegisterEntry& entry, uint16_t n, bool bThereIsMate) {
    entry.MovesMate = bThereIsMate ? n : 0;
    entry.MovesNoMate = bThereIsMate ? 0 : n;
}

bool IsIncoherent(const TChessboardRegisterEntry& entry) {
    return entry.MovesMate != 0 && entry.MovesNoMate >= entry.MovesMate;
}

namespace {

// Levels count half-moves, so the largest level that can hold no mate below a mate at m is
// m - 2, the previous level with the same side to move.
void Repair(TChessboardRegisterEntry& entry) {
    entry.MovesNoMate = entry.MovesMate > 2 ? entry.MovesMate - 2 : 0;
}

}  // namespace

bool AddResult(TChessboardRegisterEntry& entry, uint16_t n, bool bThereIsMate, TSolvingMode mode) {
    const TChessboardRegisterEntry before = entry;
    if (bThereIsMate) {
        if (entry.MovesMate == 0 || n < entry.MovesMate) entry.MovesMate = n;
    } else if (n > entry.MovesNoMate) {
        entry.MovesNoMate = n;
    }
    if (mode == TSolvingMode::Normal && IsIncoherent(entry)) Repair(entry);
    return entry.MovesMate != before.MovesMate || entry.MovesNoMate != before.MovesNoMate;
}

bool MergeResults(TChessboardRegisterEntry& entry, const TChessboardRegisterEntry& loaded) {
    bool bChanged = false;
    if (loaded.MovesMate != 0) bChanged |= AddResult(entry, loaded.MovesMate, true, TSolvingMode::Special);
    if (loaded.MovesNoMate != 0)
        bChanged |= AddResult(entry, loaded.MovesNoMate, false, TSolvingMode::Special);
    return bChanged;
}

}  // namespace moremate
