// How a result changes an entry, and what an entry answers to the search.
#pragma once

#include <cstdint>
#include <optional>

#include "register_entry.h"

namespace moremate {

// Special modes are the positions for which the board carries flags (a restricted set of White
// moves and the like): their entries are never repaired, only reported when checking is on.
enum class TSolvingMode { Normal, Special };

enum class TRegisterAnswer {
    Unknown,  // the position must be searched
    Mate,     // mate in n settled (in a doubtfulness register: "mate doubtful" settled)
    NoMate,   // no mate in n settled (in a doubtfulness register: "not doubtful" settled)
};

// The values of an entry added for a first result at level n.
void SetFirstResult(TChessboardRegisterEntry& entry, uint16_t n, bool bThereIsMate);

// Records a further result in an entry found: keeps the smallest mate and the largest no-mate,
// then, in normal solving, repairs an incoherent pair. Returns whether the entry changed.
bool AddResult(TChessboardRegisterEntry& entry, uint16_t n, bool bThereIsMate, TSolvingMode mode);

// Values read from a register file: the smaller mate and the larger no-mate are kept.
// Returns whether the entry changed.
bool MergeResults(TChessboardRegisterEntry& entry, const TChessboardRegisterEntry& loaded);

// A mate no longer than a level at or above which no mate is proven.
bool IsIncoherent(const TChessboardRegisterEntry& entry);

// What an entry (null: none) tells about a mate within n half-moves.
inline TRegisterAnswer AnswerFor(const TChessboardRegisterEntry* entry, uint16_t n) {
    if (!entry) return TRegisterAnswer::Unknown;
    if (entry->MovesMate != 0 && entry->MovesMate <= n) return TRegisterAnswer::Mate;
    if (entry->MovesNoMate != 0 && entry->MovesNoMate >= n) return TRegisterAnswer::NoMate;
    return TRegisterAnswer::Unknown;
}
inline TRegisterAnswer AnswerFor(const std::optional<TChessboardRegisterEntry>& entry, uint16_t n) {
    return AnswerFor(entry ? &*entry : nullptr, n);
}

}  // namespace moremate
