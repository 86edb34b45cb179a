// The register's record: a position key of 64 piece bytes and the two move counts known for it.
// Entries are 68 bytes, packed, and stored by value in the buckets of the hash table.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/chessboard.h"
#include "core/squares_hash.h"

namespace moremate {

// The piece byte of every square in board order. Byte-aligned so that it packs into the entry;
// compared as eight 64-bit words (loads through memcpy, which compile to plain unaligned moves).
struct TChessboardRegisterItem {
    uint8_t squares[64] = {};

    uint64_t Word(int i) const {
        uint64_t word;
        std::memcpy(&word, squares + 8 * i, sizeof word);
        return word;
    }
    // Branch-free: the differences of all eight words are OR-ed, which the compiler vectorises.
    friend bool operator==(const TChessboardRegisterItem& a, const TChessboardRegisterItem& b) {
        uint64_t difference = 0;
        for (int i = 0; i < 8; ++i) difference |= a.Word(i) ^ b.Word(i);
        return difference == 0;
    }
    // Order of the sorted buckets and of the sub-problem maps: word by word, as unsigned numbers.
    friend bool operator<(const TChessboardRegisterItem& a, const TChessboardRegisterItem& b) {
        for (int i = 0; i < 8; ++i) {
            if (a.Word(i) != b.Word(i)) return a.Word(i) < b.Word(i);
        }
        return false;
    }
};

#pragma pack(push, 1)
// In a doubtfulness register `MovesMate` holds the level found "mate doubtful" and `MovesNoMate`
// the level known "not doubtful". Levels are half-moves remaining: odd means White to move.
struct TChessboardRegisterEntry {
    TChessboardRegisterItem key;
    uint16_t MovesMate = 0;    // smallest n with a mate in n found; 0 = none known
    uint16_t MovesNoMate = 0;  // largest n proven to hold no mate in n; 0 = nothing known
};
#pragma pack(pop)
static_assert(sizeof(TChessboardRegisterEntry) == 68);

inline TChessboardRegisterItem RegisterItemOf(const TChessboard& board) {
    TChessboardRegisterItem item;
    std::memcpy(item.squares, board.squares, sizeof item.squares);
    return item;
}

// The board of a key's piece bytes, with the side to move given by the level n.
inline TChessboard ChessboardOf(const TChessboardRegisterItem& item, uint16_t n) {
    TChessboard board;
    std::memcpy(board.squares, item.squares, sizeof board.squares);
    board.movesLeft = board.movesAtStart = static_cast<int16_t>(n);
    return board;
}

// Every register operation starts with it.
inline uint32_t RegisterHash(const TChessboardRegisterItem& item) {
    return SquaresHash(item.squares);
}

// A key with its hash, for the several operations on one position: a search takes the hash from
// the board, which keeps it; made from a key alone, it hashes the key.
struct TRegisterKey {
    TRegisterKey(const TChessboardRegisterItem& key)
        : item(key), nHash(RegisterHash(key)) {}  // NOLINT: implicit
    TRegisterKey(const TChessboardRegisterItem& key, uint32_t hash) : item(key), nHash(hash) {}

    const TChessboardRegisterItem& item;
    uint32_t nHash;
};

}  // namespace moremate
