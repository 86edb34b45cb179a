#include "region_codec.h"

#include <bit>

#include "core/occupancy.h"
#include "core/validation.h"

namespace moremate {
namespace {

// Half-moves given to a set-up board: only the side to move counts inside a region.
constexpr int16_t kWhiteToMoveHalfMoves = 201;

int SquareOf(uint64_t key, int slot) {
    return static_cast<int>((key >> (1 + 6 * slot)) & 63);
}

uint64_t WithSquare(uint64_t key, int slot, int sq) {
    const int shift = 1 + 6 * slot;
    return (key & ~(63ULL << shift)) | (static_cast<uint64_t>(sq) << shift);
}

}  // namespace

size_t TRegionClassHash::operator()(const TRegionClass& c) const {
    uint64_t h = c.whitePawns * 0x9e3779b97f4a7c15ULL ^ std::rotl(c.blackPawns * 0xc2b2ae3d27d4eb4fULL, 29);
    for (int i = 0; i < c.count; ++i) h = (h ^ c.pieces[static_cast<size_t>(i)]) * 0x100000001b3ULL;
    return static_cast<size_t>(h ^ (h >> 32));
}

bool ReadRegionPosition(const TChessboard& board, TRegionPosition& out) {
    out = TRegionPosition{};
    TRegionClass& c = out.regionClass;
    std::array<uint8_t, kMaxRegionPieces> squares{};
    for (uint64_t occupied = Occupied(board.squares); occupied; occupied &= occupied - 1) {
        const int sq = std::countr_zero(occupied);
        const Piece p = board.squares[sq];
        if (TypeOf(p) == kPawn) {
            (ColourOf(p) == kWhite ? c.whitePawns : c.blackPawns) |= 1ULL << sq;
            continue;
        }
        if (c.count == kMaxRegionPieces) return false;
        // Insertion by piece byte; squares arrive in ascending order, so a kind stays sorted.
        int i = c.count++;
        for (; i > 0 && c.pieces[static_cast<size_t>(i - 1)] > p; --i) {
            c.pieces[static_cast<size_t>(i)] = c.pieces[static_cast<size_t>(i - 1)];
            squares[static_cast<size_t>(i)] = squares[static_cast<size_t>(i - 1)];
        }
        c.pieces[static_cast<size_t>(i)] = p;
        squares[static_cast<size_t>(i)] = static_cast<uint8_t>(sq);
    }
    out.key = board.WhiteToMove() ? 1 : 0;
    for (int i = 0; i < c.count; ++i) out.key = WithSquare(out.key, i, squares[static_cast<size_t>(i)]);
    return true;
}

uint64_t KeyAfterPieceMove(const TRegionClass& regionClass, uint64_t key, int from, int to) {
    int slot = 0;
    while (SquareOf(key, slot) != from) ++slot;
    const Piece kind = regionClass.pieces[static_cast<size_t>(slot)];
    // Keep the squares of the moved piece's kind ascending.
    while (slot > 0 && regionClass.pieces[static_cast<size_t>(slot - 1)] == kind &&
           SquareOf(key, slot - 1) > to) {
        key = WithSquare(key, slot, SquareOf(key, slot - 1));
        --slot;
    }
    while (slot + 1 < regionClass.count && regionClass.pieces[static_cast<size_t>(slot + 1)] == kind &&
           SquareOf(key, slot + 1) < to) {
        key = WithSquare(key, slot, SquareOf(key, slot + 1));
        ++slot;
    }
    return WithSquare(key, slot, to) ^ 1;
}

void SetUpRegionBoard(const TRegionClass& regionClass, uint64_t key, TChessboard& board) {
    board = TChessboard{};
    for (uint64_t b = regionClass.whitePawns; b; b &= b - 1)
        board.squares[std::countr_zero(b)] = kWhite | kPawn;
    for (uint64_t b = regionClass.blackPawns; b; b &= b - 1)
        board.squares[std::countr_zero(b)] = kBlack | kPawn;
    for (int i = 0; i < regionClass.count; ++i)
        board.squares[SquareOf(key, i)] = regionClass.pieces[static_cast<size_t>(i)];
    board.movesLeft = WhiteToMoveInKey(key) ? kWhiteToMoveHalfMoves : kWhiteToMoveHalfMoves - 1;
    BrokenRule(board);
}

}  // namespace moremate
