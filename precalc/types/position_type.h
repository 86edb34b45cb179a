// Position types: the material of a precalculated endgame, such as "KQkr" (a white king and queen
// against a black king and rook). Descriptions are read in any order and kept in the canonical
// one: "K", the white pieces as Q, R, B, N, P, then "k" and the black pieces likewise.
//
// Each type has a dense index over placements of its pieces with White to move; the index with
// Black to move follows it (see TypeIndexCount). A white king on files e to h mirrors the whole
// position left to right, the only symmetry used, so that pawns keep their direction.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"
#include "precalc/types/combination_index.h"

namespace moremate {

inline constexpr int kMaxPrecalcPieces = 5;  // kings included
inline constexpr const char* kUnknownTypeText = "Unknown position type description: ";

// A piece kind of a type and its share of the index: a single piece ranges over 64 squares (48
// for a pawn), a group of k like pieces over C(64, k) (C(48, k)) sets of squares.
struct TPieceSlot {
    char m_cLetter = 0;
    Piece m_piece = kEmpty;
    bool m_bPawn = false;
    int m_nGroupSize = 1;
    const CMappingCombinationIndexIntoSetBase* m_pMapping = nullptr;  // groups only
    uint64_t m_nRadix = 64;
    // Custom types: the squares a single piece may stand on, one bit each (0 for any); its part
    // of the index is the place of its square among them.
    uint64_t m_nSquares = 0;
};

class TPrecalcType {
  public:
    // Throws ChessException kUnknownTypeText + text for anything but one "K", one "k" and at most
    // three further pieces of Q, R, B, N, P in either case. A custom type reads the whole grammar
    // of type_description.h and keeps its text as it is.
    static TPrecalcType Parse(const std::string& text, bool bCustom = false);
    // Parse, custom when asked or when the text holds a mark of the custom grammar (+, (, X, ?).
    static TPrecalcType ParseAny(const std::string& text, bool bCustom = false);
    // The type of a position's material, or nothing with more pieces than precalculated types hold.
    static std::optional<TPrecalcType> OfPosition(const uint8_t* squares);

    const std::string& Description() const { return m_sDescription; }
    int PieceCount() const { return m_nPieces; }  // besides the kings
    int TotalPieces() const { return m_nPieces + 2; }
    bool HasPawns() const { return m_bPawns; }
    bool IsCustom() const { return m_bCustom; }
    // What the registers know the type by: custom types apart from standard ones.
    std::string Key() const { return m_bCustom ? "custom:" + m_sDescription : m_sDescription; }
    // Some piece may not stand anywhere: moves can leave the type without changing its material.
    bool IsRestricted() const { return m_bRestricted; }
    // The standard type of the same material.
    TPrecalcType Standard() const;
    // White has nothing but the king: no position of the type is a mate.
    bool WhiteBare() const;
    const std::vector<TPieceSlot>& Slots() const { return m_vSlots; }

    // Placements with one side to move: 32 x 64 x the product of the slots' radices (64 x 64 x ...
    // for a custom type whose squares are not the same mirrored left to right).
    uint64_t PlacementCount() const { return m_nPlacements; }
    // The index of a placement with White to move; add PlacementCount() for Black to move.
    uint64_t IndexOf(const uint8_t* squares) const;
    // The squares of the kings (white, black) and then of the slots' pieces, in slot order; a
    // group's squares in any order.
    using TPieceSquares = std::array<uint8_t, kMaxPrecalcPieces>;
    TPieceSquares PiecesOf(const uint8_t* squares) const;
    uint64_t IndexOfPieces(TPieceSquares pieces) const;
    // The squares after a piece went from `from` to `to` without capturing or promoting.
    static TPieceSquares Moved(TPieceSquares pieces, int from, int to) {
        for (uint8_t& sq : pieces)
            if (sq == from) {
                sq = static_cast<uint8_t>(to);
                break;
            }
        return pieces;
    }
    // Whether every piece stands on a square its slot allows (always so for a standard type).
    bool Contains(const TPieceSquares& pieces) const { return !m_bRestricted || InSquares(pieces); }
    // The material is the type's and every piece stands where the type allows.
    bool ContainsPosition(const uint8_t* squares) const;
    // The placement of an index below PlacementCount(); false when two pieces share a square.
    bool PlacementAt(uint64_t nIndex, uint8_t* squares) const;

    // The types a capture or a promotion of one piece leads to.
    std::vector<TPrecalcType> Successors() const;

    bool operator==(const TPrecalcType& other) const { return m_sDescription == other.m_sDescription; }

  private:
    static std::array<int8_t, 256> MakeNoSlots() {
        std::array<int8_t, 256> slots;
        slots.fill(-1);
        return slots;
    }
    void AddPieces(uint8_t colour, const std::array<int, 32>& counts);
    void AddSlot(const TPieceSlot& slot);
    void AddCustomPieces(const std::string& text);
    bool InSquares(const TPieceSquares& pieces) const;
    int SlotOf(Piece piece, int sq, const int* filled) const;
    static uint8_t MirroredFile(uint8_t sq) { return static_cast<uint8_t>(sq ^ 7); }

    std::string m_sDescription;
    int m_nPieces = 0;
    bool m_bPawns = false;
    bool m_bCustom = false;
    bool m_bRestricted = false;
    bool m_bMirror = true;       // the white king is mirrored onto files a to d
    uint64_t m_nKingRadix = 32;  // 64 without the mirror
    std::vector<TPieceSlot> m_vSlots;
    std::array<int8_t, 256> m_slotOfPiece = MakeNoSlots();
    uint64_t m_nPlacements = 32 * 64;
};

// Doubled index: both sides to move.
inline uint64_t TypeIndexCount(const TPrecalcType& type) {
    return 2 * type.PlacementCount();
}

}  // namespace moremate
